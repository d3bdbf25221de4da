#include "VxWindow.h"

#include <QScreen>
#include <QStyle>
#include <QWidget>

namespace VxWindow {
void centre(QWidget *window, QSize size, const QWidget *over)
{
    const QRect room = (over ? over : window)->screen()->availableGeometry();
    window->setGeometry(QStyle::alignedRect(window->layoutDirection(), Qt::AlignCenter,
                                            size.boundedTo(room.size() * 9 / 10), room));
}

QWidget *lastTabStop(const QWidget *window)
{
    QWidget *last = window->previousInFocusChain();
    while (!(last->focusPolicy() & Qt::TabFocus)) { // Qt passes over the others in setTabOrder()
        last = last->previousInFocusChain();
    }
    return last;
}

void bringForward(QWidget *window)
{
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->activateWindow();
}
} // namespace VxWindow
