#include "QSDirectory.h"

#include "QSDate.h"
#include "QSMutation.h"

#include <QSet>
#include <QUrl>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
QString title(QSCategory category)
{
    return QSCategories::info(category).title.toString();
}

/// Walks a directory in its order and writes down what is wrong with it, a line each.
class Validator final
{
public:
    explicit Validator(const QSDirectory &directory) : m_directory(directory) {}

    [[nodiscard]] QStringList problems()
    {
        if (!QSDate::parseISO(m_directory.checked)) {
            add(u"directory check date \"%1\" is not a date"_s.arg(m_directory.checked));
        }
        for (const QSEntry &entry : m_directory.entries) {
            checkEntry(entry);
        }
        for (const QSJurisdiction &place : m_directory.jurisdictions) {
            checkJurisdiction(place);
        }
        for (QStringView code : QSDirectory::covered) {
            if (!m_directory.jurisdiction(code)) {
                add(u"state %1 is missing"_s.arg(code));
            }
        }
        if (!m_directory.federal()) {
            add(u"federal (US) section is missing"_s);
        }
        return m_problems;
    }

private:
    void add(const QString &line) { m_problems.append(line); }

    void checkEntry(const QSEntry &entry)
    {
        const auto say = [&](const QString &what) { add(entry.id + u": "_s + what); };
        if (m_ids.contains(entry.id) && !QSMutation::on(u"duplicate-id")) {
            say(u"duplicate id"_s);
        }
        m_ids.insert(entry.id);
        if (entry.id.isEmpty() || entry.title.isEmpty() || entry.agency.isEmpty()) {
            say(u"missing id, title or agency"_s);
        }
        if (!m_directory.jurisdiction(entry.j)) {
            say(u"unknown jurisdiction "_s + entry.j);
        }
        if (!QSDirectory::wellFormed(entry.url)) {
            say(u"official URL is not a well-formed https link: "_s + entry.url);
        }
        if (!entry.info.isEmpty() && !QSDirectory::wellFormed(entry.info)) {
            say(u"info URL is not a well-formed https link: "_s + entry.info);
        }
        if (entry.checked && !QSDate::parseISO(*entry.checked)) {
            say(u"checked date \"%1\" is not a date"_s.arg(*entry.checked));
        }
        if (entry.kind == QSKind::pdf && entry.url.toLower().endsWith(u".docx"_s)) {
            say(u"marked PDF but links a Word file"_s);
        }
        if (QSCategories::isFederal(entry.cat) != (entry.j == u"US"_s)) {
            say(u"federal category in a state, or state category in federal"_s);
        }
    }

    void checkJurisdiction(const QSJurisdiction &place)
    {
        checkLink(place, u"selfHelp"_s, place.selfHelp);
        checkLink(place, u"business"_s, place.business);
        checkLink(place, u"businessFees"_s, place.businessFees);
        if (place.code == u"US"_s) {
            for (QSCategory category : QSCategories::federal) {
                checkEntries(place, category);
            }
        } else {
            checkState(place);
        }
        if (place.poa && !QSDirectory::wellFormed(place.poa->url)) {
            add(place.code + u": POA link not well-formed"_s);
        }
        for (const QSLegalAid &aid : place.legalAid) {
            if (!QSDirectory::wellFormed(aid.url)) {
                add(place.code + u": legal aid link not well-formed: "_s + aid.url);
            }
        }
    }

    void checkState(const QSJurisdiction &place)
    {
        checkLink(place, u"courtForms"_s, place.courtForms);
        checkLink(place, u"courtFees"_s, place.courtFees);
        for (QSCategory category : QSCategories::required) {
            checkEntries(place, category);
            if (place.office(category).value_or(QString()).isEmpty()) {
                add(place.code + u": no filing office text for "_s + title(category));
            }
        }
        if (!place.poa) {
            add(place.code + u": no power of attorney information"_s);
        }
        const auto any = [&place](auto test) { return std::ranges::any_of(place.legalAid, test); };
        const bool aid = any([](const QSLegalAid &each) {
            return each.kind.startsWith(u"LawHelp"_s) || each.kind.startsWith(u"LSC"_s);
        });
        if (!aid || !any([](const QSLegalAid &each) { return each.kind == u"Bar referral"_s; })) {
            add(place.code + u": legal aid list needs LawHelp/LSC and a bar referral service"_s);
        }
    }

    void checkLink(const QSJurisdiction &place, const QString &field, const QString &url)
    {
        if (!QSDirectory::wellFormed(url)) {
            add(u"%1: %2 link is not well-formed: "_s.arg(place.code, field) + url);
        }
    }

    void checkEntries(const QSJurisdiction &place, QSCategory category)
    {
        if (m_directory.entriesFor(place.code, category).isEmpty()) {
            add(place.code + u": no entry for "_s + title(category));
        }
    }

    const QSDirectory &m_directory;
    QStringList m_problems;
    QSet<QString> m_ids;
};
} // namespace

bool QSDirectory::wellFormed(const QString &url)
{
    const QStringView scheme = QSMutation::on(u"plain-http") ? u"http" : u"https:";
    if (url.isEmpty() || url.trimmed() != url || url.contains(u' ') ||
        !url.startsWith(scheme)) { // QUrl would take the scheme in any case
        return false;
    }
    const QUrl parsed(url, QUrl::StrictMode);
    const QString host = parsed.host();
    return parsed.isValid() && host.contains(u'.') && !host.startsWith(u'.') &&
           !host.endsWith(u'.');
}

QStringList QSDirectory::problems() const
{
    return Validator(*this).problems();
}
