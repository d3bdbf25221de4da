#include "MainWindow.h"

#include "AppModel.h"
#include "DisclaimerSheet.h"
#include "MainMenu.h"
#include "QSInfo.h"
#include "SearchField.h"
#include "Sidebar.h"
#include "StateMenu.h"
#include "VxMessageBar.h"
#include "VxText.h"
#include "editor/DocumentEditor.h"
#include "formwindow/FormWindow.h"
#include "screens/DocumentsView.h"
#include "screens/FormsView.h"
#include "screens/ProfileView.h"
#include "screens/SearchView.h"
#include "screens/TemplatesView.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {
/// The screens that the window has, in the order of the sidebar.
const QList<Screen> screens = {Screen::forms, Screen::templates, Screen::documents,
                               Screen::profile};

/// What the model is busy with, for the message line.
VxMessageBar::Work work(const AppModel &model)
{
    VxMessageBar::Work work;
    QStringList texts;
    if (model.busy()) {
        texts.append(*model.busy());
    }
    if (model.checking()) {
        texts.append(u"Checking official links"_s);
        work.done = model.checking()->done;
        work.total = model.checking()->total;
        work.stoppable = true;
    }
    work.text = texts.join(u" \u00B7 "_s);
    return work;
}
} // namespace

MainWindow::MainWindow(AppModel &model)
    : m_model(model),
      m_sidebar(new Sidebar(screens, this)),
      m_title(VxText::make({}, VxText::Role::title, this)),
      m_state(new StateMenu(model, this)),
      m_search(new SearchField(model, this)),
      m_message(new VxMessageBar(this)),
      m_pages(new QStackedWidget(this))
{
    createWindow();
    connectModel();
    showPage();
    showMessage();
    showWork();
}

MainWindow::~MainWindow() = default;

QWidget *MainWindow::createScreen(Screen screen)
{
    switch (screen) {
    case Screen::forms:
        return new FormsView(m_model, m_pages);
    case Screen::documents:
        return new DocumentsView(m_model, m_pages);
    case Screen::profile:
        return new ProfileView(m_model, m_pages);
    default:
        return new TemplatesView(m_model, m_pages);
    }
}

void MainWindow::addPage(QWidget *page)
{
    m_pages->addWidget(page);
    // Tab reaches the footer after every page
    QWidget *last = previousInFocusChain();
    while (!(last->focusPolicy() & Qt::TabFocus)) { // Qt passes over the others in setTabOrder()
        last = last->previousInFocusChain();
    }
    setTabOrder(last, m_disclaimer);
}

QWidget *MainWindow::screenPage()
{
    QWidget *&page = m_screens[m_model.screen()];
    if (!page) {
        page = createScreen(m_model.screen());
        addPage(page);
    }
    return page;
}

SearchView *MainWindow::results()
{
    if (!m_results) {
        m_results = new SearchView(m_model, m_pages);
        addPage(m_results);
    }
    return m_results;
}

DocumentEditor *MainWindow::editor()
{
    if (!m_editor) {
        m_editor = new DocumentEditor(m_model, m_pages);
        addPage(m_editor);
    }
    return m_editor;
}

void MainWindow::createWindow()
{
    setWindowTitle(QSInfo::appName + u"[*]"_s);
    const int em = fontMetrics().height();
    auto *content = new QVBoxLayout;
    content->setContentsMargins(em, em / 2, em, em / 2);
    content->setSpacing(em / 2);
    content->addWidget(createHeader());
    content->addWidget(m_pages, 1);
    content->addWidget(m_message); // below the page, so that nothing moves away under the mouse

    auto *middle = new QHBoxLayout;
    middle->setSpacing(0);
    middle->addWidget(m_sidebar);
    middle->addLayout(content, 1);

    auto *centre = new QWidget(this);
    auto *column = new QVBoxLayout(centre);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addLayout(middle, 1);
    column->addWidget(createFooter());
    setCentralWidget(centre);
    setMinimumSize(em * 54, em * 30);
    resize(QSize(em * 70, em * 44).boundedTo(screen()->availableGeometry().size() * 9 / 10));
}

QWidget *MainWindow::createHeader()
{
    auto *header = new QWidget(this);
    auto *row = new QHBoxLayout(header);
    row->setContentsMargins({});
    m_title->setWordWrap(false);
    row->addWidget(m_title, 1);
    auto *state = new QLabel(u"State"_s, header);
    state->setBuddy(m_state);
    row->addWidget(state);
    row->addWidget(m_state);
    m_search->setMinimumWidth(fontMetrics().height() * 18);
    row->addWidget(m_search);
    return header;
}

