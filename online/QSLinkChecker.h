#pragma once

#include "QSDirectory.h"

#include <QList>
#include <QString>

#include <functional>
#include <stop_token>

/// Asks the official links whether they still answer properly. No failure escapes as an error: each
/// becomes a result that is not ok, with a note. Waits for the network, so never on the main
/// thread.
namespace QSLinkChecker {
/// True when the answer is that of a site which the directory leaves to browsers and which turned
/// the program away: no fault of the link, which opens well in a browser.
[[nodiscard]] bool isRefusal(bool browserOnly, int status);

struct Check
{
    QString label;
    QString url;
    int status = 0; ///< of the answer that decided; 0 when there was none
    bool ok = false;
    QString finalURL;    ///< empty when none
    QString contentType; ///< empty when none
    QString note;        ///< why it is not ok
    bool browserOnly = false;

    bool operator==(const Check &) const = default;

    /// False also for the sites that turn programs away: their links open well in a browser.
    [[nodiscard]] bool needsAttention() const { return !ok && !browserOnly; }
};

inline constexpr int parallelChecks = 6;
/// No host is asked for more than this many links at once.
inline constexpr int parallelChecksPerHost = 2;

/// The directory's links without those that only people may check, in the directory's order.
[[nodiscard]] QList<QSDirectory::Link> bulkLinks(const QSDirectory &directory);
/// A redirect to a site that only people may check is not followed; it is what answered.
[[nodiscard]] Check check(const QSDirectory::Link &link, const std::stop_token &stop = {});
/// Checks all bulk links, each URL once, whatever fragments it is listed with; results in their
/// order. progress(done, total) comes from working threads, one call at a time, done rising by one.
/// When stopped, what was not asked any more or was cut short is left out of the results.
[[nodiscard]] QList<Check> checkAll(const QSDirectory &directory, int parallel = parallelChecks,
                                    const std::function<void(int, int)> &progress = {},
                                    const std::stop_token &stop = {});
} // namespace QSLinkChecker
