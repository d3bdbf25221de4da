#pragma once

#include "Screen.h"

#include <QFrame>

class QListWidget;

/// The list of screens at the window's left edge. It asks for a screen and shows the one it is
/// told; whether the screen changes is the model's to say.
class Sidebar final : public QFrame
{
    Q_OBJECT

public:
    explicit Sidebar(QWidget *parent = nullptr);

    void setCurrent(Screen screen);
    [[nodiscard]] Screen current() const;

Q_SIGNALS:
    void chosen(Screen screen);

private:
    QListWidget *m_list;
};
