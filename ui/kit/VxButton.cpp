#include "VxButton.h"

#include "VxIcon.h"

#include <QPushButton>

namespace VxButton {
QPushButton *make(const QString &text, const QString &symbol, QWidget *parent)
{
    auto *button = new QPushButton(VxIcon::named(symbol), text, parent);
    const int em = button->fontMetrics().height();
    button->setIconSize({em * 4 / 3, em});
    return button;
}
} // namespace VxButton
