#pragma once

class QMenu;

/// The choice of a theme.
namespace VellThemeCommands {
/// Fills a menu with the themes by name; the one that is shown is ticked.
void fill(QMenu *menu);
} // namespace VellThemeCommands
