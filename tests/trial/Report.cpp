#include "Report.h"

using namespace Qt::Literals::StringLiterals;

namespace {
QString firstOf(const QString &what, const QStringList &things, bool counted)
{
    constexpr qsizetype most = 3;
    if (things.isEmpty()) {
        return {};
    }
    const QString more = things.size() > most ? u" | …"_s : QString();
    const QString count = counted ? u" %1"_s.arg(things.size()) : QString();
    return what + count + u": "_s + things.mid(0, most).join(u" | "_s) + more;
}

QString listed(const QString &what, const QStringList &things)
{
    QString lines;
    for (const QString &thing : things) {
        lines += what + u": "_s + thing + u'\n';
    }
    return lines;
}

QStringList unlessEmpty(const QString &text)
{
    return text.isEmpty() ? QStringList() : QStringList{text};
}
} // namespace

QString FormReport::line() const
{
    QStringList parts{firstOf(u"NOT OPENED"_s, unlessEmpty(refusal), false),
                      firstOf(u"REFUSED UNTOUCHED"_s, unlessEmpty(untouched), false),
                      firstOf(u"REFUSED FILLED"_s, filled, false),
                      firstOf(u"LOST"_s, verdict.lost, false),
                      firstOf(u"NOT DRAWN"_s, verdict.notDrawn, true),
                      firstOf(u"READ OTHERWISE"_s, verdict.readOtherwise, true),
                      firstOf(u"not judged"_s, verdict.notes, false)};
    parts.removeAll(QString());
    const QString head =
        opened ? u"%1: %2 pages, %3 fields: "_s.arg(name).arg(pages).arg(fields) : name + u": "_s;
    return head + (parts.isEmpty() ? u"ok"_s : parts.join(u"; "_s));
}

QString FormReport::everything() const
{
    return listed(u"NOT OPENED"_s, unlessEmpty(refusal)) +
           listed(u"REFUSED UNTOUCHED"_s, unlessEmpty(untouched)) +
           listed(u"REFUSED FILLED"_s, filled) + listed(u"LOST"_s, verdict.lost) +
           listed(u"NOT DRAWN"_s, verdict.notDrawn) +
           listed(u"READ OTHERWISE"_s, verdict.readOtherwise) +
           listed(u"not judged"_s, verdict.notes);
}

void Totals::add(const FormReport &form)
{
    m_forms += 1;
    m_opened += form.opened ? 1 : 0;
    m_untouched += form.untouched.isEmpty() ? 0 : 1;
    m_filled += form.filled.isEmpty() ? 0 : 1;
    m_lost += form.verdict.lost.isEmpty() ? 0 : 1;
    m_notDrawn += form.verdict.notDrawn.size();
    m_readOtherwise += form.verdict.readOtherwise.size();
}

QString Totals::line() const
{
    return u"FORMS %1 OPENED %2 REFUSED-UNTOUCHED %3 REFUSED-FILLED %4 LOST %5 NOT-DRAWN %6 READ-OTHERWISE %7"_s
        .arg(m_forms)
        .arg(m_opened)
        .arg(m_untouched)
        .arg(m_filled)
        .arg(m_lost)
        .arg(m_notDrawn)
        .arg(m_readOtherwise);
}

bool Totals::areGood() const
{
    return m_untouched == 0 && m_filled == 0 && m_lost == 0 && m_notDrawn == 0 &&
           m_readOtherwise == 0;
}
