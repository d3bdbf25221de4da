#pragma once

#include "AppModel.h"
#include "FakeDesktop.h"
#include "MainWindow.h"
#include "ScratchUser.h"
#include "WindowHand.h"

#include <memory>

/// The program's window on a scratch user's empty database.
class WindowFixture : protected WindowHand
{
protected:
    [[nodiscard]] QWidget *window() const override { return m_window.get(); }

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

    std::unique_ptr<ScratchUser> m_user;
    std::unique_ptr<FakeDesktop> m_desktop;
    std::unique_ptr<AppModel> m_model;
    std::unique_ptr<MainWindow> m_window;
};
