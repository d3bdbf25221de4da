#include "OfficeConverter.h"

#include "QSError.h"

#include <QCollator>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QMutex>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <mutex>

#include <unistd.h>

namespace {
using std::chrono::milliseconds;

struct Settings
{
    QString program;
    milliseconds limit = OfficeConverter::defaultTimeLimit;
};
QMutex settingsMutex;
Settings settings; // guarded by settingsMutex
std::atomic<bool> cancelled = false;

QSError failure(const QString &cause)
{
    return QSError::invalid(cause);
}

/// One conversion's limit in time, whatever its steps are.
struct Limit
{
    Limit(milliseconds limit, std::stop_token stopped)
        : length(limit), deadline(limit), stop(std::move(stopped))
    {
    }

    /// Calls waitFor with a slice of the time that is left (in ms) until it returns true; false
    /// when the limit runs out first. Throws when it is stopped.
    template <typename Wait>
    [[nodiscard]] bool wait(Wait waitFor) const
    {
        constexpr qint64 slice = 100;
        do {
            if (isStopped()) {
                throw failure(QStringLiteral("The conversion was stopped."));
            }
            if (waitFor(static_cast<int>(std::min(slice, deadline.remainingTime())))) {
                return true;
            }
        } while (!deadline.hasExpired());
        return false;
    }
    [[nodiscard]] bool isStopped() const { return cancelled || stop.stop_requested(); }
    [[nodiscard]] bool isOver() const { return isStopped() || deadline.hasExpired(); }
    [[nodiscard]] QSError exceeded() const
    {
        const double seconds = std::chrono::duration<double>(length).count();
        return failure(
            QStringLiteral("LibreOffice took more than %1 seconds.").arg(QString::number(seconds)));
    }

    milliseconds length;
    QDeadlineTimer deadline;
    std::stop_token stop;
};

/// The programs folders of the makers' own packages, which have the version in their name, the
/// newest first.
QStringList packageFolders()
{
    const QDir opt(QStringLiteral("/opt"));
    QStringList names = opt.entryList({QStringLiteral("libreoffice*")}, QDir::Dirs);
    QCollator collator(QLocale(QLocale::English, QLocale::UnitedStates)); // "C" sorts no numbers
    collator.setNumericMode(true);
    std::ranges::sort(names, [&collator](const QString &one, const QString &other) {
        return collator.compare(one, other) > 0;
    });
    QStringList folders;
    for (const QString &name : names) {
        folders.append(opt.filePath(name + QStringLiteral("/program")));
    }
    return folders;
}

QString findProgram(const QString &programOverride)
{
    if (!programOverride.isEmpty()) {
        return QFileInfo(programOverride).isExecutable() ? programOverride : QString();
    }
    const QString name = QStringLiteral("soffice");
    if (QString inPath = QStandardPaths::findExecutable(name); !inPath.isEmpty()) {
        return inPath;
    }
    const QStringList folders = {QStringLiteral("/usr/bin"), QStringLiteral("/usr/local/bin"),
                                 QStringLiteral("/usr/lib/libreoffice/program"),
                                 QStringLiteral("/usr/lib64/libreoffice/program")};
    return QStandardPaths::findExecutable(name, folders + packageFolders());
}

/// The caller's turn to use the profile folder, among the threads and processes of the user.
class Turn final
{
public:
    Turn(const QString &folder, const Limit &limit) : m_file(folder + QStringLiteral("/lock"))
    {
        m_file.setStaleLockTime(0); // a lock ends with its process, never by its age
        if (!limit.wait([this](int time) { return m_thread.try_lock_for(milliseconds(time)); })) {
            throw limit.exceeded();
        }
        const auto tryFile = [this](int time) {
            return m_file.tryLock(time) || m_file.error() != QLockFile::LockFailedError;
        };
        if (!limit.wait(tryFile)) {
            throw limit.exceeded();
        }
        if (!m_file.isLocked()) {
            throw QSError::io(QStringLiteral("LibreOffice's folder %1 can't be written.")
                                  .arg(QFileInfo(m_file.fileName()).path()));
        }
    }
    Q_DISABLE_COPY_MOVE(Turn)

private:
    inline static std::timed_mutex mutex;
    std::unique_lock<std::timed_mutex> m_thread{mutex, std::defer_lock};
    QLockFile m_file; // unlocks before the mutex does
};

/// The user's folder for the profile, its lock and the documents that are being converted;
/// readable by nobody else.
QString createOfficeFolder()
{
    QString path =
        QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + QStringLiteral("/office");
    constexpr auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    if (!QDir().mkpath(path) || !QFile::setPermissions(path, ownerOnly)) {
        throw QSError::io(QStringLiteral("LibreOffice's folder %1 can't be created.").arg(path));
    }
    return path;
}

const QString conversionName = QStringLiteral("conversion-");

/// Deletes the documents of conversions that a crash cut short. For whoever has the turn: nobody
/// else is converting.
void removeOldConversions(const QDir &folder)
{
    const QStringList names = folder.entryList({conversionName + u'*'}, QDir::Dirs);
    for (const QString &name : names) {
        QDir(folder.filePath(name)).removeRecursively();
    }
}

/// Ends a process with all that it started when it goes out of scope.
class Ending final
{
public:
    explicit Ending(QProcess &process)
        : m_process(process), m_group(static_cast<pid_t>(process.processId()))
    {
    }
    ~Ending()
    {
        if (m_group > 0) {
            ::kill(-m_group, SIGKILL);
        }
        m_process.kill(); // it may not have got as far as having a group
        m_process.waitForFinished(-1);
    }
    Q_DISABLE_COPY_MOVE(Ending)

private:
    QProcess &m_process;
    pid_t m_group;
};

/// What LibreOffice said about a failure: the end is what matters.
QString lastWords(QProcess &process)
{
    const QString words = QString::fromLocal8Bit(process.readAllStandardError()).trimmed();
    return words.isEmpty()
               ? QString()
               : QStringLiteral(" ") + words.last(std::min<qsizetype>(words.size(), 500));
}

/// One conversion from a file to another, in a folder that goes away with this object.
class Conversion final
{
public:
    Conversion(const QDir &parent, QString program, QString target, const QByteArray &document);

