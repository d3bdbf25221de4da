#include "QSBackup.h"

#include "BackupJSON.h"
#include "QSClock.h"
#include "QSDate.h"
#include "QSDisk.h"
#include "QSError.h"
#include "QSInfo.h"
#include "QSMutation.h"

#include <QBuffer>
#include <QFileInfo>
#include <QHash>
#include <QTemporaryFile>

#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {
QSError failure(const QString &reason)
{
    return QSError::io(u"The file could not be written: "_s + reason);
}

double seconds(const QDateTime &time)
{
    return static_cast<double>(time.toMSecsSinceEpoch()) / 1000.0;
}

/// The text as UTF-8 can hold it, so that what is read back can be compared.
QString wellFormed(const QString &text)
{
    return QString::fromUtf8(text.toUtf8());
}

QSBackup::Doc docFrom(const QSDocument &document)
{
    QMap<QString, QString> values;
    for (auto value = document.values.cbegin(); value != document.values.cend(); ++value) {
        values.insert(wellFormed(value.key()), wellFormed(value.value()));
    }
    return {.templateID = document.templateID,
            .templateVersion = document.templateVersion,
            .title = document.title,
            .values = values,
            .state = document.state,
            .created = seconds(document.created),
            .modified = seconds(document.modified)};
}

QSBackup::PDF pdfFrom(const QSFilledPDF &record)
{
    return {.entryID = record.entryID,
            .title = record.title,
            .fileName = record.fileName,
            .created = seconds(record.created),
            .modified = seconds(record.modified),
            .data = {}};
}

/// The whole file as it was at one moment, though another program may be writing to it; absent when
/// that can't be had.
std::optional<QByteArray> steadyContents(const QString &path)
{
    constexpr int attempts = 3;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
            return std::nullopt;
        }
        const QDateTime changed = file.fileTime(QFileDevice::FileModificationTime);
        const qint64 size = file.size();
        QByteArray bytes = file.readAll();
        if (file.error() == QFileDevice::NoError && bytes.size() == size && file.size() == size &&
            file.fileTime(QFileDevice::FileModificationTime) == changed) {
            return bytes;
        }
    }
    return std::nullopt;
}

/// The file of a record; absent too for what no restore would accept.
std::optional<QByteArray> dataOf(const QSBackup::PDF &record)
{
    if (!BackupJSON::isAllowedFileName(record.fileName) || QSMutation::on(u"backup-without-pdfs")) {
        return std::nullopt;
    }
    const auto bytes = steadyContents(QSInfo::filledFolder().filePath(record.fileName));
    return bytes && BackupJSON::isPDF(*bytes) ? bytes : std::nullopt;
}

/// Makes one backup file: writes it, reads it back, gives it its name.
class BackupFile final
{
public:
    BackupFile(const QSBackup::File &contents, const QSBackup::Progress &progress,
               const std::stop_token &stop)
        : m_contents(contents), m_progress(progress), m_stop(stop)
    {
    }

    /// How many filled PDFs were left out.
    int write(const QString &path)
    {
        const QFileInfo target(path);
        m_file.setFileTemplate(target.path() + u"/.qsbackup-XXXXXX"_s);
        if (!m_file.open()) {
            throw failure(m_file.errorString());
        }
        BackupJSON::write(
            m_contents, [this](const QSBackup::PDF &record) { return keptData(record); }, m_file);
        flushToDisk();
        verify();
        rename(target.isSymLink() ? target.canonicalFilePath() : path);
        return static_cast<int>(m_contents.filledPDFs.size() - m_kept.size());
    }

private:
    std::optional<QByteArray> keptData(const QSBackup::PDF &record)
    {
        step();
        // The disk is to be at work meanwhile, and not only when all is written.
        ::sync_file_range(m_file.handle(), 0, 0, SYNC_FILE_RANGE_WRITE);
        std::optional<QByteArray> data = dataOf(record);
        if (data) {
            m_kept.append(record);
            m_hashes.append(hash(*data));
        }
        return data;
    }

    void flushToDisk()
    {
        if (!m_file.flush() || ::fsync(m_file.handle()) != 0) {
            throw failure(qt_error_string(errno));
        }
    }

