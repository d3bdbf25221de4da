#pragma once

#include "AppModel.h"
#include "QSExport.h"

#include <functional>

class QMenu;
class QObject;
class QPushButton;

/// The formats in which a document or a filled form is handed over, as a menu. In each function
/// chosen is called while the context lives.
namespace ExportMenu {
/// Fills a menu with the formats of a document.
void fill(QMenu *menu, QObject *context, const std::function<void(QSExport::Format)> &chosen);
/// Gives a button the menu of a document's formats.
void attach(QPushButton *button, QObject *context,
            const std::function<void(QSExport::Format)> &chosen);
/// The same two for a filled form.
void fillForForm(QMenu *menu, QObject *context,
                 const std::function<void(AppModel::FormExport)> &chosen);
void attachForForm(QPushButton *button, QObject *context,
                   const std::function<void(AppModel::FormExport)> &chosen);
} // namespace ExportMenu
