#include "VellThemeCommands.h"

#include "VellTheme.h"
#include "VellThemeRoot.h"

#include <QActionGroup>
#include <QMenu>

namespace VellThemeCommands {
void fill(QMenu *menu)
{
    auto *group = new QActionGroup(menu);
    for (const VellTheme &theme : VellThemes::all()) {
        QAction *action = menu->addAction(theme.name);
        action->setCheckable(true);
        action->setData(theme.id);
        group->addAction(action);
    }
    QObject::connect(group, &QActionGroup::triggered, menu, [](const QAction *chosen) {
        VellThemes::setCurrentID(chosen->data().toString());
    });
    const auto tick = [group] {
        for (QAction *action : group->actions()) {
            action->setChecked(action->data().toString() == VellThemes::current().id);
        }
    };
    QObject::connect(menu, &QMenu::aboutToShow, group, tick);
    tick();
}
} // namespace VellThemeCommands