    /// Drops what comes next from memory and has it fetched from the disk, a stretch at a time and
    /// half a stretch ahead: a medium that takes everything and keeps nothing is to be found out.
    void fetchFromDisk()
    {
        constexpr qint64 stretch = 16'777'216;
        if (m_file.pos() + stretch / 2 >= m_fetched) {
            ::posix_fadvise(m_file.handle(), m_fetched, stretch, POSIX_FADV_DONTNEED);
            ::posix_fadvise(m_file.handle(), m_fetched, stretch, POSIX_FADV_WILLNEED);
            m_fetched += stretch;
        }
    }

    /// Throws unless the file holds what the store held.
    void verify()
    {
        QList<QSBackup::PDF> records;
        QList<std::size_t> hashes;
        m_file.seek(0);
        const auto sink = [&](QSBackup::PDF &&pdf) {
            step();
            hashes.append(hash(std::exchange(pdf.data, {})));
            records.append(std::move(pdf));
        };
        QSBackup::File found = BackupJSON::read(m_file, sink, [this] { fetchFromDisk(); });
        found.filledPDFs = records;
        QSBackup::File expected = m_contents;
        expected.filledPDFs = m_kept;
        if (found != expected || hashes != m_hashes) {
            throw failure(u"what was read back from it differs."_s);
        }
    }

    void rename(const QString &path)
    {
        const QByteArray from = QFile::encodeName(m_file.fileName());
        if (std::rename(from.constData(), QFile::encodeName(path).constData()) != 0) {
            throw failure(qt_error_string(errno));
        }
        m_file.setAutoRemove(false);
        if (!QSDisk::syncNames(QFileInfo(path).path())) {
            throw failure(qt_error_string(errno));
        }
    }

    /// One filled PDF more, written or read back.
    void step()
    {
        if (m_stop.stop_requested()) {
            throw QSError::invalid(u"The backup was stopped."_s);
        }
        if (m_progress) {
            m_progress(m_step++, static_cast<int>(2 * m_contents.filledPDFs.size()));
        }
    }

    /// Good within this process, which is all that is needed, and far faster than a cryptographic
    /// hash: nobody is at work here but chance.
    static std::size_t hash(const QByteArray &bytes)
    {
        return qHashBits(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }

    const QSBackup::File &m_contents;
    const QSBackup::Progress &m_progress;
    const std::stop_token &m_stop;
    QTemporaryFile m_file;
    QList<QSBackup::PDF> m_kept; ///< the filled PDFs that were written, without their data
    QList<std::size_t> m_hashes;
    int m_step = 0;
    qint64 m_fetched = 0; ///< how far the file was asked for anew
};
} // namespace

QString QSBackup::suggestedName()
{
    return u"Vell Quillstone Backup %1.%2"_s.arg(QSDate::iso(QSClock::today()), fileExtension);
}

QSBackup::File QSBackup::contents(QSStore &store)
{
    store.finishRestore(); // or files of the state before it would go with its records
    File file{.format = format,
              .version = formatVersion,
              .created = QSClock::now().toString(Qt::ISODate),
              .app = QSInfo::appName + u' ' + QSInfo::version(),
              .profile = store.profile(),
              .documents = {},
              .filledPDFs = {}};
    const QList<QSDocument> documents = store.documents();
    for (const QSDocument &document : documents) {
        file.documents.append(docFrom(document));
    }
    const QList<QSFilledPDF> records = store.filledPDFs();
    for (const QSFilledPDF &record : records) {
        file.filledPDFs.append(pdfFrom(record));
    }
    return file;
}

QByteArray QSBackup::make(QSStore &store)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    BackupJSON::write(contents(store), dataOf, buffer);
    return buffer.data();
}

int QSBackup::write(QSStore &store, const QUrl &url)
{
    return write(contents(store), url);
}

int QSBackup::write(const File &contents, const QUrl &url, const Progress &progress,
                    const std::stop_token &stop)
{
    if (!url.isLocalFile()) {
        throw QSError::invalid(u"\"%1\" is not a file on this computer."_s.arg(url.toString()));
    }
    return BackupFile(contents, progress, stop).write(url.toLocalFile());
}
