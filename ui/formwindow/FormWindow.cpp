#include "FormWindow.h"

#include "AppModel.h"
#include "FieldControl.h"
#include "FormCommands.h"
#include "FormEdits.h"
#include "FormView.h"
#include "PageList.h"
#include "PageRenderer.h"
#include "QSPDF.h"
#include "VxButton.h"
#include "VxFlow.h"
#include "VxMemory.h"
#include "VxMessageBar.h"
#include "VxText.h"
#include "VxToolButton.h"
#include "VxWindow.h"
#include "VxZoomHost.h"
#include "screens/ExportMenu.h"

#include <QAction>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QSplitter>
#include <QVBoxLayout>

#include <memory>
#include <utility>

using namespace Qt::Literals::StringLiterals;

FormWindow::FormWindow(AppModel &model)
    : m_model(model),
      m_edits(new FormEdits(model, this)),
      m_renderer(new PageRenderer(this)),
      m_pages(new PageList(*m_renderer, this)),
      m_view(new FormView(*m_renderer, this)),
      m_commands(new FormCommands(model, *m_edits, *m_view, *m_pages, this))
{
    createWindow();
    connectModel();
    connectView();
    openForm();
}

FormWindow::~FormWindow()
{
    m_renderer->open({}, {});
    const std::unique_ptr<QWidget> views(takeCentralWidget()); // gone before what draws for them
}

void FormWindow::createWindow()
{
    const int em = fontMetrics().height();
    m_notice = VxText::make({}, VxText::Role::body, this);
    m_message = new VxMessageBar(this);

    auto *split = new QSplitter(Qt::Horizontal, this);
    split->addWidget(m_pages);
    split->addWidget(m_view);
    split->setChildrenCollapsible(false);
    split->setStretchFactor(1, 1);
    split->setSizes({em * 9, em * 60});

    auto *centre = new QWidget(this);
    auto *column = new QVBoxLayout(centre);
    column->setContentsMargins(em / 2, em / 2, em / 2, em / 3);
    column->setSpacing(em / 3);
    column->addWidget(createCommandRow());
    column->addWidget(m_notice);
    column->addWidget(split, 1);
    column->addWidget(m_message);
    column->addWidget(createFooter());
    setCentralWidget(new VxZoomHost(centre, {34, 24}, this));
    setTabOrder(VxWindow::lastTabStop(this), m_pages);
    setTabOrder(m_pages, m_view);
    m_message->followInTabOrder(m_view);
    resize(QSize(em * 64, em * 50).boundedTo(screen()->availableGeometry().size() * 9 / 10));
    VxMemory::keepSplitter(split, u"qs.form.splitter"_s);
    VxMemory::keepGeometry(this, u"qs.form.geometry"_s);
}

QWidget *FormWindow::createCommandRow()
{
    auto *bar = new QWidget(this);
    auto *row = new VxFlow(bar);
    row->setContentsMargins({});
    row->setSpacing(fontMetrics().height() / 2);
    const auto add = [row](const QString &text, const QString &symbol) {
        return VxButton::add(row, text, symbol);
    };
    m_save = add({}, u"tray.and.arrow.down.fill"_s);
    QPushButton *formats = add(u"Export"_s, u"square.and.arrow.up"_s);
    QPushButton *print = add(u"Print\u2026"_s, u"printer.fill"_s);
    m_officialPage = add(u"Official page"_s, u"safari.fill"_s);
    QPushButton *close = add(u"Close"_s, u"xmark"_s);
    row->addWidget(createTools());

    ExportMenu::attachForForm(formats, &m_model,
                              [this](AppModel::FormExport how) { m_model.exportForm(how); });
    connect(m_save, &QPushButton::clicked, &m_model, &AppModel::saveForm);
    connect(print, &QPushButton::clicked, &m_model, &AppModel::printForm);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    connect(m_officialPage, &QPushButton::clicked, &m_model, [this] {
        if (m_model.openPDF() && m_model.openPDF()->form().entry) {
            m_model.openOfficialPage(*m_model.openPDF()->form().entry);
        }
    });
    return bar;
}

QWidget *FormWindow::createTools()
{
    auto *bar = new QWidget(this);
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins({});
    for (QAction *each :
         {m_commands->undo(), m_commands->redo(), m_commands->showPages(), m_commands->zoomOut()}) {
        addTool(row, each);
    }
    m_zoom = new QLabel(bar);
    m_zoom->setAlignment(Qt::AlignCenter);
    m_zoom->setMinimumWidth(fontMetrics().horizontalAdvance(u"400 %"_s));
    row->addWidget(m_zoom);
    addTool(row, m_commands->zoomIn());
    addTool(row, m_commands->fitWidth());
    return bar;
}

void FormWindow::addTool(QBoxLayout *row, QAction *action)
{
    auto *button = new VxToolButton(row->parentWidget());
    button->setDefaultAction(action);
    button->setAutoRaise(true);
    const int em = fontMetrics().height();
    button->setIconSize({em, em});
    button->setFocusPolicy(Qt::TabFocus);
    button->setAccessibleName(action->iconText());
    row->addWidget(button);
}

QWidget *FormWindow::createFooter()
{
    auto *footer = new QWidget(this);
    auto *row = new QHBoxLayout(footer);
    row->setContentsMargins({});
    m_status = VxText::make({}, VxText::Role::note, footer);
    row->addWidget(m_status, 1);
    m_official =
        VxText::make(u"Official form \u2014 not legal advice"_s, VxText::Role::note, footer);
    m_official->setWordWrap(false);
    row->addWidget(m_official);
    return footer;
}

