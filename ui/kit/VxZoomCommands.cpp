#include "VxZoomCommands.h"

#include "VxIcon.h"
#include "VxZoom.h"

#include <QActionGroup>
#include <QMenu>

using namespace Qt::Literals::StringLiterals;

namespace VxZoomCommands {
void fill(QMenu *menu)
{
    QAction *in = menu->addAction(VxIcon::named(u"plus.magnifyingglass"_s), u"Zoom &In"_s, menu,
                                  &VxZoom::zoomIn);
    // on most keyboards the plus is the shifted equals sign, and nobody thinks of shift
    in->setShortcuts({QKeySequence(u"Ctrl++"_s), QKeySequence(u"Ctrl+="_s)});
    menu->addAction(VxIcon::named(u"minus.magnifyingglass"_s), u"Zoom &Out"_s,
                    QKeySequence(u"Ctrl+-"_s), menu, &VxZoom::zoomOut);
    menu->addAction(u"&Actual Size (100%)"_s, QKeySequence(u"Ctrl+0"_s), menu,
                    [] { VxZoom::setValue(1); });
    fillLevels(menu->addMenu(u"Zoom &Level"_s));
}

void fillLevels(QMenu *menu)
{
    auto *group = new QActionGroup(menu);
    for (int level : VxZoom::levels) {
        QAction *action = menu->addAction(VxZoom::levelTitle(level));
        action->setCheckable(true);
        action->setData(level);
        group->addAction(action);
    }
    QObject::connect(group, &QActionGroup::triggered, menu, [](const QAction *chosen) {
        VxZoom::setValue(chosen->data().toInt() / 100.0);
    });
    // between two levels none is ticked
    group->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    const auto tick = [group] {
        for (QAction *action : group->actions()) {
            action->setChecked(action->data().toInt() == qRound(VxZoom::value() * 100));
        }
    };
    QObject::connect(menu, &QMenu::aboutToShow, group, tick);
    tick();
}
} // namespace VxZoomCommands
