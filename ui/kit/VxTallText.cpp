#include "VxTallText.h"

#include <QAbstractTextDocumentLayout>
#include <QWheelEvent>
#include <QtMath>

VxTallText::VxTallText(QWidget *parent) : QTextEdit(parent)
{
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setTabChangesFocus(true);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
            [this](const QSizeF &size) {
                setFixedHeight(qCeil(size.height()) + fontMetrics().height());
            });
}

void VxTallText::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}
