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
    setIcon(VxIcon::named(symbol, colour), m_lines);
}

void VxIconLabel::setIcon(const QIcon &icon, int lines)
{
    m_icon = icon;
    m_lines = lines;
    updateGeometry();
    update();
}

QSize VxIconLabel::sizeHint() const
{
    const int height = fontMetrics().height() * m_lines;
    return {height, height};
}

void VxIconLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_icon.paint(&painter, rect());
}
