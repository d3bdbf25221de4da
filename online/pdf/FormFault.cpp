#include "FormFault.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr qsizetype longestLabel = 60;
constexpr qsizetype longestRest = 40;

/// The end of a text is what tells one label from the next, and its beginning says what it is.
QString shortened(const QString &text, qsizetype longest)
{
    if (text.size() <= longest) {
        return text;
    }
    const qsizetype half = longest / 2;
    return text.first(half).trimmed() + u" … "_s + text.last(half).trimmed();
}

QString place(const FormFault &fault)
{
    const QString label = fault.label.isEmpty()
                              ? u"a field without a name"_s
                              : u'"' + shortened(fault.label, longestLabel) + u'"';
    return u"%1 on page %2"_s.arg(label, QString::number(fault.page + 1)); // labels may have a "%2"
}
} // namespace

QString FormFault::inShort() const
{
    if (!missing.isEmpty()) {
        return u"no font here has %1"_s.arg(missing);
    }
    if (rest.isEmpty()) {
        return u"can't be seen on the page"_s;
    }
    const qsizetype words = rest.simplified().split(u' ').size();
    return words == 1 ? u"1 word too long"_s : u"%1 words too long"_s.arg(words);
}

QString FormFault::sentence() const
{
    if (!missing.isEmpty()) {
        return u"%1: no font on this computer has the letters %2."_s.arg(place(*this), missing);
    }
    if (rest.isEmpty()) {
        return u"%1: what stands there is covered and can't be seen on paper."_s.arg(place(*this));
    }
    return u"%1: \"%2\" does not fit."_s.arg(place(*this),
                                             shortened(rest.simplified(), longestRest));
}

QString FormFault::summary(const QList<FormFault> &faults)
{
    const int page = faults.isEmpty() ? 0 : faults.constFirst().page + 1;
    const bool cut =
        std::ranges::none_of(faults, [](const FormFault &fault) { return fault.rest.isEmpty(); });
    if (faults.size() == 1) {
        return u"1 answer %1 on page %2."_s.arg(cut ? u"is cut"_s : u"can't be read"_s).arg(page);
    }
    return u"%1 answers %2, the first of them on page %3."_s.arg(faults.size())
        .arg(cut ? u"are cut"_s : u"can't be read whole"_s)
        .arg(page);
}

QString FormFault::sentence(const QList<FormFault> &faults)
{
    if (faults.isEmpty()) {
        return {};
    }
    const QString first = faults.constFirst().sentence();
    const QString sentence = first.first(1).toUpper() + first.sliced(1);
    const qsizetype others = faults.size() - 1;
    return others == 0   ? sentence
           : others == 1 ? sentence + u" So it is with 1 other answer."_s
                         : sentence + u" So it is with %1 other answers."_s.arg(others);
}
