#include "DocumentsView.h"

#include "AppModel.h"
#include "ExportMenu.h"
#include "VxButton.h"
#include "VxText.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QTableView>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

DocumentsView::DocumentsView(AppModel &model, QWidget *parent)
    : QWidget(parent),
      m_model(model),
      m_table(new QTableView(this)),
      m_empty(VxText::make({}, VxText::Role::note, this))
{
    const QString heading = u"Filled Vell templates"_s;
    createTable();
    m_table->setAccessibleName(heading);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->addWidget(VxText::make(heading, VxText::Role::heading, this));
    column->addWidget(createButtons());
    column->addWidget(m_empty);
    column->addWidget(m_table, 1);
    column->addStretch();
    connectActions();
    enableButtons();
    setFocusProxy(m_table);
}

void DocumentsView::createTable()
{
    m_table->setModel(&m_documents);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setAlternatingRowColors(true);
    m_table->setShowGrid(false);
    m_table->setTabKeyNavigation(false);
    m_table->setWordWrap(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 2);
    QHeaderView *header = m_table->horizontalHeader();
    header->setHighlightSections(false);
    header->setSectionResizeMode(QHeaderView::Stretch);
    header->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    header->setResizeContentsPrecision(20); // rows looked at; all stamps are about as long
}

QWidget *DocumentsView::createButtons()
{
    auto *bar = new QWidget(this);
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins({});
    const auto add = [bar, row](const QString &text, const QString &symbol) {
        QPushButton *button = VxButton::make(text, symbol, bar);
        row->addWidget(button);
        return button;
    };
    m_open = add(u"Open"_s, u"doc.text.fill"_s);
    m_export = add(u"Export"_s, u"square.and.arrow.up"_s);
    m_print = add(u"Print\u2026"_s, u"printer.fill"_s);
    row->addStretch();
    m_delete = add(u"Delete"_s, u"trash.fill"_s);
    return bar;
}

void DocumentsView::connectActions()
{
    connect(m_open, &QPushButton::clicked, this, &DocumentsView::openSelected);
    connect(m_table, &QTableView::activated, this, &DocumentsView::openSelected);
    connect(m_delete, &QPushButton::clicked, this, &DocumentsView::deleteSelected);
    auto *deleteKey = new QShortcut(QKeySequence::Delete, m_table);
    deleteKey->setContext(Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, this, &DocumentsView::deleteSelected);
    connect(m_print, &QPushButton::clicked, this, [this] {
        if (const QSDocument *document = selected()) {
            m_model.print(*document);
        }
    });
    ExportMenu::attach(m_export, this, [this](QSExport::Format format) {
        if (const QSDocument *document = selected()) {
            m_model.exportDocument(*document, format);
        }
    });
    connect(m_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &DocumentsView::enableButtons);
    connect(&m_model, &AppModel::revisionChanged, this, [this] {
        if (isVisible()) {
            reload();
        }
    });
}

void DocumentsView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    reload();
}

void DocumentsView::reload()
{
    const int row = m_table->currentIndex().row();
    const QSDocument *chosen = selected();
    const std::optional<qint64> id = chosen ? chosen->id : std::nullopt;
    const std::optional<QList<QSDocument>> documents = m_model.documents();
    m_documents.setDocuments(documents.value_or(QList<QSDocument>()));
    m_empty->setText(documents ? u"No documents yet. Start one from the Vell Templates screen."_s
                               : u"Your documents could not be read."_s);
    const int rows = m_documents.rowCount();
    m_table->setVisible(rows > 0);
    m_empty->setVisible(rows == 0);
    if (rows > 0) { // a changed document moves to the top, and the selection goes with it
        const int moved = m_documents.rowOf(id);
        m_table->selectRow(moved >= 0 ? moved : qBound(0, row, rows - 1));
    }
    enableButtons();
}

void DocumentsView::enableButtons()
{
    const bool any = selected() != nullptr;
    for (QPushButton *button : {m_open, m_export, m_print, m_delete}) {
        button->setEnabled(any);
    }
}

const QSDocument *DocumentsView::selected() const
{
    return m_table->selectionModel()->hasSelection()
               ? m_documents.documentAt(m_table->currentIndex().row())
               : nullptr;
}

void DocumentsView::openSelected()
{
    if (const QSDocument *document = selected()) {
        m_model.edit(QSDocument(*document));
    }
}

void DocumentsView::deleteSelected()
{
    if (const QSDocument *document = selected()) {
        m_model.deleteDocument(QSDocument(*document)); // the list is read anew meanwhile
    }
}
