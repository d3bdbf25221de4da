#pragma once

#include "QSExport.h"

#include <functional>

class QAction;
class QMenu;
class QObject;
class QPushButton;

/// The three export formats as a menu.
namespace ExportMenu {
/// Fills a menu with the formats; chosen is called while the context lives.
void fill(QMenu *menu, QObject *context, const std::function<void(QSExport::Format)> &chosen);
/// Gives a button the menu of formats.
void attach(QPushButton *button, QObject *context,
            const std::function<void(QSExport::Format)> &chosen);
} // namespace ExportMenu
