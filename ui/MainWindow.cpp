#include "MainWindow.h"

#include "AppModel.h"
#include "DisclaimerSheet.h"
#include "MainMenu.h"
#include "QSBackup.h"
#include "QSInfo.h"
#include "SearchField.h"
#include "Sidebar.h"
#include "StateMenu.h"
#include "VellThemeRoot.h"
#include "VxMemory.h"
#include "VxMessageBar.h"
#include "VxText.h"
#include "VxWindow.h"
#include "VxZoomHost.h"
#include "editor/DocumentEditor.h"
#include "formwindow/FormWindow.h"
#include "screens/DocumentsView.h"
#include "screens/FinderView.h"
#include "screens/FormsView.h"
#include "screens/LastCheckedView.h"
#include "screens/LegalAidView.h"
#include "screens/ProfileView.h"
#include "screens/SearchView.h"
#include "screens/SettingsView.h"
#include "screens/TemplatesView.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <array>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Path of the one backup that is dragged; absent for anything else.
std::optional<QString> droppedBackup(const QMimeData &dragged)
{
    const QList<QUrl> files = dragged.urls();
    const QFileInfo file(files.size() == 1 ? files.constFirst().toLocalFile() : QString());
    return file.isFile() && file.suffix().compare(QSBackup::fileExtension, Qt::CaseInsensitive) == 0
               ? std::optional(file.filePath())
               : std::nullopt;
}

using MakeScreen = QWidget *(*)(AppModel &, QWidget *);

template <typename View>
QWidget *make(AppModel &model, QWidget *parent)
{
    return new View(model, parent);
}

/// What shows each screen, in their order.
constexpr std::array<MakeScreen, Screens::all.size()> makers = {
    make<FinderView>,  make<FormsView>,       make<TemplatesView>, make<DocumentsView>,
    make<ProfileView>, make<LastCheckedView>, make<LegalAidView>,  make<SettingsView>,
};

/// Whether the page is the screen that shows by itself how far the check of links is.
bool showsCheck(const AppModel &model)
{
    return model.screen() == Screen::lastChecked && !model.editing() &&
           model.search().trimmed().isEmpty();
}

/// What the model is busy with, for the message line.
VxMessageBar::Work work(const AppModel &model)
{
    if (model.busy()) {
        return {.text = *model.busy(),
                .done = model.busyProgress().done,
                .total = model.busyProgress().total,
                .stoppable = model.canStopBusy()};
    }
    if (model.checking() && !showsCheck(model)) {
        return {.text = u"Checking official links"_s,
                .done = model.checking()->done,
                .total = model.checking()->total,
                .stoppable = true};
    }
    return {};
}
} // namespace

MainWindow::MainWindow(AppModel &model)
    : m_model(model),
      m_sidebar(new Sidebar(this)),
      m_title(VxText::make({}, VxText::Role::title, this)),
      m_state(new StateMenu(model, this)),
      m_search(new SearchField(model, this)),
      m_message(new VxMessageBar(this)),
      m_pages(new QStackedWidget(this))
{
    createWindow();
    connectModel();
    connect(m_pages, &QStackedWidget::currentChanged, this, &MainWindow::sizeByPage);
    showPage();
    showMessage();
}

MainWindow::~MainWindow() = default;

void MainWindow::addPage(QWidget *page)
{
    m_pages->addWidget(page);
    // Tab reaches the message and the footer after every page
    setTabOrder(m_message->followInTabOrder(VxWindow::lastTabStop(this)), m_disclaimer);
}

void MainWindow::sizeByPage()
{
    for (int i = 0; i < m_pages->count(); ++i) {
        const bool counts = i == m_pages->currentIndex();
        const QSizePolicy::Policy policy = counts ? QSizePolicy::Expanding : QSizePolicy::Ignored;
        m_pages->widget(i)->setSizePolicy(policy, policy);
    }
}

void MainWindow::dropPage(QWidget *page)
{
    m_pages->removeWidget(page);
    const std::unique_ptr<QWidget> gone(page);
}

void MainWindow::dropHiddenPages()
{
    const QWidget *shown = m_pages->currentWidget();
    for (const Screen screen : m_screens.keys()) {
        if (m_screens.value(screen) != shown) {
            dropPage(m_screens.take(screen));
        }
    }
    if (m_results && m_results != shown) {
        dropPage(std::exchange(m_results, nullptr));
    }
    if (m_editor && !m_model.editing()) {
        dropPage(std::exchange(m_editor, nullptr));
    }
    if (m_formWindow && !m_model.openPDF()) {
        m_formWindow.reset();
    }
}

QWidget *MainWindow::screenPage()
{
    QWidget *&page = m_screens[m_model.screen()];
    if (!page) {
        page = makers.at(static_cast<std::size_t>(m_model.screen()))(m_model, m_pages);
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
    setCentralWidget(new VxZoomHost(centre, {40, 22}, this));
    resize(QSize(em * 74, em * 46).boundedTo(screen()->availableGeometry().size() * 9 / 10));
    VxMemory::keepGeometry(this, u"qs.window.geometry"_s);
    setAcceptDrops(true);
}

QWidget *MainWindow::createHeader()
{
    auto *header = new QWidget(this);
    auto *row = new QHBoxLayout;
    auto *state = new QLabel(u"State"_s, header);
    state->setBuddy(m_state);
    row->addWidget(state);
    row->addWidget(m_state);
    m_search->setMinimumWidth(fontMetrics().height() * 12);
    row->addWidget(m_search);
    m_title->setWordWrap(false);
    m_header = new QBoxLayout(QBoxLayout::LeftToRight, header);
    m_header->setContentsMargins({});
    m_header->addWidget(m_title, 1);
    m_header->addLayout(row);
    return header;
}

void MainWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    arrangeHeader();
}

void MainWindow::arrangeHeader()
{
    const bool narrow = width() < fontMetrics().height() * 54;
    m_header->setDirection(narrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
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
    auto *menu = new MainMenu(m_model, this);
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
    connect(VellThemeRoot::instance(), &VellThemeRoot::aboutToChange, this,
            &MainWindow::dropHiddenPages);
    connect(VellThemeRoot::instance(), &VellThemeRoot::changed, this, &MainWindow::arrangeHeader);
    connect(m_message, &VxMessageBar::dismissed, &m_model,
            [this] { m_model.setMessage(std::nullopt); });
    connect(m_message, &VxMessageBar::stopWanted, &m_model,
            [this] { m_model.busy() ? m_model.stopBusy() : m_model.stopChecking(); });
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
    showWork();
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
    VxWindow::bringForward(this);
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    if (droppedBackup(*event->mimeData())) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
}

void MainWindow::dropEvent(QDropEvent *event)
{
    if (const std::optional<QString> path = droppedBackup(*event->mimeData())) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
        // the question comes when the program that the file was dragged from is let go
        QMetaObject::invokeMethod(
            this,
            [this, path = *path] {
                activateWindow();
                m_model.restoreFrom(path);
            },
            Qt::QueuedConnection);
    }
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (m_model.closeEverything()) {
        event->accept();
    } else {
        event->ignore();
    }
}
