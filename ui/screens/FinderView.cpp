#include "FinderView.h"

#include "AppModel.h"
#include "EntryList.h"
#include "FinderPage.h"
#include "QSFinder.h"
#include "VxIcon.h"
#include "VxSplit.h"
#include "VxText.h"

#include <QFocusEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>

using namespace Qt::Literals::StringLiterals;

namespace {
QStandardItem *makeItem(const QSTask &task)
{
    auto *item = new QStandardItem(VxIcon::named(task.symbol), task.title); // its model owns it
    item->setEditable(false);
    item->setData(task.id, EntryList::idRole);
    item->setData(task.detail, EntryList::aboutRole);
    item->setData(QString(task.title + u", "_s + task.detail), Qt::AccessibleTextRole);
    return item;
}
} // namespace

FinderView::FinderView(AppModel &model, QWidget *parent)
    : QWidget(parent), m_model(model), m_list(new EntryList(this)), m_area(new QScrollArea(this))
{
    createList();
    createArea();
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(VxSplit::make(m_list, m_area, u"qs.finder.splitter"_s, this));
    connectModel();
}

void FinderView::createList()
{
    for (const QSTask &task : QSFinder::tasks) {
        m_tasks.appendRow(makeItem(task));
    }
    m_list->setAccessibleName(u"Tasks"_s);
    m_list->setModel(&m_tasks);
}

void FinderView::createArea()
{
    m_area->setWidgetResizable(true);
    m_area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_area->setMinimumWidth(fontMetrics().height() * 14);
    m_area->setAccessibleName(u"The chosen task"_s);
    QLabel *hint =
        VxText::make(u"Choose a task on the left."_s, VxText::Role::heading, m_area->viewport());
    hint->setAlignment(Qt::AlignTop);
    m_area->setWidget(hint);
}

void FinderView::connectModel()
{
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex &current) {
                if (current.isValid()) {
                    m_model.setFinderTask(current.data(EntryList::idRole).toString());
                }
            });
    const auto reloadIfShown = [this] {
        if (isVisible()) {
            reload();
        }
    };
    connect(&m_model, &AppModel::selectionChanged, this, reloadIfShown);
    connect(&m_model, &AppModel::revisionChanged, this, reloadIfShown);
}

void FinderView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    reload();
}

void FinderView::reload()
{
    showTask();
    const QSTask *task = QSFinder::task(m_model.finderTaskID().value_or(QString()));
    if (!task) {
        return;
    }
    if (m_page && m_page->shows(*task, m_model.state())) {
        m_page->refresh();
        return;
    }
    m_page = new FinderPage(m_model, *task, m_area->viewport());
    m_area->setAccessibleName(task->title);
    setPage(m_page);
}

void FinderView::showTask()
{
    const QString id = m_model.finderTaskID().value_or(QString());
    const QModelIndexList found = m_tasks.match(m_tasks.index(0, 0), EntryList::idRole, id, 1,
                                                Qt::MatchExactly | Qt::MatchCaseSensitive);
    m_list->setCurrentIndex(found.value(0)); // also of none: focus alone would choose the first
}

void FinderView::setPage(QWidget *page)
{
    m_area->takeWidget()->deleteLater(); // a button of it may be at work
    m_area->setWidget(page);
    // no button of it may lie beyond the border that people move
    m_area->setMinimumWidth(page->minimumSizeHint().width() +
                            m_area->verticalScrollBar()->sizeHint().width() +
                            2 * m_area->frameWidth());
    m_area->verticalScrollBar()->setValue(0);
    QWidget *before = m_area; // what is made later stands last in the window otherwise
    for (QPushButton *button : page->findChildren<QPushButton *>()) {
        setTabOrder(before, button);
        before = button;
    }
}

void FinderView::focusInEvent(QFocusEvent *event)
{
    m_list->setFocus(event->reason());
}
