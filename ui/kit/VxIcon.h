#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

/// The program's icons, by the symbol names that its tables use: one drawing each, tinted with the
/// theme's colours and sharp at every size. Main thread only.
namespace VxIcon {
/// The icon of a symbol in the text colour of the theme that is shown when it is painted, or in a
/// colour of the caller's. An empty icon for a symbol that the icon table lacks.
[[nodiscard]] QIcon named(const QString &symbol, const QColor &colour = {});
} // namespace VxIcon
