#pragma once

#include "MainWindow.h"
#include "ModelFixture.h"
#include "WindowHand.h"

/// The program's window on a scratch user's empty database.
class WindowFixture : protected WindowHand, protected ModelFixture
{
protected:
    [[nodiscard]] QWidget *window() const override { return m_window.get(); }

    /// False when the window does not come up.
    [[nodiscard]] bool begin()
    {
        beginModel();
        m_model->acceptDisclaimer();
        return restart();
    }

    /// As after a new start of the program.
    [[nodiscard]] bool restart()
    {
        m_window.reset();
        restartModel();
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
        endModel();
    }

    std::unique_ptr<MainWindow> m_window;
};
