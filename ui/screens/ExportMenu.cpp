#include "ExportMenu.h"

#include <QAction>
#include <QMenu>
#include <QPushButton>

namespace ExportMenu {
void fill(QMenu *menu, QObject *context, const std::function<void(QSExport::Format)> &chosen)
{
    for (const QSExport::FormatInfo &info : QSExport::formats) {
        QAction *action = menu->addAction(info.label.toString());
        QObject::connect(action, &QAction::triggered, context,
                         [format = info.format, chosen] { chosen(format); });
    }
}

void attach(QPushButton *button, QObject *context,
            const std::function<void(QSExport::Format)> &chosen)
{
    auto *menu = new QMenu(button);
    fill(menu, context, chosen);
    button->setMenu(menu);
    button->setProperty("menu", true);
}
} // namespace ExportMenu
