#pragma once

#include <QPalette>
#include <QString>

class QApplication;
class QFont;
struct VellTheme;

/// Turns a theme into what Qt draws with: a palette, and a style sheet whose lengths are in the
/// widget's own font, so that they grow and shrink with it; only lines are one or two pixels.
namespace VellStyle {
[[nodiscard]] QPalette palette(const VellTheme &theme);
/// For a program in that font.
[[nodiscard]] QString styleSheet(const VellTheme &theme, const QFont &font);
/// Gives the whole program the theme's look, at the size of its font.
void apply(QApplication &application, const VellTheme &theme);
} // namespace VellStyle
