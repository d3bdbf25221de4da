#pragma once

#include <QKeyEvent>
#include <QToolButton>

/// A tool button that Enter presses, too, as it does every other button of the program.
class VxToolButton : public QToolButton
{
    Q_OBJECT

public:
    using QToolButton::QToolButton;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            click();
        } else {
            QToolButton::keyPressEvent(event);
        }
    }
};
