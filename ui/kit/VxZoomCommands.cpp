#include "VxZoomCommands.h"

#include "VxChoiceMenu.h"
#include "VxIcon.h"
#include "VxZoom.h"

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
    QList<VxChoiceMenu::Choice> choices;
    for (int level : VxZoom::levels) {
        choices.append({VxZoom::levelTitle(level), level});
    }
    VxChoiceMenu::fill(
        menu, choices, [] { return QVariant(qRound(VxZoom::value() * 100)); },
        [](const QVariant &level) { VxZoom::setValue(level.toInt() / 100.0); });
}
} // namespace VxZoomCommands
