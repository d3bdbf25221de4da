#include "FormsView.h"

#include "AppModel.h"
#include "EntryDetail.h"
#include "EntryList.h"
#include "QSDirectory.h"
#include "VxComboBox.h"
#include "VxContextMenu.h"
#include "VxSplit.h"
#include "VxText.h"

#include <QFocusEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString federal = u"US"_s;

/// The categories that a state's forms and the federal ones have, in the order of the list.
QList<QSCategory> categoriesWithFederal(const QString &state)
{
    const QSDirectory &directory = QSDirectory::shared();
    return directory.categoriesFor(state) + directory.categoriesFor(federal);
}
} // namespace

FormsView::FormsView(AppModel &model, QWidget *parent)
    : QWidget(parent),
      m_model(model),
      m_category(new VxComboBox(this)),
      m_list(new EntryList(this)),
      m_empty(VxText::make({}, VxText::Role::note, this)),
      m_detail(new EntryDetail(model, this))
{
    createList();
    auto *left = new QWidget(this);
    auto *column = new QVBoxLayout(left);
    column->setContentsMargins({});
    column->addLayout(createChoice());
    column->addWidget(m_empty, 1);
    column->addWidget(m_list, 1);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(VxSplit::make(left, m_detail, u"qs.forms.splitter"_s, this));
    connectList();
}

QLayout *FormsView::createChoice()
{
    m_category->setAccessibleName(u"Category"_s);
    m_category->setToolTip(u"Show the forms of one category or of all"_s);
    m_category->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_category->setIconSize({0, 0}); // there are none, and no room is kept for them
    auto *label = new QLabel(m_category->accessibleName(), this);
    label->setBuddy(m_category);
    auto *row = new QHBoxLayout;
    row->setSpacing(fontMetrics().height() / 2);
    row->addWidget(label);
    row->addWidget(m_category, 1);
    return row;
}

void FormsView::createList()
{
    m_empty->setAlignment(Qt::AlignTop);
    m_list->setAccessibleName(u"Official forms"_s);
    m_list->setModel(&m_forms);
}

void FormsView::connectList()
{
    connect(m_category, &QComboBox::activated, this, [this] {
        const QVariant chosen = m_category->currentData();
        m_model.setFormCategory(chosen.isValid()
                                    ? std::optional(static_cast<QSCategory>(chosen.toInt()))
                                    : std::nullopt);
    });
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex &current) {
                if (const QSEntry *entry = m_forms.entryAt(current.row())) {
                    m_model.selectEntry(entry->id);
                }
            });
    connect(m_list, &QListView::activated, m_detail, &EntryDetail::act);
    VxContextMenu::attach(m_list, [this](QMenu *menu) { m_detail->fillMenu(menu); });
    const auto reloadIfShown = [this] {
        if (isVisible()) {
            reload();
        }
    };
    connect(&m_model, &AppModel::selectionChanged, this, reloadIfShown);
    connect(&m_model, &AppModel::revisionChanged, this, reloadIfShown);
}

void FormsView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    reload();
}

void FormsView::focusInEvent(QFocusEvent *event)
{
    m_list->setFocus(event->reason());
}

void FormsView::reload()
{
    reloadCategories();
    m_forms.setRows(rows());
    const QSDirectory &directory = QSDirectory::shared();
    const QSJurisdiction *state = directory.jurisdiction(m_model.state());
    m_empty->setText(directory.entries.isEmpty()
                         ? QSDirectory::loadError()
                         : u"The directory lists no form in this category for %1."_s.arg(
                               state ? state->name : m_model.state()));
    m_empty->setVisible(m_forms.rowCount() == 0);
    m_list->setVisible(m_forms.rowCount() > 0);
    showSelection();
}

void FormsView::reloadCategories()
{
    const std::optional<QSCategory> chosen = m_model.formCategory();
    QList<QSCategory> offered = categoriesWithFederal(m_model.state());
    if (chosen && !offered.contains(*chosen)) { // chosen with another state
        offered.append(*chosen);
    }
    if (m_offered != offered) {
        m_offered = offered;
        m_category->clear();
        m_category->addItem(u"All categories"_s);
        for (QSCategory category : offered) {
            m_category->addItem(QSCategories::info(category).title.toString(),
                                static_cast<int>(category));
        }
    }
    m_category->setCurrentIndex(chosen ? m_category->findData(static_cast<int>(*chosen)) : 0);
}

QList<FormsModel::Row> FormsView::rows()
{
    QList<FormsModel::Row> found;
    for (const QString &place : {m_model.state(), federal}) {
        for (QSCategory category : QSDirectory::shared().categoriesFor(place)) {
            if (m_model.formCategory().value_or(category) != category) {
                continue;
            }
            found.append({.heading = QSCategories::info(category).title.toString(),
                          .entry = {},
                          .status = {}});
            for (const QSEntry &entry : QSDirectory::shared().entriesFor(place, category)) {
                found.append({.heading = {}, .entry = entry, .status = m_model.linkStatus(entry)});
            }
        }
    }
    return found;
}

void FormsView::showSelection()
{
    const int row = m_forms.rowOf(m_model.selectedEntryID());
    m_list->setCurrentIndex(m_forms.index(row));
    m_detail->display(m_forms.entryAt(row));
}
