#include "VxIconLabel.h"

#include "VxIcon.h"

#include <QPainter>

VxIconLabel::VxIconLabel(QWidget *parent) : QLabel(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

VxIconLabel::VxIconLabel(const QString &symbol, QWidget *parent) : VxIconLabel(parent)
{
    setSymbol(symbol);
}

void VxIconLabel::setSymbol(const QString &symbol, const QColor &colour)
{
    m_symbol = symbol;
    m_colour = colour;
    update();
}

QSize VxIconLabel::sizeHint() const
{
    const int em = fontMetrics().height();
    return {em, em};
}

void VxIconLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    VxIcon::named(m_symbol, m_colour).paint(&painter, rect());
}
