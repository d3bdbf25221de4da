#include "QSFinder.h"

#include "QSMutation.h"
#include "QSTemplates.h"

#include <algorithm>
#include <iterator>

using namespace Qt::Literals::StringLiterals;

namespace {
using Categories = QList<QSCategory>;

QList<QSEntry> entries(const QSDirectory &dir, QStringView state, const Categories &categories)
{
    QList<QSEntry> found;
    for (QSCategory category : categories) {
        found.append(dir.entriesFor(state, category));
    }
    return found;
}

QList<QSFinderResult::Office> offices(const QSJurisdiction &place, const Categories &categories)
{
    QList<QSFinderResult::Office> found;
    for (QSCategory category : categories) {
        const QString text = place.office(category).value_or(QString());
        if (!text.isEmpty()) {
            found.append({category, text});
        }
    }
    return found;
}

QList<QSFinderResult::FeePage> feePages(const QSJurisdiction &state, const Categories &ofState,
                                        const Categories &federal)
{
    QList<QSFinderResult::FeePage> pages;
    if (std::ranges::any_of(ofState, QSCategories::isBusiness)) {
        pages.append({state.name + u" Secretary of State fees"_s, state.businessFees});
    }
    if (!std::ranges::all_of(ofState, QSCategories::isBusiness) &&
        !QSMutation::on(u"no-court-fees")) {
        pages.append({state.name + u" court fees"_s, state.courtFees});
    }
    if (federal.contains(QSCategory::uscisFeeWaiver)) {
        pages.append({u"USCIS filing fees"_s, u"https://www.uscis.gov/forms/filing-fees"_s});
    }
    if (federal.contains(QSCategory::ein)) {
        pages.append({u"IRS: getting an EIN"_s,
                      u"https://www.irs.gov/businesses/small-businesses-self-employed/"
                      "get-an-employer-identification-number"_s});
    }
    pages.removeIf([](const QSFinderResult::FeePage &page) { return page.url.isEmpty(); });
    return pages;
}

QList<QSTemplate> templates(const QStringList &ids)
{
    QList<QSTemplate> found;
    for (const QString &id : ids) {
        if (const QSTemplate *each = QSTemplates::templateById(id)) {
            found.append(*each);
        }
    }
    return found;
}
} // namespace

namespace QSFinder {
const QSTask *task(QStringView id)
{
    const auto match = std::ranges::find(tasks, id, &QSTask::id);
    return match == tasks.end() ? nullptr : &*match;
}

QList<QSLegalAid> legalAid(QStringView state, const QSDirectory &dir)
{
    const QSJurisdiction *place = dir.jurisdiction(state);
    const QSJurisdiction *country = dir.federal();
    const QList<QSLegalAid> known = place ? place->legalAid : QList<QSLegalAid>();
    const QList<QSLegalAid> further = country ? country->legalAid : QList<QSLegalAid>();
    QList<QSLegalAid> found = known;
    std::ranges::copy_if(further, std::back_inserter(found), [&known](const QSLegalAid &aid) {
        return std::ranges::find(known, aid.url, &QSLegalAid::url) == known.end() ||
               QSMutation::on(u"legal-aid-twice");
    });
    return found;
}

std::optional<QSFinderResult> result(const QSTask &task, QStringView state, const QSDirectory &dir)
{
    const QSJurisdiction *place = dir.jurisdiction(state);
    if (!place) {
        return {};
    }
    Categories ofState;
    Categories ofCountry;
    std::ranges::partition_copy(task.categories, std::back_inserter(ofCountry),
                                std::back_inserter(ofState), QSCategories::isFederal);
    QSFinderResult found;
    found.task = task;
    found.state = *place;
    found.forms = entries(dir, state, ofState);
    found.offices = offices(*place, ofState);
    found.feePages = feePages(*place, ofState, ofCountry);
    found.templates = templates(task.templates);
    found.selfHelp = place->selfHelp;
    found.legalAid = legalAid(state, dir);
    if (const QSJurisdiction *country = dir.federal()) {
        found.federalForms = entries(dir, country->code, ofCountry);
        found.offices.append(offices(*country, ofCountry));
    }
    if (task.id == "poa"_L1) {
        found.poa = place->poa;
    }
    return found;
}
} // namespace QSFinder
