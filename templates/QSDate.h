#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>

#include <optional>

/// How dates are typed, stored and printed. American English whatever the desktop's language is.
/// Any thread.
namespace QSDate {
/// A real calendar date in the form "yyyy-MM-dd", four, two and two ASCII digits, from the year 1
/// on; blanks around it are allowed.
[[nodiscard]] std::optional<QDate> parseISO(const QString &text);
/// "2027-03-01"; empty for a date that is not valid.
[[nodiscard]] QString iso(QDate date);
/// "March 1, 2027"
[[nodiscard]] QString longFormat(QDate date);
/// The long form of a text that parseISO reads, any other text unchanged.
[[nodiscard]] QString longText(const QString &text);
/// "Mar 1, 2027 4:05 PM", in local time.
[[nodiscard]] QString stamp(const QDateTime &time);
/// Whole days between two instants: seconds divided by 86,400 and rounded down, not calendar days.
[[nodiscard]] qint64 days(const QDateTime &from, const QDateTime &to);
} // namespace QSDate
