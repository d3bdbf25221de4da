#include "SQLStatement.h"

#include "QSError.h"

#include <sqlite3.h>

namespace {
/// Binds one value; SQLite keeps a copy.
struct Binder
{
    sqlite3_stmt *statement;
    int position;

    void operator()(std::monostate /*null*/) const { sqlite3_bind_null(statement, position); }
    void operator()(qint64 value) const { sqlite3_bind_int64(statement, position, value); }
    void operator()(double value) const { sqlite3_bind_double(statement, position, value); }
    void operator()(const QString &value) const
    {
        sqlite3_bind_text(statement, position, value.toUtf8().constData(), -1, SQLITE_TRANSIENT);
    }
    void operator()(const QByteArray &value) const
    {
        // constData() is never null, so that an empty byte string does not become NULL.
        sqlite3_bind_blob64(statement, position, value.constData(),
                            static_cast<sqlite3_uint64>(value.size()), SQLITE_TRANSIENT);
    }
};

[[noreturn]] void fail(sqlite3 *connection)
{
    throw QSError::database(QString::fromUtf8(sqlite3_errmsg(connection)));
}
} // namespace

SQLArg::SQLArg(const QDateTime &value)
    : m_value(static_cast<double>(value.toMSecsSinceEpoch()) / 1000.0)
{
}

SQLStatement::SQLStatement(sqlite3 *connection, const QString &sql)
{
    sqlite3_stmt *statement = nullptr;
    const int result =
        sqlite3_prepare_v2(connection, sql.toUtf8().constData(), -1, &statement, nullptr);
    m_statement.reset(statement);
    if (result != SQLITE_OK || statement == nullptr) {
        fail(connection);
    }
    for (int column = 0; column < sqlite3_column_count(statement); ++column) {
        m_columns.append(QString::fromUtf8(sqlite3_column_name(statement, column)));
    }
}

void SQLStatement::Finalizer::operator()(sqlite3_stmt *statement) const noexcept
{
    sqlite3_finalize(statement);
}

void SQLStatement::bind(const QList<SQLArg> &args)
{
    sqlite3_reset(m_statement.get());
    sqlite3_clear_bindings(m_statement.get());
    int position = 0;
    for (const SQLArg &arg : args) {
        std::visit(Binder{m_statement.get(), ++position}, arg.value());
    }
}

bool SQLStatement::step()
{
    const int result = sqlite3_step(m_statement.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
        fail(sqlite3_db_handle(m_statement.get()));
    }
    return result == SQLITE_ROW;
}

void SQLStatement::reset()
{
    if (sqlite3_reset(m_statement.get()) != SQLITE_OK) {
        fail(sqlite3_db_handle(m_statement.get()));
    }
}

SQLRow SQLStatement::row() const
{
    SQLRow row;
    row.values.reserve(m_columns.size());
    for (int column = 0; column < m_columns.size(); ++column) {
        row.values.insert(m_columns.at(column), value(column));
    }
    return row;
}

SQLValue SQLStatement::value(int column) const
{
    switch (sqlite3_column_type(m_statement.get(), column)) {
    case SQLITE_INTEGER:
        return integer(column);
    case SQLITE_FLOAT:
        return sqlite3_column_double(m_statement.get(), column);
    case SQLITE_TEXT:
        return text(column);
    case SQLITE_BLOB: {
        const auto *bytes =
            static_cast<const char *>(sqlite3_column_blob(m_statement.get(), column));
        return QByteArray(bytes, sqlite3_column_bytes(m_statement.get(), column));
    }
    default:
        return std::monostate{};
    }
}

qint64 SQLStatement::integer(int column) const
{
    return sqlite3_column_int64(m_statement.get(), column);
}

QString SQLStatement::text(int column) const
{
    return QString::fromUtf8(utf8(column));
}

QByteArrayView SQLStatement::utf8(int column) const
{
    // The text first: asking for it may convert the value, which the byte count then speaks of.
    const unsigned char *text = sqlite3_column_text(m_statement.get(), column);
    return {text, sqlite3_column_bytes(m_statement.get(), column)};
}
