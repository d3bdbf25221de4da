#include "RecordList.h"

#include "RecordsModel.h"
#include "VxButton.h"
#include "VxContextMenu.h"
#include "VxText.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QShortcut>
#include <QTableView>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

RecordList::RecordList(const QString &heading, QAbstractItemModel &model, QWidget *parent)
    : QWidget(parent),
      m_model(model),
      m_table(new QTableView(this)),
      m_empty(VxText::make({}, VxText::Role::note, this))
{
    createTable();
    m_table->setAccessibleName(heading);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->addWidget(VxText::make(heading, VxText::Role::heading, this));
    column->addWidget(createButtons());
    column->addWidget(m_empty);
    column->addWidget(m_table, 1);
    for (QPushButton *button : {m_open, m_export, m_print, m_delete}) {
        button->setAccessibleName(button->text() + u", "_s + heading);
    }
    setTabOrder(m_delete, m_table);
    connectActions();
    VxContextMenu::attach(m_table, [this](QMenu *menu) { fillMenu(menu); });
    enableButtons();
}

void RecordList::fillMenu(QMenu *menu)
{
    const auto add = [this, menu](const QPushButton *button, void (RecordList::*wanted)()) {
        menu->addAction(button->icon(), button->text(), this, wanted);
    };
    add(m_open, &RecordList::openWanted);
    QMenu *formats = menu->addMenu(m_export->icon(), m_export->text());
    formats->addActions(m_export->menu()->actions());
    add(m_print, &RecordList::printWanted);
    menu->addSeparator();
    add(m_delete, &RecordList::deleteWanted);
}

void RecordList::createTable()
{
    m_table->setModel(&m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setAlternatingRowColors(true);
    m_table->setShowGrid(false);
    m_table->setTabKeyNavigation(false);
    m_table->setWordWrap(false);
    m_table->setDragEnabled(true);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 2);
    QHeaderView *header = m_table->horizontalHeader();
    header->setHighlightSections(false);
    header->setSectionResizeMode(QHeaderView::Stretch);
    header->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    header->setResizeContentsPrecision(20); // rows looked at; all stamps are about as long
}

QWidget *RecordList::createButtons()
{
    auto *bar = new QWidget(this);
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins({});
    const auto add = [row](const QString &text, const QString &symbol) {
        return VxButton::add(row, text, symbol);
    };
    m_open = add(u"Open"_s, u"doc.text.fill"_s);
    m_export = add(u"Export"_s, u"square.and.arrow.up"_s);
    m_print = add(u"Print\u2026"_s, u"printer.fill"_s);
    row->addStretch();
    m_delete = add(u"Delete"_s, u"trash.fill"_s);
    return bar;
}

void RecordList::connectActions()
{
    connect(m_open, &QPushButton::clicked, this, &RecordList::openWanted);
    m_table->setTextElideMode(Qt::ElideMiddle); // names of copies differ at their ends
    connect(m_table, &QTableView::activated, this, &RecordList::openWanted);
    connect(m_print, &QPushButton::clicked, this, &RecordList::printWanted);
    connect(m_delete, &QPushButton::clicked, this, &RecordList::deleteWanted);
    auto *deleteKey = new QShortcut(QKeySequence::Delete, m_table);
    deleteKey->setContext(Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, this, &RecordList::deleteWanted);
    connect(m_table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &RecordList::enableButtons);
}

bool RecordList::isEmpty() const
{
    return m_model.rowCount() == 0;
}

void RecordList::refill(const std::function<void()> &fill, const QString &emptyText)
{
    const int row = m_table->currentIndex().row();
    const QVariant id = m_table->currentIndex().data(recordIDRole);
    fill();
    m_empty->setText(emptyText);
    m_table->setVisible(!isEmpty());
    m_empty->setVisible(isEmpty());
    setSizePolicy(QSizePolicy::Preferred,
                  isEmpty() ? QSizePolicy::Maximum : QSizePolicy::Expanding);
    if (!isEmpty()) { // a changed record moves to the top, and the selection goes with it
        const QModelIndexList moved =
            m_model.match(m_model.index(0, 0), recordIDRole, id, 1, Qt::MatchExactly);
        m_table->selectRow(moved.isEmpty() ? qBound(0, row, m_model.rowCount() - 1)
                                           : moved.constFirst().row());
    }
    enableButtons();
}

void RecordList::enableButtons()
{
    for (QPushButton *button : {m_open, m_export, m_print, m_delete}) {
        button->setEnabled(selectedRow() >= 0);
    }
}

int RecordList::selectedRow() const
{
    return m_table->selectionModel()->hasSelection() ? m_table->currentIndex().row() : -1;
}
