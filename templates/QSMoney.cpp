#include "QSMoney.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int maxDigits = 30;

/// An amount as its digits: the value is 0.DIGITS times ten to the power of point.
struct Decimal
{
    bool negative = false;
    QString digits;
    qsizetype point = 0;
};

std::optional<Decimal> parse(const QString &text)
{
    static const QRegularExpression pattern(
        uR"(\A([+-]?)(?=\.?[0-9])([0-9]*)\.?([0-9]*)(?:[eE]([+-]?[0-9]+))?\z)"_s);
    const QRegularExpressionMatch match = pattern.match(text);
    const QString digits = match.captured(2) + match.captured(3);
    // An exponent too long for an int reads as 0, hence the check of ok.
    bool ok = true;
    const int exponent = match.hasCaptured(4) ? match.captured(4).toInt(&ok) : 0;
    if (!match.hasMatch() || digits.size() > maxDigits || !ok || exponent < -maxDigits ||
        exponent > maxDigits) {
        return std::nullopt;
    }
    return Decimal{match.captured(1) == "-"_L1, digits, match.capturedLength(2) + exponent};
}

/// Adds one to a whole number.
QString successor(QString digits)
{
    qsizetype at = digits.size() - 1;
    for (; at >= 0 && digits.at(at) == u'9'; --at) {
        digits[at] = u'0';
    }
    if (at < 0) {
        return u'1' + digits;
    }
    digits[at] = QChar(digits.at(at).unicode() + 1);
    return digits;
}

/// Half a cent goes to the even one of the two neighbours.
bool roundsUp(QChar lastDigit, const QString &rest)
{
    if (rest.isEmpty() || rest.front() != u'5') {
        return !rest.isEmpty() && rest.front() > u'5';
    }
    const bool isHalf = rest.count(u'0') == rest.size() - 1;
    return !isHalf || (lastDigit.unicode() - u'0') % 2 == 1;
}

/// The amount's size in whole cents, without leading zeros but with three digits at least.
QString cents(const Decimal &amount)
{
    const qsizetype before = std::max<qsizetype>(0, -amount.point);
    QString digits = QString(before, u'0') + amount.digits;
    const qsizetype wanted = std::max<qsizetype>(0, amount.point) + 2;
    digits = digits.leftJustified(wanted, u'0');
    const QString rest = digits.sliced(wanted);
    digits.truncate(wanted);
    if (roundsUp(digits.back(), rest)) {
        digits = successor(digits);
    }
    while (digits.size() > 3 && digits.startsWith(u'0')) {
        digits.remove(0, 1);
    }
    return digits.rightJustified(3, u'0');
}
} // namespace

std::optional<QString> QSMoney::currency(const QString &typed)
{
    QString text = typed;
    text.remove(u'$').remove(u',');
    const std::optional<Decimal> amount = parse(text.trimmed());
    if (!amount) {
        return std::nullopt;
    }
    QString printed = cents(*amount);
    if (printed.size() > maxDigits) {
        return std::nullopt;
    }
    const bool isNothing = printed == "000"_L1;
    printed.insert(printed.size() - 2, u'.');
    for (qsizetype at = printed.size() - 6; at > 0; at -= 3) {
        printed.insert(at, u',');
    }
    return (amount->negative && !isNothing ? u"-$"_s : u"$"_s) + printed;
}
