#include "OfficeConverter.h"

#include "QSError.h"

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
#include <csignal>
#include <optional>

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

QSError failure(const QString &cause)
{
    return QSError::invalid(cause);
}

/// One conversion's limit in time, whatever its steps are.
struct Limit
{
    explicit Limit(milliseconds limit) : length(limit), deadline(limit) {}

    [[nodiscard]] int left() const { return static_cast<int>(deadline.remainingTime()); }
    [[nodiscard]] QSError exceeded() const
    {
        const double seconds = std::chrono::duration<double>(length).count();
        return failure(
            QStringLiteral("LibreOffice took more than %1 seconds.").arg(QString::number(seconds)));
    }

    milliseconds length;
    QDeadlineTimer deadline;
};

QString findProgram(const QString &programOverride)
{
    if (!programOverride.isEmpty()) {
        return QFileInfo(programOverride).isExecutable() ? programOverride : QString();
    }
    const QString name = QStringLiteral("soffice");
    if (QString inPath = QStandardPaths::findExecutable(name); !inPath.isEmpty()) {
        return inPath;
    }
    QStringList folders = {QStringLiteral("/usr/bin"), QStringLiteral("/usr/local/bin"),
                           QStringLiteral("/usr/lib/libreoffice/program"),
                           QStringLiteral("/usr/lib64/libreoffice/program")};
    // The makers' own packages have the version in the folder's name: the newest comes first.
    const QDir opt(QStringLiteral("/opt"), QStringLiteral("libreoffice*"),
                   QDir::Name | QDir::Reversed, QDir::Dirs);
    for (const QString &folder : opt.entryList()) {
        folders.append(opt.filePath(folder + QStringLiteral("/program")));
    }
    return QStandardPaths::findExecutable(name, folders);
}

/// The caller's turn to use the profile folder, among the threads and processes of the user.
class Turn final
{
public:
    Turn(const QString &folder, const Limit &limit) : m_file(folder + QStringLiteral("/lock"))
    {
        m_file.setStaleLockTime(0); // a lock ends with its process, never by its age
        if (!m_thread.tryLock(limit.left())) {
            throw limit.exceeded();
        }
        if (!m_file.tryLock(limit.left())) {
            m_thread.unlock();
            throw m_file.error() == QLockFile::LockFailedError
                ? limit.exceeded()
                : failure(QStringLiteral("LibreOffice's folder %1 can't be written.")
                              .arg(QFileInfo(m_file.fileName()).path()));
        }
    }
    ~Turn()
    {
        m_file.unlock();
        m_thread.unlock();
    }
    Q_DISABLE_COPY_MOVE(Turn)

private:
    inline static QMutex m_thread;
    QLockFile m_file;
};

/// The user's folder for the profile and its lock; readable by nobody else, since a profile may
/// keep traces of what was converted.
QString createOfficeFolder()
{
    QString path =
        QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + QStringLiteral("/office");
    constexpr auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    if (!QDir().mkpath(path) || !QFile::setPermissions(path, ownerOnly)) {
        throw failure(QStringLiteral("LibreOffice's folder %1 can't be created.").arg(path));
    }
    return path;
}

/// What LibreOffice said about a failure: the end is what matters.
QString lastWords(QProcess &process)
{
    const QString words = QString::fromLocal8Bit(process.readAllStandardError()).trimmed();
    return words.isEmpty()
               ? QString()
               : QStringLiteral(" ") + words.last(std::min<qsizetype>(words.size(), 500));
}

/// One conversion from a file of a private folder to another, which goes away with this object.
class Conversion final
{
public:
    Conversion(QString program, QString target, const QByteArray &document);

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
    [[nodiscard]] QByteArray readOutput(const QString &words) const;

    QString m_program;
    QString m_target;
    QTemporaryDir m_folder;
};

Conversion::Conversion(QString program, QString target, const QByteArray &document)
    : m_program(std::move(program)),
      m_target(std::move(target)),
      m_folder(QDir::tempPath() + QStringLiteral("/quillstone-XXXXXX"))
{
    QFile input(inputPath());
    if (!m_folder.isValid() || !input.open(QIODevice::WriteOnly) ||
        input.write(document) != document.size() || !input.flush()) {
        throw failure(QStringLiteral("The document can't be written for LibreOffice: %1")
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
    if (!process.waitForStarted(limit.left())) {
        throw failure(
            QStringLiteral("LibreOffice could not be started: %1").arg(process.errorString()));
    }
    const auto group = static_cast<pid_t>(process.processId());
    const bool ended = process.waitForFinished(limit.left());
    ::kill(-group, SIGKILL);
    if (!ended) {
        process.waitForFinished(-1);
        throw limit.exceeded();
    }
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

QByteArray Conversion::readOutput(const QString &words) const
{
    QFile output(outputPath());
    if (!output.open(QIODevice::ReadOnly)) {
        throw failure(QStringLiteral("LibreOffice wrote no document.") + words);
    }
    QByteArray bytes = output.readAll();
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
        if (!usedBefore || limit.deadline.hasExpired()) {
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

QByteArray OfficeConverter::convert(const QByteArray &flatODF, const QString &target)
{
    const Settings current = currentSettings();
    const Limit limit(current.limit);
    const QString program = findProgram(current.program);
    if (program.isEmpty()) {
        throw failure(
            QStringLiteral("LibreOffice, which writes Word and Rich Text files, was not found."));
    }
    const QString folder = createOfficeFolder();
    const Turn turn(folder, limit);
    const Conversion conversion(program, target, flatODF);
    return runWithProfile(conversion, folder + QStringLiteral("/profile"), limit);
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
