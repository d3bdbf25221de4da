#include "StateMenu.h"

#include "AppModel.h"
#include "QSDirectory.h"

using namespace Qt::Literals::StringLiterals;

StateMenu::StateMenu(AppModel &model, QWidget *parent) : VxComboBox(parent)
{
    const QString help = u"Your state. The forms, offices and links follow this choice."_s;
    setAccessibleName(u"State"_s);
    setAccessibleDescription(help);
    setToolTip(help);
    setPlaceholderText(u"Choose a state"_s);
    for (const QSJurisdiction &state : QSDirectory::shared().states()) {
        addItem(state.name, state.code);
    }
    connect(this, &QComboBox::activated, &model,
            [this, &model] { model.setState(currentData().toString()); });
    const auto showState = [this, &model] { setCurrentIndex(findData(model.state())); };
    connect(&model, &AppModel::selectionChanged, this, showState);
    showState();
}
