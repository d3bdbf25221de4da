#include "QSStatus.h"

#include "QSDate.h"
#include "QSDirectory.h"
#include "QSInfo.h"
#include "QSLinkChecker.h"
#include "QSMutation.h"
#include "QSNet.h"

using namespace Qt::Literals::StringLiterals;

namespace {
/// The day of the last review by hand. A date without a time of day, so its age counts by the
/// calendar: no change of the clocks makes a listing stale an hour early.
struct Listing
{
    explicit Listing(const QSEntry &entry, const QDateTime &now)
    {
        const QString written = entry.checked.value_or(QSDirectory::shared().checked);
        date = QSDate::parseISO(written).value_or(QDate());
        text = QSDate::longText(written);
        isStale = !date.isValid() || date.daysTo(now.toLocalTime().date()) > QSInfo::staleAfterDays;
    }

    QDate date;
    QString text;
    bool isStale;
};

/// Beside such a status a note is the checker's word that this is a site for browsers. The entry
/// can't tell: another one may have its page with the mark, and the page is checked once.
bool isRefusal(const std::optional<QSLinkCheck> &check)
{
    return check && !check->ok && QSLinkChecker::isRefusal(!check->note.isEmpty(), check->status);
}

/// Whether a stored check says more than the listing: a problem does, an old success does not, and
/// a site that turned the program away said nothing of its page.
bool counts(const std::optional<QSLinkCheck> &check, const QDateTime &now)
{
    return check && !isRefusal(check) &&
           (!check->ok || QSDate::days(check->checked, now) <= QSInfo::staleAfterDays);
}

QDate dayOf(const QSLinkCheck &check)
{
    return check.checked.toLocalTime().date();
}
} // namespace

QSStatus::S QSStatus::link(const QSEntry &entry, const std::optional<QSLinkCheck> &lastCheck,
                           const QDateTime &now)
{
    const QString staleSymbol = u"clock.badge.exclamationmark.fill"_s;
    const QString limit = QString::number(QSInfo::staleAfterDays);
    const Listing listing(entry, now);
    if (QSNet::isHandChecked(entry.url)) {
        if (!listing.isStale) {
            return {0,
                    u"Checked by hand %1 (California courts don't allow automated checks)"_s.arg(
                        listing.text),
                    u"hand.raised.fill"_s};
        }
        return {1,
                u"Checked by hand %1 — more than %2 days ago. California courts don't allow "
                "automated checks; opening the form checks it."_s.arg(listing.text, limit),
                staleSymbol};
    }
    if (counts(lastCheck, now)) {
        const QString day = QSDate::longFormat(dayOf(*lastCheck));
        if (!lastCheck->ok && !QSMutation::on(u"forget-broken-link")) {
            const QString answer =
                lastCheck->status == 0 ? u"none"_s : QString::number(lastCheck->status);
            return {2,
                    u"Link problem at last check (%1, answer %2). It may have moved."_s.arg(day,
                                                                                            answer),
                    u"exclamationmark.triangle.fill"_s};
        }
        return {0, u"Link checked online %1"_s.arg(day), u"checkmark.seal.fill"_s};
    }
    const bool isRefused = isRefusal(lastCheck);
    const QString refusal =
        u"This official site blocks automated checks; it opens normally in a web browser."_s;
    if (!listing.isStale) {
        const QString text = u"Checked %1"_s.arg(listing.text);
        return {0, isRefused ? text + u". "_s + refusal : text, u"checkmark.seal.fill"_s};
    }
    const QString advice =
        isRefused ? refusal : u"Check the links on the Forms Last Checked screen."_s;
    return {1, u"Last checked %1 — more than %2 days ago. %3"_s.arg(listing.text, limit, advice),
            staleSymbol};
}

QSStatus::Checked QSStatus::lastChecked(const QSEntry &entry,
                                        const std::optional<QSLinkCheck> &lastCheck,
                                        const QDateTime &now)
{
    const QDate listed = Listing(entry, now).date;
    if (QSNet::isHandChecked(entry.url)) {
        return {Source::byHand, listed};
    }
    return counts(lastCheck, now) ? Checked{Source::online, dayOf(*lastCheck)}
                                  : Checked{Source::listed, listed};
}
