#pragma once

class QMenu;

/// The commands that lead to the help and to the program's maker.
namespace VellHelpCommands {
/// Appends the help with its keys, the maker's web site and the About window.
void fill(QMenu *menu);
} // namespace VellHelpCommands
