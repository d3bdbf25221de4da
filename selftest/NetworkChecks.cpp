#include "NetworkChecks.h"

#include "QSCache.h"
#include "QSDirectory.h"
#include "QSError.h"
#include "QSFile.h"
#include "QSLinkChecker.h"
#include "QSNet.h"
#include "QSPDF.h"
#include "QSTestRun.h"

#include <QDateTime>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
void checkLinks(const QSDirectory &directory, QSTestRun &run)
{
    QSTestRun::begin(
        u"Every official link answers (%1 links; California court links are checked "
        "by hand, not by this check)"_s.arg(QSLinkChecker::bulkLinks(directory).size()));
    const QList<QSLinkChecker::Check> checks = QSLinkChecker::checkAll(directory);
    for (const QSLinkChecker::Check &check : checks) {
        QString text = check.label;
        if (!check.ok) {
            const QString answer = u"the site answered %1"_s.arg(check.status);
            text += u": "_s + (check.note.isEmpty() ? answer : check.note);
        }
        const bool explained = QSLinkChecker::isRefusal(check.browserOnly, check.status);
        run.check(check.ok || explained, text);
    }
}

QString label(const QSEntry &entry)
{
    return entry.j + u' ' + entry.displayTitle();
}

void checkFields(const QSEntry &entry, const QByteArray &bytes, QSTestRun &run)
{
    try {
        const auto count = QSPDF::widgets(*QSPDFDocument::open(bytes)).size();
        const QString listed = entry.fillable ? u"fillable"_s : u"not fillable"_s;
        run.check((count > 0) == entry.fillable, u"%1: %2 fields \u2014 listed as %3"_s.arg(
                                                     label(entry), QString::number(count), listed));
    } catch (const QSError &error) {
        run.check(false, u"%1: downloaded file does not open as a PDF (%2)"_s.arg(
                             label(entry), error.description()));
    }
}

QSCache::Result obtain(const QSEntry &entry, bool forceCheck, const QDateTime &now)
{
    return QSCache::obtain(entry, forceCheck, now, {}, QSCache::Asker::program);
}

/// Returns whether the form's file is in the cache now.
bool checkDownload(const QSEntry &entry, QSTestRun &run)
{
    if (QSNet::isHandChecked(entry.url)) {
        run.check(true, label(entry) +
                            u": California court form - checked by hand, not downloaded in bulk "
                            "(no-bots terms)"_s);
        return false;
    }
    if (entry.browserOnly) {
        run.check(true, label(entry) + u": opens in the web browser, not downloaded"_s);
        return false;
    }
    try {
        const QSCache::Result copy = obtain(entry, false, QDateTime::currentDateTimeUtc());
        checkFields(entry, QSFile::read(copy.file), run);
        return true;
    } catch (const QSError &error) {
        run.check(false, u"%1: %2"_s.arg(label(entry), error.description()));
        return false;
    }
}

/// Absent when no PDF was downloaded. One that the site can be asked about comes first.
std::optional<QSEntry> checkDownloads(const QSDirectory &directory, QSTestRun &run)
{
    QSTestRun::begin(u"Official PDFs download, open, and match the fillable flag"_s);
    QList<QSEntry> downloaded;
    for (const QSEntry &entry : directory.entries) {
        if (entry.kind == QSKind::pdf && checkDownload(entry, run)) {
            downloaded.append(entry);
        }
    }
    const auto canBeAsked = std::ranges::find_if(downloaded, [](const QSEntry &entry) {
        const std::optional<QSCacheMeta> meta = QSCache::meta(entry.id);
        return meta && (meta->etag || meta->lastModified);
    });
    if (canBeAsked != downloaded.end()) {
        return *canBeAsked;
    }
    return downloaded.isEmpty() ? std::nullopt : std::optional(downloaded.first());
}

/// What came of asking for a form again. It is good when the site said "not modified", or sent a
/// newer file that opens: a site that sends the same file again has not looked at the condition.
void checkAnswer(const QSEntry &entry, const QSCache::Result &copy, const QDateTime &asked,
                 QSTestRun &run)
{
    using Outcome = QSCache::Outcome;
    if (copy.outcome == Outcome::unchanged && copy.meta.downloadedAt == asked) {
        run.check(false, u"%1: the site ignores the condition of the request and sent the same "
                         "file again"_s.arg(label(entry)));
        return;
    }
    const bool opens = QSPDFDocument::isPDF(QSFile::read(copy.file));
    run.check(copy.outcome != Outcome::offlineCopy && opens,
              u"%1: %2"_s.arg(label(entry), copy.message));
}

void checkAgain(const std::optional<QSEntry> &entry, QSTestRun &run)
{
    QSTestRun::begin(u"Re-checking a downloaded form for updates"_s);
    if (!entry) {
        run.check(false, u"no form was downloaded that could be checked again"_s);
        return;
    }
    try {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        checkAnswer(*entry, obtain(*entry, true, now), now, run);
    } catch (const QSError &error) {
        run.check(false, u"%1: %2"_s.arg(label(*entry), error.description()));
    }
}
} // namespace

void NetworkChecks::run(const QSDirectory &directory, QSTestRun &run)
{
    checkLinks(directory, run);
    checkAgain(checkDownloads(directory, run), run);
}
