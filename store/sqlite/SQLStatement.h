#pragma once

#include "SQLValue.h"

#include <QByteArrayView>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

struct sqlite3;
struct sqlite3_stmt;

/// A value bound to a "?" of a statement. Made implicitly from what callers have at hand, in the
/// kind SQLite stores: numbers, texts (up to a NUL), byte strings (an empty one stays a blob),
/// points in time as seconds since 1970-01-01 UTC, nullopt and nullptr as NULL.
class SQLArg final
{
public:
    // NOLINTBEGIN(google-explicit-constructor): argument lists are written as plain values.
    SQLArg(std::nullptr_t) {}
    SQLArg(std::nullopt_t) {}
    SQLArg(int value) : m_value(qint64{value}) {}
    SQLArg(qint64 value) : m_value(value) {}
    SQLArg(bool value) : m_value(qint64{value}) {}
    SQLArg(double value) : m_value(value) {}
    SQLArg(const QString &value) : m_value(value) {}
    SQLArg(const QByteArray &value) : m_value(value) {}
    SQLArg(const QDateTime &value);
    SQLArg(const void *) = delete; ///< a pointer to characters would bind as a truth value
    template <typename T>
    SQLArg(const std::optional<T> &value) : SQLArg(value ? SQLArg(*value) : SQLArg(nullptr))
    {
    }
    // NOLINTEND(google-explicit-constructor)

    [[nodiscard]] const SQLValue &value() const { return m_value; }

private:
    SQLValue m_value;
};

/// One prepared statement, to be run once or many times; made by SQLiteDB::prepare() and owned by
/// its user. Failures are thrown as QSError::database with SQLite's text.
class SQLStatement final
{
public:
    /// Starts over with these arguments, position k for the "?" number k + 1; those left out are
    /// NULL.
    void bind(const QList<SQLArg> &args);
    /// Goes to the next row; false when there is none.
    bool step();
    /// Lets go of the current row and of the locks that reading it holds; throws what finishing
    /// the statement early brings up.
    void reset();

    /// The current row, for readers who ask for columns by name.
    [[nodiscard]] SQLRow row() const;
    /// One column of the current row as SQLite converts it to an integer or a text.
    [[nodiscard]] qint64 integer(int column) const;
    [[nodiscard]] QString text(int column) const;
    /// The text in UTF-8, in SQLite's own memory: good until the next call.
    [[nodiscard]] QByteArrayView utf8(int column) const;

private:
    friend class SQLiteDB;
    SQLStatement(sqlite3 *connection, const QString &sql);
    [[nodiscard]] SQLValue value(int column) const;

    struct Finalizer
    {
        void operator()(sqlite3_stmt *statement) const noexcept;
    };
    std::unique_ptr<sqlite3_stmt, Finalizer> m_statement;
    QStringList m_columns;
};