QWidget *MainWindow::createFooter()
{
    auto *footer = new QFrame(this);
    footer->setObjectName(u"footer"_s);
    auto *row = new QHBoxLayout(footer);
    const int em = fontMetrics().height();
    row->setContentsMargins(em, em / 4, em, em / 4);
    row->addWidget(VxText::make(u"Information and official forms only \u2014 not legal advice. "
                                "Laws vary by state; review important matters with an attorney."_s,
                                VxText::Role::note, footer),
                   1);
    m_disclaimer = new QPushButton(u"Disclaimer"_s, footer);
    connect(m_disclaimer, &QPushButton::clicked, &m_model,
            [this] { m_model.setShowDisclaimer(true); });
    row->addWidget(m_disclaimer);
    return footer;
}

void MainWindow::connectModel()
{
    auto *menu = new MainMenu(m_model, screens, this);
    connect(menu, &MainMenu::findRequested, m_search, [this] {
        m_search->setFocus(Qt::ShortcutFocusReason);
        m_search->selectAll();
    });
    connect(menu, &MainMenu::screenRequested, m_pages,
            [this] { m_pages->currentWidget()->setFocus(Qt::TabFocusReason); });
    connect(m_search, &SearchField::leaveForResults, this, [this] {
        if (m_pages->currentWidget() == m_results) {
            m_results->focusFirst();
        }
    });
    // queued: a question may follow, which must not run inside the list's own mouse handling
    connect(
        m_sidebar, &Sidebar::chosen, this,
        [this](Screen screen) {
            if (screen != m_sidebar->current()) { // refused already
                return;
            }
            m_model.show(screen);
            m_sidebar->setCurrent(m_model.screen());
        },
        Qt::QueuedConnection);
    connect(m_message, &VxMessageBar::dismissed, &m_model,
            [this] { m_model.setMessage(std::nullopt); });
    connect(m_message, &VxMessageBar::stopWanted, &m_model, &AppModel::stopChecking);
    connect(&m_model, &AppModel::screenChanged, this, &MainWindow::showPage);
    connect(&m_model, &AppModel::searchChanged, this, &MainWindow::showPage);
    connect(&m_model, &AppModel::editingChanged, this, [this] {
        showPage();
        if (m_model.editing()) {
            editor()->focusFirstField();
        } else {
            m_pages->currentWidget()->setFocus();
        }
    });
    connect(&m_model, &AppModel::openPDFChanged, this, &MainWindow::openFormWindow);
    connect(&m_model, &AppModel::messageChanged, this, &MainWindow::showMessage);
    connect(&m_model, &AppModel::busyChanged, this, &MainWindow::showWork);
    connect(&m_model, &AppModel::checkingChanged, this, &MainWindow::showWork);
    // queued: at start-up the window is shown first
    connect(&m_model, &AppModel::showDisclaimerChanged, this, &MainWindow::showDisclaimer,
            Qt::QueuedConnection);
    if (m_model.showDisclaimer()) {
        QMetaObject::invokeMethod(this, &MainWindow::showDisclaimer, Qt::QueuedConnection);
    }
}

void MainWindow::showPage()
{
    const QWidget *before = m_pages->currentWidget();
    const bool hadKeyboard = before && before->isAncestorOf(focusWidget());
    m_sidebar->setCurrent(m_model.screen());
    if (!m_model.search().trimmed().isEmpty()) {
        m_pages->setCurrentWidget(results());
    } else if (m_model.editing()) {
        m_pages->setCurrentWidget(editor());
    } else {
        m_pages->setCurrentWidget(screenPage());
    }
    if (hadKeyboard && m_pages->currentWidget() != before) {
        m_pages->currentWidget()->setFocus();
    }
    showTitle();
}

void MainWindow::showTitle()
{
    QWidget *page = m_pages->currentWidget();
    if (page == m_results) {
        m_title->setText(u"Search results"_s);
    } else if (page == m_editor) {
        m_title->setText(u"Edit document"_s);
    } else {
        m_title->setText(Screens::info(m_model.screen()).title.toString());
    }
}

void MainWindow::showMessage()
{
    m_message->displayMessage(m_model.message().value_or(QString()));
}

void MainWindow::showWork()
{
    m_message->displayWork(work(m_model));
}

void MainWindow::showDisclaimer()
{
    if (!m_model.showDisclaimer()) {
        return;
    }
    DisclaimerSheet sheet(this);
    if (sheet.exec() == QDialog::Accepted) {
        m_model.acceptDisclaimer();
    } else {
        m_model.setShowDisclaimer(false);
    }
}

void MainWindow::openFormWindow()
{
    if (m_model.openPDF() && !m_formWindow) {
        m_formWindow = std::make_unique<FormWindow>(m_model);
    }
}

void MainWindow::bringForward()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_model.closeEverything()) {
        event->accept();
    } else {
        event->ignore();
    }
}