void FormWindow::connectModel()
{
    connect(&m_model, &AppModel::openPDFChanged, this, &FormWindow::openForm);
    connect(&m_model, &AppModel::openPDFWanted, this, &FormWindow::bringForward);
    connect(&m_model, &AppModel::fieldWanted, this, [this](int field) {
        bringForward();
        m_view->focusField(field, Qt::OtherFocusReason);
    });
    connect(&m_model, &AppModel::editsWanted, m_view, &FormView::commitInput);
    connect(&m_model, &AppModel::formValuesChanged, this, [this](const QList<int> &fields) {
        m_view->refresh(fields);
        showState();
    });
    connect(&m_model, &AppModel::formChanged, this, [this] {
        m_edits->endStep(); // going back stops at what was saved
        showState();
    });
    connect(&m_model, &AppModel::messageChanged, this, &FormWindow::showMessage);
    connect(&m_model, &AppModel::busyChanged, this, &FormWindow::showWork);
    connect(m_message, &VxMessageBar::dismissed, &m_model,
            [this] { m_model.setMessage(std::nullopt); });
    connect(m_message, &VxMessageBar::stopWanted, this, &FormWindow::stopWork);
    connect(m_renderer, &PageRenderer::slowPageChanged, this, &FormWindow::showWork);
}

void FormWindow::connectView()
{
    connect(m_view, &FormView::edited, m_edits, &FormEdits::edit);
    connect(m_view, &FormView::editedTogether, m_edits, &FormEdits::editTogether);
    connect(m_view, &FormView::leftOut, &m_model, [this](qsizetype characters) {
        m_model.setMessage(characters == 1 ? u"1 character did not fit."_s
                                           : u"%1 characters did not fit."_s.arg(characters));
    });
    connect(m_view, &FormView::fieldChanged, m_edits, &FormEdits::endStep);
    connect(m_view, &FormView::faultLeft, &m_model,
            [this](const FormFault &fault) { m_model.setMessage(fault.sentence()); });
    connect(m_edits, &FormEdits::turnedTo, m_view,
            [this](int field) { m_view->focusField(field, Qt::OtherFocusReason); });
    connect(m_view, &FormView::currentPageChanged, m_pages, &PageList::setCurrentPage);
    connect(m_view, &FormView::pageRedrawn, m_pages, &PageList::outdate);
    connect(m_view, &FormView::zoomChanged, this,
            [this] { m_zoom->setText(u"%1 %"_s.arg(qRound(m_view->zoom() * 100))); });
    connect(m_pages, &PageList::pageChosen, m_view, &FormView::goToPage);
}

void FormWindow::openForm()
{
    m_edits->clear();
    const std::optional<FormSession> &session = m_model.openPDF();
    const std::shared_ptr<QSPDFDocument> document = session ? session->form().document : nullptr;
    m_renderer->open({}, {});
    m_pages->open(document);
    m_view->open(document);
    m_renderer->open(document, {m_view, m_pages});
    if (!session) {
        hide();
        return;
    }
    m_fillable = QSPDF::isFillable(*document);
    showState();
    showMessage();
    showWork();
    m_view->setFocus(Qt::OtherFocusReason);
    bringForward();
}

void FormWindow::showState()
{
    const std::optional<FormSession> &session = m_model.openPDF();
    if (!session) {
        return;
    }
    const QString save = session->form().saved ? u"Save Changes"_s : u"Save Filled Copy"_s;
    m_notice->setText(
        m_fillable
            ? u"This form has fill-in fields: click a field and type. %1 keeps it in My Documents."_s
                  .arg(save)
            : u"This PDF has no fill-in fields. Print it and fill it in by hand."_s);
    m_save->setText(save);
    m_commands->setSaveText(save);
    m_officialPage->setEnabled(session->form().entry.has_value());
    m_official->setVisible(session->form().entry.has_value());
    m_status->setText(session->form().status);
    setWindowTitle(VxText::asTitle(session->form().title) + u"[*]"_s);
    setWindowModified(session->hasUnsavedChanges());
}

void FormWindow::showMessage()
{
    m_message->displayMessage(m_model.message().value_or(QString()));
}

void FormWindow::showWork()
{
    if (const std::optional<int> page = m_renderer->slowPage(); page && !m_model.busy()) {
        m_message->displayWork({.text = u"Page %1 takes long to draw\u2026"_s.arg(*page + 1),
                                .done = 0,
                                .total = 0,
                                .stoppable = true});
        return;
    }
    m_message->displayWork({.text = m_model.busy().value_or(QString()),
                            .done = m_model.busyProgress().done,
                            .total = m_model.busyProgress().total,
                            .stoppable = m_model.canStopBusy()});
}

void FormWindow::stopWork()
{
    if (m_model.busy()) {
        m_model.stopBusy();
    } else if (const std::optional<int> page = m_renderer->slowPage()) {
        m_renderer->stop();
        m_model.setMessage(
            u"The drawing of page %1 was stopped. At another zoom it is tried again."_s.arg(*page +
                                                                                            1));
    }
}

void FormWindow::bringForward()
{
    VxWindow::bringForward(this);
}

void FormWindow::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    const bool narrow = width() < fontMetrics().height() * 50;
    if (std::exchange(m_narrow, narrow) != narrow) {
        m_commands->showPages()->setChecked(!narrow);
    }
}

void FormWindow::closeEvent(QCloseEvent *event)
{
    if (m_model.closeForm()) {
        event->accept();
    } else {
        event->ignore();
    }
}
