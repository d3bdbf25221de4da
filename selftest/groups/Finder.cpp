#include "groups/Groups.h"

#include "QSFinder.h"
#include "QSTestRun.h"

#include <QSet>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
/// The state's or the country's own entries, all of the task's categories.
bool areOf(const QList<QSEntry> &forms, QStringView place, const QSTask &task)
{
    return std::ranges::all_of(forms, [&](const QSEntry &form) {
        return form.j == place && task.categories.contains(form.cat);
    });
}

bool hasPapers(const QSFinderResult &found)
{
    const QSTask &task = found.task;
    const bool hasForms = !found.forms.isEmpty() || !found.federalForms.isEmpty();
    return (hasForms || !found.templates.isEmpty()) && hasForms == !task.categories.isEmpty() &&
           found.templates.size() == task.templates.size() &&
           areOf(found.forms, found.state.code, task) && areOf(found.federalForms, u"US", task);
}

/// Every category has its office, and every one of the state's its fee page. The federal ones share
/// theirs: nobody takes a fee for a W-9, which stands beside the EIN.
bool saysWhereAndHowMuch(const QSFinderResult &found)
{
    const auto hasOffice = [&found](QSCategory category) {
        return std::ranges::find(found.offices, category, &QSFinderResult::Office::category) !=
               found.offices.end();
    };
    const auto hasFeePage = [&found](QSCategory category) {
        const QString page = found.state.feePage(category);
        return QSCategories::isFederal(category) ||
               std::ranges::find(found.feePages, page, &QSFinderResult::FeePage::url) !=
                   found.feePages.end();
    };
    const QList<QSCategory> &categories = found.task.categories;
    return std::ranges::all_of(categories, hasOffice) &&
           std::ranges::all_of(categories, hasFeePage) &&
           found.feePages.isEmpty() == categories.isEmpty() &&
           std::ranges::all_of(found.feePages, [](const QSFinderResult::FeePage &page) {
               return QSDirectory::wellFormed(page.url);
           });
}

/// The state's own help first; no address twice.
bool saysWhoHelps(const QSFinderResult &found)
{
    QSet<QString> addresses;
    for (const QSLegalAid &aid : found.legalAid) {
        addresses.insert(aid.url);
    }
    return QSDirectory::wellFormed(found.selfHelp) && !found.state.legalAid.isEmpty() &&
           found.legalAid.first(found.state.legalAid.size()) == found.state.legalAid &&
           addresses.size() == found.legalAid.size();
}

QString summary(const QSFinderResult &found)
{
    return u"%1, %2: forms %3, templates %4, %5, self-help center, legal aid %6"_s
        .arg(found.state.name, found.task.title)
        .arg(found.forms.size() + found.federalForms.size())
        .arg(found.templates.size())
        .arg(found.task.categories.isEmpty() ? u"no agency and so no fee page"_s
                                             : u"fee pages %1"_s.arg(found.feePages.size()))
        .arg(found.legalAid.size());
}

void checkTask(QSTestRun &run, const QSTask &task, QStringView state)
{
    const std::optional<QSFinderResult> found = QSFinder::result(task, state);
    if (!found) {
        run.check(false, u"%1, %2: nothing is found"_s.arg(state, task.title));
        return;
    }
    run.check(hasPapers(*found) && saysWhereAndHowMuch(*found) && saysWhoHelps(*found) &&
                  found->poa.has_value() == (task.id == "poa"_L1),
              summary(*found));
}
} // namespace

void Groups::finder(QSTestRun &run)
{
    QSTestRun::begin(u"Guided finder (every task in every state: forms or templates, a fee page, "
                     "the self-help center and legal aid)"_s);
    run.check(QSFinder::tasks.size() == 17, u"there are seventeen tasks"_s);
    for (QStringView state : QSDirectory::covered) {
        for (const QSTask &task : QSFinder::tasks) {
            checkTask(run, task, state);
        }
    }
    const bool isAbsent = std::ranges::none_of(QSFinder::tasks, [](const QSTask &task) {
        return QSFinder::result(task, u"ZZ").has_value();
    });
    run.check(isAbsent, u"a state that is not covered gives nothing"_s);
}
