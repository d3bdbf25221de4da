#include "groups/Groups.h"

#include "QSDate.h"
#include "QSDirectory.h"
#include "QSTestRun.h"

#include <QSet>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {
bool isRegular(const QSEntry &entry, const QSDirectory &directory)
{
    const bool isComplete = !entry.id.isEmpty() && !entry.title.isEmpty() &&
                            !entry.agency.isEmpty() && directory.jurisdiction(entry.j);
    const bool isLinked = QSDirectory::wellFormed(entry.url) &&
                          (entry.info.isEmpty() || QSDirectory::wellFormed(entry.info));
    return isComplete && isLinked && (!entry.checked || QSDate::parseISO(*entry.checked));
}

void checkLoading(QSTestRun &run, const QSDirectory &directory)
{
    run.check(QSDirectory::loadError().isEmpty() && !directory.entries.isEmpty(),
              u"the directory loads with %1 entries %2"_s.arg(directory.entries.size())
                  .arg(QSDirectory::loadError())
                  .trimmed());
    const QStringList problems = directory.problems();
    run.check(problems.isEmpty(), u"the validator finds no problem"_s);
    for (const QString &problem : problems) {
        run.check(false, problem);
    }
}

void checkEntries(QSTestRun &run, const QSDirectory &directory)
{
    QSet<QString> ids;
    for (const QSEntry &entry : directory.entries) {
        run.check(isRegular(entry, directory) && !ids.contains(entry.id),
                  u"%1: %2"_s.arg(entry.id, entry.displayTitle()));
        ids.insert(entry.id);
    }
}

/// Where a state has no form, or nothing on where to file it.
QStringList gaps(const QSDirectory &directory, const QSJurisdiction &state)
{
    QStringList missing;
    for (QSCategory category : QSCategories::required) {
        if (directory.entriesFor(state.code, category).isEmpty() ||
            state.office(category).value_or(QString()).isEmpty()) {
            missing.append(QSCategories::info(category).title.toString());
        }
    }
    return missing;
}

bool helpsPeople(const QSJurisdiction &state)
{
    const auto hasAid = [&state](QStringView kind) {
        return std::ranges::any_of(state.legalAid, [kind](const QSLegalAid &aid) {
            return aid.kind.startsWith(kind) && QSDirectory::wellFormed(aid.url);
        });
    };
    return state.poa && QSDirectory::wellFormed(state.poa->url) && hasAid(u"Bar referral") &&
           (hasAid(u"LawHelp") || hasAid(u"LSC"));
}

void checkState(QSTestRun &run, const QSDirectory &directory, const QSJurisdiction &state)
{
    const QStringList missing = gaps(directory, state);
    run.check(missing.isEmpty(),
              u"%1: forms and a filing office for all %2 categories %3"_s.arg(state.name)
                  .arg(QSCategories::required.size())
                  .arg(missing.join(u", "_s))
                  .trimmed());
    const std::array links = {state.selfHelp, state.courtForms, state.courtFees, state.business,
                              state.businessFees};
    run.check(std::ranges::all_of(links, QSDirectory::wellFormed),
              state.name + u": self-help center, court forms, business filings and both fee pages "
                           "are well-formed links"_s);
    run.check(helpsPeople(state),
              state.name + u": power of attorney law, legal aid and a bar referral service"_s);
}

void checkCoverage(QSTestRun &run, const QSDirectory &directory)
{
    for (QStringView code : QSDirectory::covered) {
        run.check(directory.jurisdiction(code), u"%1 is in the directory"_s.arg(code));
    }
    for (const QSJurisdiction &state : directory.states()) {
        checkState(run, directory, state);
    }
    for (QSCategory category : QSCategories::federal) {
        run.check(!directory.entriesFor(u"US", category).isEmpty(),
                  u"Federal: forms for "_s + QSCategories::info(category).title.toString());
    }
}

/// A fault to put into a copy of the directory, and what the validator has to say about it.
struct Fault
{
    QStringView name;
    void (*put)(QSDirectory &directory);
    QStringView problem; ///< with the first entry's id as %1
};

constexpr std::array faults = {
    Fault{u"an id used twice",
          [](QSDirectory &directory) { directory.entries.append(directory.entries.first()); },
          u"%1: duplicate id"},
    Fault{u"an entry without an agency",
          [](QSDirectory &directory) { directory.entries.first().agency.clear(); },
          u"%1: missing id, title or agency"},
    Fault{u"a link that is not encrypted",
          [](QSDirectory &directory) { directory.entries.first().url = u"http://a.example/"_s; },
          u"%1: official URL is not a well-formed https link: http://a.example/"},
    Fault{u"a day that no calendar has",
          [](QSDirectory &directory) { directory.entries.first().checked = u"2026-02-30"_s; },
          u"%1: checked date \"2026-02-30\" is not a date"},
    Fault{u"a state left out",
          [](QSDirectory &directory) {
              directory.jurisdictions.removeIf(
                  [](const QSJurisdiction &place) { return place.code == u"TX"_s; });
          },
          u"state TX is missing"},
    Fault{u"a state without divorce forms",
          [](QSDirectory &directory) {
              directory.entries.removeIf([](const QSEntry &entry) {
                  return entry.j == u"FL"_s && entry.cat == QSCategory::divorce;
              });
          },
          u"FL: no entry for Divorce / dissolution"},
};

void checkValidator(QSTestRun &run, const QSDirectory &directory)
{
    for (const Fault &fault : faults) {
        QSDirectory damaged = directory;
        fault.put(damaged);
        run.check(damaged.problems().contains(
                      fault.problem.toString().replace(u"%1"_s, directory.entries.first().id)),
                  u"the validator notices %1"_s.arg(fault.name));
    }
}

void checkLinkRule(QSTestRun &run)
{
    const std::array refused = {u"http://courts.example.gov/form.pdf"_s,
                                u"HTTPS://courts.example.gov/"_s,
                                u"https://localhost/form.pdf"_s,
                                u"https://.example.gov/"_s,
                                u"https://courts.example.gov/a form.pdf"_s,
                                u" https://courts.example.gov/"_s,
                                QString()};
    for (const QString &link : refused) {
        run.check(!QSDirectory::wellFormed(link), u"\"%1\" is no well-formed link"_s.arg(link));
    }
    run.check(QSDirectory::wellFormed(u"https://courts.example.gov/form.pdf?v=2"_s),
              u"an https link to a host with a dot inside is well-formed"_s);
}
} // namespace

void Groups::directory(QSTestRun &run)
{
    QSTestRun::begin(u"Official forms directory (every entry complete, links well-formed, every "
                     "state covered)"_s);
    const QSDirectory &directory = QSDirectory::shared();
    checkLoading(run, directory);
    checkEntries(run, directory);
    checkCoverage(run, directory);
    checkLinkRule(run);
    if (!directory.entries.isEmpty()) {
        checkValidator(run, directory);
    }
}
