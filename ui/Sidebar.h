#pragma once

#include "Screen.h"

#include <QFrame>
#include <QList>

class QListWidget;

/// The list of screens at the window's left edge. It asks for a screen and shows the one it is
/// told; whether the screen changes is the model's to say.
class Sidebar final : public QFrame
{
    Q_OBJECT

public:
    explicit Sidebar(const QList<Screen> &screens, QWidget *parent = nullptr);

    void setCurrent(Screen screen);
    [[nodiscard]] Screen current() const;

Q_SIGNALS:
    void chosen(Screen screen);

private:
    QList<Screen> m_screens;
    QListWidget *m_list;
};
