#pragma once

#include "VellTheme.h"

/// The program's own theme, beside the kit's.
namespace QSThemes {
inline const QString graphiteID = QStringLiteral("professional-graphite");
[[nodiscard]] QList<VellTheme> extras();
} // namespace QSThemes

/// Colours that are the same in every theme.
namespace QSColors {
inline const QColor paper = QColor::fromRgbF(0.985F, 0.98F, 0.965F);
} // namespace QSColors
