#include "VxButton.h"

#include "VxIcon.h"

#include <QLayout>
#include <QPushButton>

namespace VxButton {
QPushButton *make(const QString &text, const QString &symbol, QWidget *parent)
{
    auto *button = new QPushButton(VxIcon::named(symbol), text, parent);
    const int em = button->fontMetrics().height();
    button->setIconSize({em * 4 / 3, em});
    return button;
}

QPushButton *add(QLayout *layout, const QString &text, const QString &symbol)
{
    QPushButton *button = make(text, symbol, layout->parentWidget());
    layout->addWidget(button);
    return button;
}
} // namespace VxButton
