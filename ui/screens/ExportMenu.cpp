#include "ExportMenu.h"

#include <QAction>
#include <QMenu>
#include <QPushButton>

#include <array>
#include <utility>

namespace {
using FormExport = AppModel::FormExport;

constexpr std::array formExports = {
    std::pair<FormExport, QStringView>{FormExport::flattened, u"Flattened PDF (fields burned in)"},
    std::pair<FormExport, QStringView>{FormExport::editable, u"PDF with fields (still editable)"},
};

QMenu *attachMenu(QPushButton *button)
{
    auto *menu = new QMenu(button);
    button->setMenu(menu);
    button->setProperty("menu", true);
    return menu;
}
} // namespace

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
    fill(attachMenu(button), context, chosen);
}

void fillForForm(QMenu *menu, QObject *context,
                 const std::function<void(AppModel::FormExport)> &chosen)
{
    for (const auto &[how, label] : formExports) {
        QObject::connect(menu->addAction(label.toString()), &QAction::triggered, context,
                         [how = how, chosen] { chosen(how); });
    }
}

void attachForForm(QPushButton *button, QObject *context,
                   const std::function<void(AppModel::FormExport)> &chosen)
{
    fillForForm(attachMenu(button), context, chosen);
}
} // namespace ExportMenu
