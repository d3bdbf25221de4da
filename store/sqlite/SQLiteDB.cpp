#include "SQLiteDB.h"

#include "QSError.h"

#include <QFile>

#include <sqlite3.h>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int busyTimeout = 3000; // milliseconds
}

SQLiteDB::SQLiteDB(const QString &path, bool readOnly) : m_path(path)
{
    const int flags = readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    const int result =
        sqlite3_open_v2(QFile::encodeName(path).constData(), &m_handle, flags, nullptr);
    try {
        if (result != SQLITE_OK) {
            throw QSError::database(m_handle != nullptr ? lastError() : u"could not open"_s);
        }
        sqlite3_busy_timeout(m_handle, busyTimeout);
        if (!readOnly) {
            exec(u"PRAGMA foreign_keys = ON"_s);
        }
    } catch (...) {
        close(); // no destructor runs for what was never constructed
        throw;
    }
}

SQLiteDB::~SQLiteDB()
{
    close();
}

void SQLiteDB::exec(const QString &sql)
{
    if (m_handle == nullptr) {
        throw QSError::database(lastError());
    }
    char *message = nullptr;
    if (sqlite3_exec(m_handle, sql.toUtf8().constData(), nullptr, nullptr, &message) != SQLITE_OK) {
        const QString text = message != nullptr ? QString::fromUtf8(message) : lastError();
        sqlite3_free(message);
        throw QSError::database(text);
    }
}

qint64 SQLiteDB::run(const QString &sql, const QList<SQLArg> &args)
{
    SQLStatement statement = prepare(sql);
    statement.bind(args);
    statement.step();
    statement.reset();
    return sqlite3_last_insert_rowid(m_handle);
}

QList<SQLRow> SQLiteDB::query(const QString &sql, const QList<SQLArg> &args)
{
    SQLStatement statement = prepare(sql);
    statement.bind(args);
    QList<SQLRow> rows;
    while (statement.step()) {
        rows.append(statement.row());
    }
    return rows;
}

qint64 SQLiteDB::scalarInt(const QString &sql, const QList<SQLArg> &args)
{
    try {
        const QList<SQLRow> rows = query(sql, args);
        if (rows.isEmpty() || rows.first().values.isEmpty()) {
            return 0;
        }
        return rows.first().intValue(rows.first().values.constBegin().key()).value_or(0);
    } catch (const QSError &) {
        return 0;
    }
}

SQLStatement SQLiteDB::prepare(const QString &sql)
{
    if (m_handle == nullptr) {
        throw QSError::database(lastError());
    }
    return {m_handle, sql};
}

int SQLiteDB::changes() const
{
    return m_handle != nullptr ? sqlite3_changes(m_handle) : 0;
}

QString SQLiteDB::lastError() const
{
    return m_handle != nullptr ? QString::fromUtf8(sqlite3_errmsg(m_handle)) : u"closed"_s;
}

void SQLiteDB::transaction(const std::function<void()> &body)
{
    exec(u"BEGIN IMMEDIATE"_s);
    try {
        body();
        exec(u"COMMIT"_s);
    } catch (...) {
        rollback();
        throw;
    }
}

void SQLiteDB::rollback() noexcept
{
    // Some failures make SQLite roll back by itself; then this one fails, and that is fine.
    if (m_handle != nullptr) {
        sqlite3_exec(m_handle, "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

int SQLiteDB::close()
{
    // The deferred form: a statement still in someone's hands keeps the connection until it ends.
    return sqlite3_close_v2(std::exchange(m_handle, nullptr));
}
