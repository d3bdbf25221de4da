#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

class SQLiteDB;

/// Where the filled PDFs of a restore lie ready until the database has changed over to them: a
/// folder of its own inside "Filled PDFs", from which each file only has to be renamed.
///
/// A restore is one change in two places. The transaction that brings the new records also notes
/// this folder's name, in a table that is there for so long only; then the files move. Whoever
/// opens the database next sees from the note what is left to do, and without a note that a folder
/// is a leftover. Failures are thrown as QSError. An object may be filled on any thread, one at a
/// time; what takes a database is for the thread that owns it.
class QSRestoreFolder final
{
public:
    /// Makes the folder, for the database of that path.
    explicit QSRestoreFolder(const QString &databasePath);
    /// Clears the folder away unless keep() was called.
    ~QSRestoreFolder() = default;
    QSRestoreFolder(const QSRestoreFolder &) = delete;
    QSRestoreFolder &operator=(const QSRestoreFolder &) = delete;

    /// Writes a file under the name it is to have. Throws when the name can't be a file's, or is
    /// taken by one that was added before or by a folder among the filled PDFs.
    void add(const QString &fileName, const QByteArray &pdf);
    /// Returns when all that was added is on the disk.
    void sync() const;
    /// To be called inside the transaction that brings the records of these files.
    void noteIn(SQLiteDB &db) const;
    /// From here on the note decides about the folder. To be called after the commit.
    void keep() { m_folder.setAutoRemove(false); }

    /// Moves the files of a noted folder into place, over files of the same names, and takes the
    /// note away. Does nothing without a note. What fails is still noted, and can be tried again.
    static void finish(SQLiteDB &db);
    /// Clears away what restores of this database have left that were ended before their commit.
    /// Only when no restore is under way.
    static void clearLeftovers(const QString &databasePath);

private:
    QTemporaryDir m_folder;
};
