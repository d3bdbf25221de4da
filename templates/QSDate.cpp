#include "QSDate.h"

#include <QLocale>

using namespace Qt::Literals::StringLiterals;

static const QLocale &english()
{
    static const QLocale locale(QLocale::English, QLocale::UnitedStates);
    return locale;
}

/// The number that four or two ASCII digits write; absent when one of them is anything else.
static std::optional<int> digits(QStringView text)
{
    int number = 0;
    for (const QChar character : text) {
        if (character < u'0' || character > u'9') {
            return std::nullopt;
        }
        number = number * 10 + (character.unicode() - u'0');
    }
    return number;
}

namespace QSDate {
std::optional<QDate> parseISO(const QString &text)
{
    // Not QDate::fromString: it lets signs and other alphabets' digits through.
    const QStringView typed = QStringView(text).trimmed();
    if (typed.size() != 10 || typed.at(4) != u'-' || typed.at(7) != u'-') {
        return std::nullopt;
    }
    const std::optional<int> year = digits(typed.first(4));
    const std::optional<int> month = digits(typed.sliced(5, 2));
    const std::optional<int> day = digits(typed.last(2));
    if (!year || !month || !day) {
        return std::nullopt;
    }
    const QDate date(*year, *month, *day);
    return date.isValid() ? std::optional(date) : std::nullopt;
}

QString iso(QDate date)
{
    return date.toString(Qt::ISODate);
}

QString longFormat(QDate date)
{
    return english().toString(date, u"MMMM d, yyyy"_s);
}

QString longText(const QString &text)
{
    const std::optional<QDate> date = parseISO(text);
    return date ? longFormat(*date) : text;
}

QString stamp(const QDateTime &time)
{
    return english().toString(time.toLocalTime(), u"MMM d, yyyy h:mm AP"_s);
}

qint64 days(const QDateTime &from, const QDateTime &to)
{
    constexpr qint64 day = 86'400'000;
    const qint64 elapsed = from.msecsTo(to);
    return elapsed / day - (elapsed % day < 0 ? 1 : 0);
}
} // namespace QSDate
