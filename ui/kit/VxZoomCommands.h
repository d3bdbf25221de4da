#pragma once

class QMenu;

/// The choice of the interface's size.
namespace VxZoomCommands {
/// Appends "Zoom In", "Zoom Out", "Actual Size (100%)" with their keys, and the "Zoom Level" menu.
void fill(QMenu *menu);
/// Fills a menu with the levels alone; the one that is shown is ticked.
void fillLevels(QMenu *menu);
} // namespace VxZoomCommands
