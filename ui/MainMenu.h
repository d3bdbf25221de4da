#pragma once

#include <QList>
#include <QObject>

class AppModel;
class QAction;
class QMainWindow;

/// The window's menus: they hold no rules, only the model's actions with their shortcuts.
class MainMenu final : public QObject
{
    Q_OBJECT

public:
    /// Fills the window's menu bar; the window owns the result.
    MainMenu(AppModel &model, QMainWindow *window);

Q_SIGNALS:
    /// The user wants to type into the search field.
    void findRequested();
    /// The user went to a screen and goes on in it.
    void screenRequested();

private:
    void createFileMenu();
    void createViewMenu();
    void createThemeMenu();
    void createGoMenu();
    void createHelpMenu();
    /// Commands on the open document are off while there is none, the check of all links while one
    /// runs.
    void enableCommands();

    AppModel &m_model;
    QMainWindow *m_window;
    QList<QAction *> m_documentCommands;
    QAction *m_checkLinks = nullptr;
};
