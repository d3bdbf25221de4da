#pragma once

#include <QPalette>
#include <QString>

class QApplication;
struct VellTheme;

/// Turns a theme into what Qt draws with: a palette, and a style sheet whose lengths are in the
/// widget's own font, so that they grow and shrink with it; only lines are one or two pixels.
namespace VellStyle {
[[nodiscard]] QPalette palette(const VellTheme &theme);
[[nodiscard]] QString styleSheet(const VellTheme &theme);
/// Gives the whole program the theme's look.
void apply(QApplication &application, const VellTheme &theme);
} // namespace VellStyle
