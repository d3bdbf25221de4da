#pragma once

#include "QSStatus.h"

#include <QIcon>
#include <QString>

struct QSEntry;

/// How an entry of the directory is worded and marked wherever it is shown.
namespace EntryLook {
/// What the button that opens it says, with "&" for a plain ampersand.
[[nodiscard]] QString mainAction(const QSEntry &entry);
/// "Official PDF · print and fill by hand"
[[nodiscard]] QString kind(const QSEntry &entry);
/// Agency and kind.
[[nodiscard]] QString about(const QSEntry &entry);
[[nodiscard]] QString kindSymbol(const QSEntry &entry);
[[nodiscard]] QIcon kindIcon(const QSEntry &entry);
/// The status's own shape; what needs attention has a colour besides.
[[nodiscard]] QIcon statusIcon(const QSStatus::S &status);
/// The colour that stands for a status's level.
[[nodiscard]] QColor statusColour(int level);
/// The site of an address, "nycourts.gov"; without the "www.", which tells nobody anything.
[[nodiscard]] QString siteOf(const QString &url);
} // namespace EntryLook
