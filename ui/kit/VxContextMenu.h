#pragma once

#include <QList>

#include <functional>

class QAbstractItemView;
class QMenu;
class QPushButton;

/// The menu of a right click, or of the menu key, on the selected row of a list or table.
namespace VxContextMenu {
/// Each time that the menu is wanted fill() makes it anew; it is not shown while it is empty or no
/// row is selected.
void attach(QAbstractItemView *view, const std::function<void(QMenu *)> &fill);
/// Adds what each button does, as far as it is shown; grey where the button is.
void addButtons(QMenu *menu, const QList<QPushButton *> &buttons);
} // namespace VxContextMenu
