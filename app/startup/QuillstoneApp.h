#pragma once

#include "AppModel.h"
#include "MainWindow.h"
#include "QSSingleInstance.h"
#include "QtDesktop.h"

#include <optional>

/// The program from start to end, once it is settled that a window is to open: single instance,
/// look, database, model, window. One in a process, on the main thread, after QApplication.
class QuillstoneApp final
{
public:
    QuillstoneApp();
    ~QuillstoneApp();
    QuillstoneApp(const QuillstoneApp &) = delete;
    QuillstoneApp &operator=(const QuillstoneApp &) = delete;

    /// Opens the window; false when the program already runs over this data folder and has come
    /// forward instead, or may run there and the person does not want to open it anyway.
    [[nodiscard]] bool start();
    /// Only after start() returned true.
    [[nodiscard]] MainWindow &window() { return *m_window; }

private:
    [[nodiscard]] bool opensAnyway();
    /// Looks through the database; a damaged one is mended. Then the search index is filled.
    void checkStore();

    std::optional<QSSingleInstance> m_instance;
    QtDesktop m_desktop;
    std::optional<AppModel> m_model;
    std::optional<MainWindow> m_window;
};
