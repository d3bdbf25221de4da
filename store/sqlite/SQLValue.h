#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>

#include <optional>
#include <variant>

/// One column's value as SQLite stores it. Equal by storage class and payload.
/// std::monostate is NULL.
using SQLValue = std::variant<std::monostate, qint64, double, QString, QByteArray>;

/// One result row: column name (aliases count) to value. Of two columns with one name the later
/// stays.
struct SQLRow
{
    QHash<QString, SQLValue> values;

    /// Integers as they are, reals cut toward zero (held to the 64-bit range), texts that are
    /// whole base-10 numbers; absent for everything else.
    [[nodiscard]] std::optional<qint64> intValue(const QString &column) const;
    /// Numbers, and texts that read as one; absent for everything else.
    [[nodiscard]] std::optional<double> doubleValue(const QString &column) const;
    /// Texts, and numbers in decimal (reals in the shortest form that reads back the same); empty
    /// for everything else.
    [[nodiscard]] QString string(const QString &column) const;
    /// As string(), but absent where a column is missing, NULL or a blob.
    [[nodiscard]] std::optional<QString> str(const QString &column) const;
    /// Blobs only.
    [[nodiscard]] std::optional<QByteArray> data(const QString &column) const;
    /// True when intValue() is there and not zero.
    [[nodiscard]] bool boolValue(const QString &column) const;
};
