#pragma once

#include "VellTheme.h"

/// The program's own theme, beside the kit's.
namespace QSThemes {
inline const QString graphiteID = QStringLiteral("professional-graphite");
[[nodiscard]] QList<VellTheme> extras();
} // namespace QSThemes

/// The colours of the screens: those of the theme that is shown, and those that are the same in
/// every theme.
namespace QSColors {
[[nodiscard]] const VellTheme &theme();
inline const QColor inset = QColor::fromRgbF(0, 0, 0, 0.28F);
inline const QColor warn = QColor::fromRgbF(1.0F, 0.68F, 0.3F);
inline const QColor good = QColor::fromRgbF(0.45F, 0.85F, 0.55F);
inline const QColor bad = QColor::fromRgbF(1.0F, 0.45F, 0.42F);
inline const QColor paper = QColor::fromRgbF(0.985F, 0.98F, 0.965F);
inline const QColor ink = QColor::fromRgbF(0.08F, 0.08F, 0.1F);
} // namespace QSColors