    /// Runs LibreOffice once; throws when it brings no document.
    [[nodiscard]] QByteArray run(const QString &profile, const Limit &limit) const;

private:
    [[nodiscard]] QString outputPath() const
    {
        return m_folder.filePath(QStringLiteral("document.") + extension());
    }
    [[nodiscard]] QString extension() const { return m_target.section(u':', 0, 0); }
    [[nodiscard]] QString inputPath() const
    {
        return m_folder.filePath(QStringLiteral("document.fodt"));
    }
    [[nodiscard]] QStringList arguments(const QString &profile) const;
    [[nodiscard]] QProcessEnvironment environment() const;
    static void runToItsEnd(QProcess &process, const Limit &limit);
    [[nodiscard]] QByteArray readOutput(const QString &words) const;

    QString m_program;
    QString m_target;
    QTemporaryDir m_folder;
};

Conversion::Conversion(const QDir &parent, QString program, QString target,
                       const QByteArray &document)
    : m_program(std::move(program)),
      m_target(std::move(target)),
      m_folder(parent.filePath(conversionName + QStringLiteral("XXXXXX")))
{
    QFile input(inputPath());
    if (!m_folder.isValid() || !input.open(QIODevice::WriteOnly) ||
        input.write(document) != document.size() || !input.flush()) {
        throw QSError::io(
            QStringLiteral("The document can't be written for LibreOffice: %1")
                .arg(m_folder.isValid() ? input.errorString() : m_folder.errorString()));
    }
}

QStringList Conversion::arguments(const QString &profile) const
{
    return {QStringLiteral("-env:UserInstallation=") +
                QString::fromLatin1(QUrl::fromLocalFile(profile).toEncoded()),
            QStringLiteral("--headless"),
            QStringLiteral("--norestore"),
            QStringLiteral("--nolockcheck"),
            QStringLiteral("--nodefault"),
            QStringLiteral("--nofirststartwizard"),
            QStringLiteral("--nologo"),
            QStringLiteral("--convert-to"),
            m_target,
            QStringLiteral("--outdir"),
            m_folder.path(),
            inputPath()};
}

/// Without a display, and with temporary files where they vanish with the conversion.
QProcessEnvironment Conversion::environment() const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    environment.insert(QStringLiteral("SAL_USE_VCLPLUGIN"), QStringLiteral("svp"));
    environment.insert(QStringLiteral("TMPDIR"), m_folder.path());
    return environment;
}

