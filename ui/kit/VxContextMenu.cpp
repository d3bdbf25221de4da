#include "VxContextMenu.h"

#include <QAbstractItemView>
#include <QMenu>
#include <QPushButton>

namespace VxContextMenu {
void attach(QAbstractItemView *view, const std::function<void(QMenu *)> &fill)
{
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    const auto popUp = [view, fill](const QPoint &mouse) {
        const QModelIndex row = view->currentIndex();
        if (!row.isValid() || !view->selectionModel()->isSelected(row)) {
            return;
        }
        auto *menu = new QMenu(view);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        fill(menu);
        const QRect place = view->visualRect(row); // the menu key knows of no mouse
        menu->popup(view->viewport()->mapToGlobal(place.contains(mouse) ? mouse : place.center()));
    };
    QObject::connect(view, &QWidget::customContextMenuRequested, view, popUp);
}

void addButtons(QMenu *menu, const QList<QPushButton *> &buttons)
{
    for (QPushButton *button : buttons) {
        if (!button->isHidden()) {
            menu->addAction(button->icon(), button->text(), button, &QPushButton::click)
                ->setEnabled(button->isEnabled());
        }
    }
}
} // namespace VxContextMenu
