#pragma once

#include <QTextEdit>

/// A text to read and to copy from, with the mouse or the keyboard. It wraps anywhere and is as
/// tall as it is long: what is around it scrolls.
class VxTallText final : public QTextEdit
{
    Q_OBJECT

public:
    explicit VxTallText(QWidget *parent = nullptr);

protected:
    void wheelEvent(QWheelEvent *event) override;
};