QByteArray Conversion::run(const QString &profile, const Limit &limit) const
{
    QFile::remove(outputPath());
    QProcess process;
    process.setProcessEnvironment(environment());
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    // LibreOffice is a chain of processes; a session of their own makes them one group to end.
    process.setChildProcessModifier([] { ::setsid(); });
    process.start(m_program, arguments(profile));
    runToItsEnd(process, limit);
    const QString words = lastWords(process);
    if (process.exitStatus() != QProcess::NormalExit) {
        throw failure(QStringLiteral("LibreOffice broke down.") + words);
    }
    if (process.exitCode() != 0) {
        throw failure(QStringLiteral("LibreOffice ended with status %1.").arg(process.exitCode()) +
                      words);
    }
    return readOutput(words);
}

void Conversion::runToItsEnd(QProcess &process, const Limit &limit)
{
    const Ending ending(process);
    const auto isOver = [&process] { return process.state() == QProcess::NotRunning; };
    if (!limit.wait([&](int time) { return process.waitForStarted(time) || isOver(); })) {
        throw limit.exceeded();
    }
    if (process.error() == QProcess::FailedToStart) {
        throw failure(
            QStringLiteral("LibreOffice could not be started: %1").arg(process.errorString()));
    }
    if (!limit.wait([&](int time) { return process.waitForFinished(time) || isOver(); })) {
        throw limit.exceeded();
    }
}

QByteArray Conversion::readOutput(const QString &words) const
{
    QFile output(outputPath());
    if (!output.open(QIODevice::ReadOnly)) {
        throw failure(QStringLiteral("LibreOffice wrote no document.") + words);
    }
    QByteArray bytes = output.readAll();
    if (output.error() != QFile::NoError) {
        throw QSError::io(
            QStringLiteral("LibreOffice's document can't be read: %1").arg(output.errorString()));
    }
    const QByteArray beginning = extension() == u"docx" ? "PK\x03\x04" : "{\\rtf";
    if (!bytes.startsWith(beginning)) {
        throw failure(
            QStringLiteral("LibreOffice wrote a file that is no %1 document.").arg(extension()) +
            words);
    }
    return bytes;
}

/// A crash can leave a profile with which LibreOffice fails ever after: a failure with a profile
/// from before is tried once more with a new one, and none is kept after a failure.
QByteArray runWithProfile(const Conversion &conversion, const QString &profile, const Limit &limit)
{
    const bool usedBefore = QFileInfo::exists(profile);
    try {
        return conversion.run(profile, limit);
    } catch (const QSError &) {
        QDir(profile).removeRecursively();
        if (!usedBefore || limit.isOver()) {
            throw;
        }
    }
    try {
        return conversion.run(profile, limit);
    } catch (const QSError &) {
        QDir(profile).removeRecursively();
        throw;
    }
}

Settings currentSettings()
{
    const QMutexLocker lock(&settingsMutex);
    return settings;
}
} // namespace

QByteArray OfficeConverter::convert(const QByteArray &flatODF, const QString &target,
                                    const std::stop_token &stop)
{
    const Settings current = currentSettings();
    const Limit limit(current.limit, stop);
    const QString program = findProgram(current.program);
    if (program.isEmpty()) {
        throw failure(
            QStringLiteral("LibreOffice, which writes Word and Rich Text files, was not found."));
    }
    const QDir folder(createOfficeFolder());
    const Turn turn(folder.path(), limit);
    removeOldConversions(folder);
    const Conversion conversion(folder, program, target, flatODF);
    return runWithProfile(conversion, folder.filePath(QStringLiteral("profile")), limit);
}

void OfficeConverter::cancelAll()
{
    cancelled = true;
}

void OfficeConverter::setProgramOverride(const QString &path)
{
    const QMutexLocker lock(&settingsMutex);
    settings.program = path;
}

void OfficeConverter::setTimeLimit(milliseconds limit)
{
    const QMutexLocker lock(&settingsMutex);
    settings.limit = limit;
}
