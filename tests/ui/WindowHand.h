#pragma once

#include "QSThemes.h"
#include "VellThemeRoot.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>

/// What a test of a window needs of it: keys go to what has the keyboard, and widgets are found by
/// what a person sees or hears of them.
class WindowHand
{
public:
    WindowHand() = default;
    virtual ~WindowHand() = default;
    Q_DISABLE_COPY_MOVE(WindowHand)

protected:
    [[nodiscard]] virtual QWidget *window() const = 0;

    static void setLook()
    {
        VellThemes::registerThemes(QSThemes::extras());
        VellThemes::setDefaultID(QSThemes::graphiteID);
        new VellThemeRoot(*qApp);
    }

    static QWidget *focused() { return QApplication::focusWidget(); }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::keyClick(focused() ? focused() : window(), key, modifiers);
    }

    /// The widget of that accessible name.
    template <typename Widget = QWidget>
    [[nodiscard]] Widget *named(const QString &accessibleName) const
    {
        for (Widget *widget : window()->findChildren<Widget *>()) {
            if (widget->accessibleName() == accessibleName) {
                return widget;
            }
        }
        qFatal("no %s", qPrintable(accessibleName));
    }

    /// The first visible widget of a class.
    template <typename Widget>
    [[nodiscard]] Widget *shown() const
    {
        for (Widget *widget : window()->findChildren<Widget *>()) {
            if (widget->isVisible()) {
                return widget;
            }
        }
        return nullptr;
    }

    /// The visible button that shows this text, ampersands and all.
    [[nodiscard]] QPushButton *button(const QString &text) const
    {
        const QString written = QString(text).replace(u'&', QStringLiteral("&&"));
        for (QPushButton *each : window()->findChildren<QPushButton *>()) {
            if (each->text() == written && each->isVisible()) {
                return each;
            }
        }
        qFatal("no button %s", qPrintable(text));
    }

    /// What the visible labels say.
    [[nodiscard]] QStringList texts() const
    {
        QStringList found;
        for (const QLabel *label : window()->findChildren<QLabel *>()) {
            if (label->isVisible()) {
                found.append(label->text());
            }
        }
        return found;
    }
};
