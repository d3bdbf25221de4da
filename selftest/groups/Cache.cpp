#include "groups/Groups.h"

#include "QSCache.h"
#include "QSDate.h"
#include "QSError.h"
#include "QSFile.h"
#include "QSInfo.h"
#include "QSPDF.h"
#include "QSStatus.h"
#include "QSTestRun.h"
#include "screens/LastCheckedModel.h"

#include <QFileInfo>

using namespace Qt::Literals::StringLiterals;

namespace {
const QDateTime now(QDate(2027, 3, 1), QTime(12, 0));

/// An entry at a host that no network has.
QSEntry made(QSKind kind)
{
    QSEntry entry;
    entry.id = u"selftest-form"_s;
    entry.j = u"CO"_s;
    entry.title = u"Made-up form"_s;
    entry.kind = kind;
    entry.url = u"https://forms.invalid/form"_s;
    return entry;
}

QSEntry listed(int daysAgo)
{
    QSEntry entry = made(QSKind::pdf);
    entry.checked = QSDate::iso(now.date().addDays(-daysAgo));
    return entry;
}

QSCacheMeta recordOf(const QSEntry &entry, const QByteArray &copy, int checkedDaysAgo)
{
    QSCacheMeta meta;
    meta.entryID = entry.id;
    meta.url = entry.url;
    meta.finalURL = entry.url;
    meta.downloadedAt = now.addDays(-30).toUTC();
    meta.lastCheckedAt = now.addDays(-checkedDaysAgo).toUTC();
    meta.etag = u"\"made-up\""_s;
    meta.sha256 = QSCache::sha(copy);
    meta.bytes = copy.size();
    meta.contentType = u"application/pdf"_s;
    return meta;
}

/// What an attempt to open the entry comes to: its message, or the error's.
QString messageOfOpening(const QSEntry &entry)
{
    try {
        return QSCache::obtain(entry, false, now).message;
    } catch (const QSError &error) {
        return error.payload();
    }
}

void checkContentRule(QSTestRun &run, const QByteArray &pdf)
{
    const QSEntry entry = made(QSKind::pdf);
    run.check(QSCache::valid(pdf, entry) && !QSCache::valid("<html>moved</html>", entry),
              u"a real PDF is accepted; an error web page is not saved as a form"_s);
}

void checkAges(QSTestRun &run, const QByteArray &pdf)
{
    const QSEntry entry = made(QSKind::pdf);
    run.check(!QSCache::needsRecheck(recordOf(entry, pdf, 6), now),
              u"a copy checked 6 days ago is used as is"_s);
    run.check(QSCache::needsRecheck(recordOf(entry, pdf, 8), now),
              u"a copy checked 8 days ago is re-checked with the official site"_s);
}

void checkCopy(QSTestRun &run, const QByteArray &pdf)
{
    const QSEntry entry = made(QSKind::pdf);
    const QSCacheMeta meta = recordOf(entry, pdf, 6);
    QSFile::write(QSCache::fileURL(entry), pdf);
    QSCache::saveMeta(meta);
    run.check(QSCache::hasCopy(entry) && QSCache::meta(entry.id) == meta,
              u"the saved copy and its date are remembered"_s);
    run.check(messageOfOpening(entry) ==
                  u"Saved copy downloaded %1."_s.arg(QSDate::stamp(meta.downloadedAt)),
              u"a fresh saved copy opens without the network"_s);
}

void checkStatuses(QSTestRun &run)
{
    const QSEntry stale = listed(QSInfo::staleAfterDays + 1);
    QSLinkCheck check;
    check.url = stale.url;
    check.checked = now.addDays(-1);
    check.status = 404;
    run.check(QSStatus::link(stale, {}, now).level == 1 &&
                  QSStatus::link(listed(QSInfo::staleAfterDays), {}, now).level == 0,
              u"a listing older than 120 days shows a stale-link warning"_s);
    run.check(QSStatus::link(listed(1), check, now).level == 2,
              u"a link that failed its last online check shows a broken-link warning"_s);
    check.status = 200;
    check.ok = true;
    run.check(QSStatus::link(stale, check, now).level == 0,
              u"a successful online check clears the stale warning"_s);
}

void checkShownStatus(QSTestRun &run, const QByteArray &pdf)
{
    const QSEntry entry = listed(1);
    const QSCacheMeta meta = recordOf(entry, pdf, 6);
    LastCheckedModel model;
    model.setRows({{entry, QSStatus::link(entry, {}, now), QSStatus::lastChecked(entry, {}, now),
                    meta.downloadedAt}});
    constexpr int copyColumn = 2;
    const QString text = model.data(model.index(0, copyColumn), Qt::DisplayRole).toString();
    run.check(text == u"Saved copy downloaded "_s +
                          QSDate::longFormat(meta.downloadedAt.toLocalTime().date()),
              u"the status of a downloaded copy reads \"Saved copy downloaded\""_s);
}
} // namespace

void Groups::cache(QSTestRun &run)
{
    QSTestRun::begin(u"Official forms cache rules (offline)"_s);
    const QByteArray pdf = QSPDF::practiceForm();
    checkContentRule(run, pdf);
    checkAges(run, pdf);
    try {
        checkCopy(run, pdf);
    } catch (const QSError &error) {
        run.check(false, error.description());
    }
    const QSEntry online = made(QSKind::online);
    run.check(!QSKinds::info(online.kind).downloads && online.opensInBrowser(),
              u"online-filing links are not downloaded"_s);
    checkStatuses(run);
    run.check(messageOfOpening(online) == u"This official link opens in your web browser."_s,
              u"online-filing links are not downloaded (they open in the browser)"_s);
    checkShownStatus(run, pdf);
}
