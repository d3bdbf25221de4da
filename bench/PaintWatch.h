#pragma once

#include <QApplication>
#include <QEvent>
#include <QWidget>

#include <functional>
#include <utility>

/// The application, and a watch on when a widget is painted. The watch is told as soon as the
/// outermost event with which the widget was painted has been handled: by then the whole window is
/// painted and handed to the platform.
class PaintWatch final : public QApplication
{
public:
    using QApplication::QApplication;

    /// Calls back once, the next time the widget has been painted; null stands for any widget.
    void whenPainted(const QWidget *widget, std::function<void()> callback)
    {
        m_widget = widget;
        m_callback = std::move(callback);
        m_painted = false;
    }

    bool notify(QObject *receiver, QEvent *event) override
    {
        const bool paints = event->type() == QEvent::Paint && receiver->isWidgetType() &&
                            (m_widget == nullptr || receiver == m_widget);
        ++m_depth;
        const bool handled = QApplication::notify(receiver, event);
        --m_depth;
        m_painted = m_painted || paints;
        if (m_depth == 0 && m_painted && m_callback) {
            std::exchange(m_callback, {})();
        }
        return handled;
    }

private:
    const QWidget *m_widget = nullptr;
    std::function<void()> m_callback;
    int m_depth = 0;
    bool m_painted = false;
};
