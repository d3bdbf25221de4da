#pragma once

#include "SQLStatement.h"
#include "SQLValue.h"

#include <functional>

struct sqlite3;

/// One connection to one SQLite file: the only way any part of the program talks to SQLite.
///
/// Synchronous; used by one thread at a time and takes no lock of its own. Every failure is thrown
/// as QSError::database with SQLite's own text, "closed" after close(). It knows no schema. Another
/// connection's lock is waited for up to 3 seconds.
class SQLiteDB final
{
public:
    /// Opens the file, or creates it unless readOnly is set; foreign keys are on.
    explicit SQLiteDB(const QString &path, bool readOnly = false);
    ~SQLiteDB();
    SQLiteDB(const SQLiteDB &) = delete;
    SQLiteDB &operator=(const SQLiteDB &) = delete;

    [[nodiscard]] const QString &path() const { return m_path; }

    /// Runs any number of statements without parameters.
    void exec(const QString &sql);
    /// Runs one statement to its first step; returns the connection's last insert row id, whether
    /// or not this statement inserted.
    qint64 run(const QString &sql, const QList<SQLArg> &args = {});
    [[nodiscard]] QList<SQLRow> query(const QString &sql, const QList<SQLArg> &args = {});
    /// The one value of the first row as a whole number; 0 when there is none or on any error, for
    /// counts and flags where 0 is the safe answer.
    [[nodiscard]] qint64 scalarInt(const QString &sql, const QList<SQLArg> &args = {});
    /// A statement to run many times, or whose rows are too many to gather.
    [[nodiscard]] SQLStatement prepare(const QString &sql);
    /// Rows changed by the latest statement.
    [[nodiscard]] int changes() const;
    /// SQLite's current error text, "closed" after close().
    [[nodiscard]] QString lastError() const;

    /// Runs the body between BEGIN IMMEDIATE and COMMIT; rolls back and rethrows what the body or
    /// the commit throws. Transactions don't nest.
    void transaction(const std::function<void()> &body);

    /// Lets the connection go; returns SQLite's result code. Closing again does nothing.
    int close();

private:
    void rollback() noexcept;

    sqlite3 *m_handle = nullptr;
    QString m_path;
};
