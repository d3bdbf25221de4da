#include "VxChoiceMenu.h"

#include <QActionGroup>
#include <QMenu>

namespace VxChoiceMenu {
void fill(QMenu *menu, const QList<Choice> &choices, const std::function<QVariant()> &current,
          const std::function<void(const QVariant &)> &choose)
{
    auto *group = new QActionGroup(menu);
    group->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    for (const Choice &choice : choices) {
        QAction *action = menu->addAction(choice.text);
        action->setCheckable(true);
        action->setData(choice.value);
        group->addAction(action);
    }
    QObject::connect(group, &QActionGroup::triggered, menu,
                     [choose](const QAction *chosen) { choose(chosen->data()); });
    const auto tick = [group, current] {
        for (QAction *action : group->actions()) {
            action->setChecked(action->data() == current());
        }
    };
    QObject::connect(menu, &QMenu::aboutToShow, group, tick);
    tick();
}
} // namespace VxChoiceMenu
