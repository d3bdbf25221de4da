#pragma once

#include "AppModel.h"
#include "FakeDesktop.h"
#include "MainWindow.h"
#include "QSThemes.h"
#include "ScratchUser.h"
#include "VellStyle.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <memory>

/// The program's window on a scratch user's empty database, with what a test of it needs: keys go
/// to what has the keyboard, and widgets are found by what a person sees or hears of them.
class WindowFixture
{
protected:
    static void setLook()
    {
        VellThemes::registerThemes(QSThemes::extras());
        VellThemes::setDefaultID(QSThemes::graphiteID);
        VellStyle::apply(*qApp, VellThemes::current());
    }

    /// False when the window does not come up.
    [[nodiscard]] bool begin()
    {
        m_user = std::make_unique<ScratchUser>();
        QSPrefs::setDisclaimerAccepted(true);
        m_desktop = std::make_unique<FakeDesktop>();
        return restart();
    }

    /// As after a new start of the program.
    [[nodiscard]] bool restart()
    {
        m_window.reset();
        m_model.reset();
        QSStore::setShared(nullptr);
        QSStore::setShared(std::make_unique<QSStore>(QSInfo::databaseURL()));
        return openWindow() && QTest::qWaitForWindowActive(m_window.get());
    }

    [[nodiscard]] bool openWindow()
    {
        m_window.reset();
        m_model = std::make_unique<AppModel>(*m_desktop);
        m_window = std::make_unique<MainWindow>(*m_model);
        m_window->show();
        return QTest::qWaitForWindowExposed(m_window.get());
    }

    void end()
    {
        m_window.reset();
        m_model.reset();
        QSStore::setShared(nullptr);
        m_user.reset();
    }

    static QWidget *focused() { return QApplication::focusWidget(); }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::keyClick(focused() ? focused() : m_window.get(), key, modifiers);
    }

    /// The widget of that accessible name.
    template <typename Widget = QWidget>
    [[nodiscard]] Widget *named(const QString &accessibleName) const
    {
        for (Widget *widget : m_window->findChildren<Widget *>()) {
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
        for (Widget *widget : m_window->findChildren<Widget *>()) {
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
        for (QPushButton *each : m_window->findChildren<QPushButton *>()) {
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
        for (const QLabel *label : m_window->findChildren<QLabel *>()) {
            if (label->isVisible()) {
                found.append(label->text());
            }
        }
        return found;
    }

    std::unique_ptr<ScratchUser> m_user;
    std::unique_ptr<FakeDesktop> m_desktop;
    std::unique_ptr<AppModel> m_model;
    std::unique_ptr<MainWindow> m_window;
};
