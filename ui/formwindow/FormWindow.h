#pragma once

#include <QMainWindow>

class AppModel;
class FormCommands;
class FormEdits;
class FormView;
class PageList;
class PageRenderer;
class QAction;
class QBoxLayout;
class QLabel;
class QPushButton;
class VxMessageBar;

/// The window of the one open form: its pages to fill in, and what can be done with it. It shows
/// itself while the model has a form open and hides when there is none. Main thread.
class FormWindow final : public QMainWindow
{
    Q_OBJECT

public:
    /// The model has to outlive the window.
    explicit FormWindow(AppModel &model);
    ~FormWindow() override;

    /// Comes to the front, out of the task bar if need be.
    void bringForward();

protected:
    void closeEvent(QCloseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void createWindow();
    [[nodiscard]] QWidget *createCommandRow();
    [[nodiscard]] QWidget *createTools();
    [[nodiscard]] QWidget *createFooter();
    void addTool(QBoxLayout *row, QAction *action);
    void connectModel();
    void connectView();
    void openForm();
    void showState();
    void showMessage();
    void showWork();
    void stopWork();

    AppModel &m_model;
    FormEdits *m_edits;
    PageRenderer *m_renderer;
    PageList *m_pages;
    FormView *m_view;
    FormCommands *m_commands;
    QPushButton *m_save = nullptr;
    QPushButton *m_officialPage = nullptr;
    QLabel *m_zoom = nullptr;
    QLabel *m_notice = nullptr;
    QLabel *m_status = nullptr;
    QLabel *m_official = nullptr;
    VxMessageBar *m_message = nullptr;
    bool m_fillable = false;
    bool m_narrow = false; ///< the list of pages gives way
};
