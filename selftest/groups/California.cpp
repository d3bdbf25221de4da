#include "groups/Groups.h"

#include "QSDate.h"
#include "QSDirectory.h"
#include "QSLinkChecker.h"
#include "QSNet.h"
#include "QSTestRun.h"
#include "screens/LastCheckedModel.h"

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {
using Link = QSDirectory::Link;

/// Two pages of the California courts, and two that only look like it.
struct Sample
{
    QStringView url;
    bool isCourt;
};
constexpr std::array<Sample, 4> samples = {
    {{u"https://courts.ca.gov/sites/default/files/courts/default/2024-11/sc100.pdf", true},
     {u"https://selfhelp.courts.ca.gov/small-claims-forms", true},
     {u"https://bpd.cdn.sos.ca.gov/llc/forms/llc-1.pdf", false},
     {u"https://www.coloradojudicial.gov/sites/default/files/2023-09/JDF250.pdf", false}}};

/// The rule in words of its own: the court system's domain and everything below it.
bool isCourtLink(const Link &link)
{
    return link.url.startsWith(u"https://courts.ca.gov/"_s) ||
           link.url.section(u'/', 2, 2).endsWith(u".courts.ca.gov"_s);
}

void checkBulkLinks(QSTestRun &run, const QSDirectory &directory)
{
    const QList<Link> all = directory.allLinks();
    const QList<Link> bulk = QSLinkChecker::bulkLinks(directory);
    const auto courtLinks = std::ranges::count_if(all, isCourtLink);
    run.check(courtLinks > 0, u"the directory has California court links (%1) - so this test means "
                              "something"_s.arg(courtLinks));
    run.check(std::ranges::none_of(bulk, isCourtLink),
              u"\"Check all official links now\" and --check-links skip every California court "
              "link"_s);
    const QString taxForm = u"https://www.irs.gov/pub/irs-pdf/fw9.pdf"_s;
    const bool othersStay = std::ranges::all_of(
        all, [&bulk](const Link &link) { return isCourtLink(link) || bulk.contains(link); });
    run.check(othersStay && std::ranges::find(bulk, taxForm, &Link::url) != bulk.end(),
              u"other official links are still checked in bulk"_s);
}

/// What the table of the Forms Last Checked screen says in its second column.
QString shownDate(const QSEntry &entry, const QDateTime &now)
{
    LastCheckedModel model;
    model.setRows({{entry, QSStatus::link(entry, {}, now), QSStatus::lastChecked(entry, {}, now),
                    std::nullopt}});
    return model.data(model.index(0, 1), Qt::DisplayRole).toString();
}

void checkShownDates(QSTestRun &run, const QSDirectory &directory)
{
    const QDateTime now = QDateTime::currentDateTime();
    QString example;
    bool allByHand = true;
    for (const QSEntry &entry : directory.entries) {
        if (isCourtLink({.label = {}, .url = entry.url})) {
            const QString date = QSDate::longText(entry.checked.value_or(directory.checked));
            example = shownDate(entry, now);
            allByHand = allByHand && example == u"Checked by hand "_s + date &&
                        QSStatus::link(entry, {}, now).text.startsWith(example);
        }
    }
    run.check(!example.isEmpty() && allByHand,
              u"Forms Last Checked shows California court forms as \"Checked by hand\" with the "
              "date: "_s +
                  example);
}
} // namespace

void Groups::california(QSTestRun &run)
{
    QSTestRun::begin(
        u"California courts' no-bots terms: their links are left out of bulk checks"_s);
    const QSDirectory &directory = QSDirectory::shared();
    checkBulkLinks(run, directory);
    run.check(std::ranges::all_of(samples,
                                  [](const Sample &sample) {
                                      return QSNet::isHandChecked(sample.url.toString()) ==
                                             sample.isCourt;
                                  }),
              u"court pages are hand-checked; the California Secretary of State and other states "
              "are not"_s);
    checkShownDates(run, directory);
}
