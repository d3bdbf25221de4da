#pragma once

#include "QSEntry.h"
#include "QSStore.h"

#include <QDate>
#include <QDateTime>
#include <QString>

#include <optional>

/// How a directory entry's link stands, in one line.
namespace QSStatus {
struct S
{
    int level = 0; ///< 0 fine, 1 not checked for long, 2 the link has a problem
    QString text;
    QString symbol; ///< name of the symbol image

    bool operator==(const S &) const = default;
};

/// Where the date comes from on which an entry was last checked.
enum class Source { listed, online, byHand };

struct Checked
{
    Source source = Source::listed;
    QDate date; ///< not valid where the directory has none

    bool operator==(const Checked &) const = default;
};

/// lastCheck: the latest stored check of the entry's URL. The listing date is the entry's own check
/// date, else the directory's.
[[nodiscard]] S link(const QSEntry &entry, const std::optional<QSLinkCheck> &lastCheck,
                     const QDateTime &now);
/// The date that link() speaks of.
[[nodiscard]] Checked lastChecked(const QSEntry &entry, const std::optional<QSLinkCheck> &lastCheck,
                                  const QDateTime &now);
} // namespace QSStatus
