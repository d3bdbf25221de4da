#include "VellThemeCommands.h"

#include "VellTheme.h"
#include "VxChoiceMenu.h"

namespace VellThemeCommands {
void fill(QMenu *menu)
{
    QList<VxChoiceMenu::Choice> choices;
    for (const VellTheme &theme : VellThemes::all()) {
        choices.append({theme.name, theme.id});
    }
    VxChoiceMenu::fill(
        menu, choices, [] { return QVariant(VellThemes::current().id); },
        [](const QVariant &id) { VellThemes::setCurrentID(id.toString()); });
}
} // namespace VellThemeCommands
