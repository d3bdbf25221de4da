#pragma once

#include <QObject>

class AppModel;
class FormEdits;
class FormView;
class QAction;
class QMainWindow;
class QWidget;

/// The form window's commands, in its menus and for its buttons. Made once for the window, which
/// owns it. Main thread.
class FormCommands final : public QObject
{
    Q_OBJECT

public:
    /// The sidebar is what the View menu shows and hides.
    FormCommands(AppModel &model, FormEdits &edits, FormView &view, QWidget &sidebar,
                 QMainWindow *window);

    [[nodiscard]] QAction *undo() const { return m_undo; }
    [[nodiscard]] QAction *redo() const { return m_redo; }
    [[nodiscard]] QAction *zoomIn() const { return m_zoomIn; }
    [[nodiscard]] QAction *zoomOut() const { return m_zoomOut; }
    [[nodiscard]] QAction *fitWidth() const { return m_fitWidth; }
    [[nodiscard]] QAction *showPages() const { return m_showPages; }
    /// Names the saving after what it does now.
    void setSaveText(const QString &text);

private:
    void createFileMenu();
    void createEditMenu(FormEdits &edits);
    void createViewMenu(FormView &view, QWidget &sidebar);
    void createGoMenu(FormView &view);

    AppModel &m_model;
    QMainWindow *m_window;
    QAction *m_save = nullptr;
    QAction *m_undo = nullptr;
    QAction *m_redo = nullptr;
    QAction *m_zoomIn = nullptr;
    QAction *m_zoomOut = nullptr;
    QAction *m_fitWidth = nullptr;
    QAction *m_showPages = nullptr;
};
