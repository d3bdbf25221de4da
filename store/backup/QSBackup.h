#pragma once

#include "QSStore.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QUrl>

#include <functional>
#include <memory>
#include <stop_token>

class QIODevice;
class QSRestoreFolder;

/// The user's whole state (profile, documents, filled PDFs with their files) as one JSON file, and
/// back.
///
/// What takes a store belongs to the store's thread. Where that must not wait, the work goes in
/// steps: contents() there, write() of them anywhere; stage() anywhere, restore() of what is staged
/// there. No more than one filled PDF is in memory at a time. Failures are thrown as QSError; a
/// file that can't be restored as QSError::badBackup.
namespace QSBackup {
inline const QString format = QStringLiteral("Vell Quillstone backup");
inline constexpr qint64 formatVersion = 1;
inline const QString fileExtension = QStringLiteral("qsbackup");
/// With today's date and the extension.
[[nodiscard]] QString suggestedName();

/// A document as a backup has it; times are seconds since 1970-01-01 UTC.
struct Doc
{
    QString templateID;
    QString templateVersion;
    QString title;
    QMap<QString, QString> values;
    QString state;
    double created = 0;
    double modified = 0;

    bool operator==(const Doc &) const = default;
};

/// A filled PDF as a backup has it.
struct PDF
{
    QString entryID;
    QString title;
    QString fileName;
    double created = 0;
    double modified = 0;
    QByteArray data; ///< the file; empty where only the records are held

    bool operator==(const PDF &) const = default;
};

/// A backup's contents.
struct File
{
    QString format;
    qint64 version = 0;
    QString created; ///< when, ISO 8601 in UTC
    QString app;     ///< which program made it; informational
    QMap<QString, QString> profile;
    QList<Doc> documents;
    QList<PDF> filledPDFs;

    bool operator==(const File &) const = default;
};

/// Called as the work gets on: so many parts done, of so many.
using Progress = std::function<void(int, int)>;

/// What a backup made now has to hold; filled PDFs without their data.
[[nodiscard]] File contents(QSStore &store);

/// A backup of the store, all in memory. Filled PDFs whose file can't be read are left out.
[[nodiscard]] QByteArray make(QSStore &store);

/// Writes a backup to a file, over one that is there, for its owner's eyes only. It gets its name
/// once it was read back from the disk and found to hold what it should; until then, and after a
/// failure, the place is as it was. Returns how many filled PDFs were left out, because their file
/// can't be read or is no PDF. Throws when stopped.
int write(QSStore &store, const QUrl &url);
/// The same on any thread, for contents() taken before.
int write(const File &contents, const QUrl &url, const Progress &progress = {},
          const std::stop_token &stop = {});

/// Reads and checks a backup, all in memory.
[[nodiscard]] File read(const QByteArray &bytes);

/// Replaces what the store holds by the backup, all of it or, with an exception, nothing. Ids of
/// documents and filled PDFs are new ones, so that nothing that still has an old id can meet
/// another record. Files of filled PDFs that are replaced stay, unless the backup has their names;
/// a file that no record named stays in any case, and the backup's gets a new name.
void restore(const QByteArray &bytes, QSStore &store);

/// A backup that was read, checked and laid ready. When the last copy goes, so do its files.
struct Staged
{
    File file; ///< filled PDFs without their data
    std::shared_ptr<QSRestoreFolder> folder;
};

/// Reads, checks and lays ready a backup file, on any thread, for the store whose url() is given.
/// Throws when stopped. The store must neither be closed nor opened anew meanwhile.
[[nodiscard]] Staged stage(const QUrl &backup, const QUrl &database, const Progress &progress = {},
                           const std::stop_token &stop = {});
/// As restore() of bytes, and quick: the files only have to be renamed.
void restore(const Staged &staged, QSStore &store);
} // namespace QSBackup
