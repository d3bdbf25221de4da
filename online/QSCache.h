#pragma once

#include "QSEntry.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>
#include <stop_token>

/// What is known about a saved copy of an official form.
struct QSCacheMeta
{
    QString entryID;
    QString url;             ///< that was asked
    QString finalURL;        ///< that answered, after redirects
    QDateTime downloadedAt;  ///< when the copy's bytes were fetched
    QDateTime lastCheckedAt; ///< when the site was last asked about it
    std::optional<QString> etag;
    std::optional<QString> lastModified;
    QString sha256; ///< of the copy's bytes, in lower-case hexadecimal
    qint64 bytes = 0;
    QString contentType;
    bool updatedOnLastCheck = false; ///< the last check found a newer version and fetched it

    bool operator==(const QSCacheMeta &) const = default;
};

/// The folder of official forms, each the agency's own file just as it was sent, with a record
/// beside it. A form is fetched when it is first opened and checked with its site again once the
/// last check is a week old; fetched anew when the directory has another link for it, or when copy
/// and record do not belong together.
///
/// Any thread, except that the folder's place (QSInfo) is settled first. Copy and record are each
/// written whole or not at all, the record last; two openings of one form at once leave a copy and
/// a record that belong together.
namespace QSCache {
enum class Outcome { downloaded, unchanged, updated, offlineCopy };

struct Result
{
    QString file; ///< path of the copy
    QSCacheMeta meta;
    Outcome outcome = Outcome::unchanged;
    QString message; ///< shown under the form
};

/// Path of an entry's copy: its id with ".pdf", or ".docx" for a Word document.
[[nodiscard]] QString fileURL(const QSEntry &entry);
[[nodiscard]] QString metaURL(const QString &entryID);
/// Absent when there is none or it can't be read.
[[nodiscard]] std::optional<QSCacheMeta> meta(const QString &entryID);
/// Throws QSError::io when it can't be written.
void saveMeta(const QSCacheMeta &meta);
/// True when the copy is there and its record reads.
[[nodiscard]] bool hasCopy(const QSEntry &entry);
/// True once the last check is QSInfo::recheckAfterDays old.
[[nodiscard]] bool needsRecheck(const QSCacheMeta &meta, const QDateTime &now);
/// SHA-256 in lower-case hexadecimal.
[[nodiscard]] QString sha(const QByteArray &data);
/// Whether the bytes are what the entry promises. An error page sent in a form's place never is.
[[nodiscard]] bool valid(const QByteArray &data, const QSEntry &entry);

/// Who wants a form: a person who opens it, or the program, which asks for all of them and must not
/// be led to sites that only people may check.
enum class Asker { person, program };

/// The form's copy: as it is, checked with the site, downloaded, or the older one where the site
/// can't be reached or answers badly. Waits for the network, so never on the main thread. Throws
/// QSError::network when there is nothing to show, and QSError::io when what came can't be kept.
[[nodiscard]] Result obtain(const QSEntry &entry, bool forceCheck, const QDateTime &now,
                            const std::stop_token &stop = {}, Asker asker = Asker::person);

/// Bytes of all files in the folder; 0 when it can't be listed.
[[nodiscard]] qint64 cacheSize();
/// How many forms are in the folder.
[[nodiscard]] int copyCount();
/// Deletes every file in the folder; what can't be deleted stays. Returns how many forms went.
int clear();
} // namespace QSCache
