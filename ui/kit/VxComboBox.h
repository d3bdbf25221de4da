#pragma once

#include <QComboBox>
#include <QWheelEvent>

/// A list to choose from that leaves the wheel to what is around it: scrolling past with the mouse
/// must not change a choice.
class VxComboBox : public QComboBox
{
    Q_OBJECT

public:
    using QComboBox::QComboBox;

protected:
    void wheelEvent(QWheelEvent *event) override { event->ignore(); }
};
