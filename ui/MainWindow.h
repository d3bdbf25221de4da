#pragma once

#include "Screen.h"

#include <QMainWindow>
#include <QMap>

#include <memory>

class AppModel;
class DocumentEditor;
class FormWindow;
class QBoxLayout;
class QLabel;
class QPushButton;
class QStackedWidget;
class SearchField;
class SearchView;
class Sidebar;
class StateMenu;
class VxMessageBar;

/// The program's first window: sidebar, header with the state menu and the search field, the
/// screen, message line, and the disclaimer's footer. It shows what the model says and hands what
/// the user does to the model.
class MainWindow final : public QMainWindow
{
    Q_OBJECT

public:
    /// The model has to outlive the window.
    explicit MainWindow(AppModel &model);
    ~MainWindow() override;

    /// Comes to the front, out of the task bar if need be.
    void bringForward();

protected:
    void closeEvent(QCloseEvent *event) override;
    /// One backup, dropped anywhere on the window, is restored after the question.
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    [[nodiscard]] QWidget *createHeader();
    [[nodiscard]] QWidget *createFooter();
    /// The page of the model's screen. Pages are made when they are first shown, so that a start
    /// waits for one alone.
    [[nodiscard]] QWidget *screenPage();
    /// The title stands above the state and the search where there is no room beside them.
    void arrangeHeader();
    void addPage(QWidget *page);
    void dropPage(QWidget *page);
    /// The window scrolls where the page that is shown has no room; the others don't count.
    void sizeByPage();
    /// Pages that nobody sees are made anew when they are next shown; the editor stays while a
    /// document is open in it.
    void dropHiddenPages();
    [[nodiscard]] SearchView *results();
    [[nodiscard]] DocumentEditor *editor();
    void createWindow();
    void connectModel();
    /// The page that the model's state asks for: results, the editor, or the screen.
    void showPage();
    void showTitle();
    void showMessage();
    void showWork();
    void showDisclaimer();
    /// Makes the form window when a form is opened for the first time; it shows itself.
    void openFormWindow();

    AppModel &m_model;
    Sidebar *m_sidebar;
    QLabel *m_title;
    QBoxLayout *m_header = nullptr;
    StateMenu *m_state;
    SearchField *m_search;
    VxMessageBar *m_message;
    QStackedWidget *m_pages;
    QPushButton *m_disclaimer = nullptr;
    QMap<Screen, QWidget *> m_screens; ///< those made so far; so too the two below
    SearchView *m_results = nullptr;
    DocumentEditor *m_editor = nullptr;
    std::unique_ptr<FormWindow> m_formWindow; ///< a window of its own, not in front of this one
};
