#pragma once

#include "VellTheme.h"

/// The program's own theme, beside the kit's.
namespace QSThemes {
inline const QString graphiteID = QStringLiteral("professional-graphite");
[[nodiscard]] QList<VellTheme> extras();
} // namespace QSThemes

/// Colours with a meaning, the same in every theme.
namespace QSColors {
inline const QColor warn = QColor::fromRgbF(1.0F, 0.68F, 0.3F);
inline const QColor paper = QColor::fromRgbF(0.985F, 0.98F, 0.965F);
inline const QColor ink = QColor::fromRgbF(0.08F, 0.08F, 0.1F);
} // namespace QSColors
