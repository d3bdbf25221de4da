#pragma once

#include <QCoreApplication>

#include <memory>

class QSize;
class QWidget;

/// What the program's windows beside the first one have in common. Main thread only.
namespace VxWindow {
/// The one window of a class: made when it is first wanted, and gone before the application.
template <typename Window>
[[nodiscard]] Window &only()
{
    static std::unique_ptr<Window> window;
    if (!window) {
        window = std::make_unique<Window>();
        qAddPostRoutine([] { window.reset(); });
    }
    return *window;
}

/// Gives a window that size, as far as the screen has room for it, in the middle of the screen
/// that another window is on; the main screen when that one is null.
void centre(QWidget *window, QSize size, const QWidget *over);
/// The last widget of a window that Tab reaches.
[[nodiscard]] QWidget *lastTabStop(const QWidget *window);
/// Comes to the front, out of the task bar if need be.
void bringForward(QWidget *window);
} // namespace VxWindow
