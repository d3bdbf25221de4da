#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

class SQLiteDB;

/// Where the filled PDFs of a restore lie ready until the database has changed over to them: a
/// folder of its own inside "Filled PDFs", from which each file only has to be renamed.
///
/// A restore is one change in two places. The transaction that brings the new records also notes
/// which file of this folder gets which name, in a table that is there for so long only; then the
/// files move. Whoever opens the database next sees from the note what is left to do, and without a
/// note that a folder is a leftover.
///
/// Another database may keep its PDFs in the same place. So a file gives way only where a record of
/// this database named it; next to any other, the restored file gets a new name.
///
/// Failures are thrown as QSError. An object may be filled on any thread, one at a time; what takes
/// a database is for the thread that owns it.
class QSRestoreFolder final
{
public:
    /// Makes the folder, for the database of that path.
    explicit QSRestoreFolder(const QString &databasePath);
    /// Clears the folder away unless keep() was called.
    ~QSRestoreFolder() = default;
    QSRestoreFolder(const QSRestoreFolder &) = delete;
    QSRestoreFolder &operator=(const QSRestoreFolder &) = delete;

    /// Writes a file under the name that the backup has for it. Throws when the name can't be a
    /// file's, or is taken by one that was added before or by a folder among the filled PDFs.
    void add(const QString &fileName, const QByteArray &pdf);
    /// Returns when all that was added is on the disk.
    void sync() const;
    /// Settles what the files will be called, by the names that were added. To be called inside the
    /// transaction that brings their records, before the former records go.
    [[nodiscard]] QHash<QString, QString> noteIn(SQLiteDB &db) const;
    /// From here on the note decides about the folder. To be called after the commit.
    void keep() { m_folder.setAutoRemove(m_files.isEmpty()); }

    /// Moves what is noted into place and takes the note away. A file whose name was taken after
    /// all gets another one, and so does its record. Does nothing without a note. What fails is
    /// still noted, and can be tried again.
    static void finish(SQLiteDB &db);
    /// Clears away what restores of this database have left that were ended before their commit.
    /// Only when no restore is under way.
    static void clearLeftovers(const QString &databasePath);

private:
    QTemporaryDir m_folder;
    QStringList m_files;
};
