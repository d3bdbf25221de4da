#include "SQLValue.h"

#include <QByteArrayView>
#include <QLocale>

#include <charconv>
#include <cmath>
#include <limits>

namespace {
/// The number that the whole text spells in decimal, with an optional sign.
template <typename Number>
std::optional<Number> parsed(const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    const char *begin = utf8.constBegin();
    const char *end = utf8.constEnd();
    if (utf8.startsWith('+') && !utf8.startsWith("+-")) {
        ++begin;
    }
    Number number{};
    const auto [stop, error] = std::from_chars(begin, end, number);
    return error == std::errc{} && stop == end ? std::optional(number) : std::nullopt;
}

std::optional<qint64> towardZero(double real)
{
    constexpr double limit = 9223372036854775808.0; // 2^63, the first double above every qint64
    if (real >= limit) {
        return std::numeric_limits<qint64>::max();
    }
    if (real < -limit) {
        return std::numeric_limits<qint64>::min();
    }
    return real == real ? std::optional(static_cast<qint64>(real)) : std::nullopt;
}
} // namespace

std::optional<qint64> SQLRow::intValue(const QString &column) const
{
    const SQLValue value = values.value(column);
    if (const auto *integer = std::get_if<qint64>(&value)) {
        return *integer;
    }
    if (const auto *real = std::get_if<double>(&value)) {
        return towardZero(*real);
    }
    const auto *text = std::get_if<QString>(&value);
    return text != nullptr ? parsed<qint64>(*text) : std::nullopt;
}

std::optional<double> SQLRow::doubleValue(const QString &column) const
{
    const SQLValue value = values.value(column);
    if (const auto *integer = std::get_if<qint64>(&value)) {
        return static_cast<double>(*integer);
    }
    if (const auto *real = std::get_if<double>(&value)) {
        return *real;
    }
    const auto *text = std::get_if<QString>(&value);
    const auto number = text != nullptr ? parsed<double>(*text) : std::nullopt;
    return number && std::isfinite(*number) ? number : std::nullopt; // "nan" and "inf" are words
}

QString SQLRow::string(const QString &column) const
{
    return str(column).value_or(QString());
}

std::optional<QString> SQLRow::str(const QString &column) const
{
    const SQLValue value = values.value(column);
    if (const auto *integer = std::get_if<qint64>(&value)) {
        return QString::number(*integer);
    }
    if (const auto *real = std::get_if<double>(&value)) {
        return QString::number(*real, 'g', QLocale::FloatingPointShortest);
    }
    const auto *text = std::get_if<QString>(&value);
    return text != nullptr ? std::optional(*text) : std::nullopt;
}

std::optional<QByteArray> SQLRow::data(const QString &column) const
{
    const SQLValue value = values.value(column);
    const auto *bytes = std::get_if<QByteArray>(&value);
    return bytes != nullptr ? std::optional(*bytes) : std::nullopt;
}

bool SQLRow::boolValue(const QString &column) const
{
    return intValue(column).value_or(0) != 0;
}
