#include "LastCheckedView.h"

#include "AppModel.h"
#include "EntryLook.h"
#include "QSDate.h"
#include "QSDirectory.h"
#include "VxButton.h"
#include "VxComboBox.h"
#include "VxContextMenu.h"
#include "VxFlow.h"
#include "VxIconLabel.h"
#include "VxText.h"

#include <QFileInfo>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSet>
#include <QTableView>
#include <QVBoxLayout>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {
/// A table that divides its width among the columns, whatever the interface's size.
class SharedTable final : public QTableView
{
public:
    using QTableView::QTableView;

protected:
    void resizeEvent(QResizeEvent *event) override
    {
        static constexpr std::array percent = {30, 23, 21, 26};
        for (std::size_t column = 0; column < percent.size(); ++column) {
            setColumnWidth(static_cast<int>(column),
                           viewport()->width() * percent.at(column) / 100);
        }
        QTableView::resizeEvent(event);
    }
};

/// The directory's entries, then its other links as LastCheckedRow has them.
QList<QSEntry> readLinks()
{
    const QSDirectory &directory = QSDirectory::shared();
    QList<QSEntry> found = directory.entries;
    QSet<QString> listed;
    for (const QSEntry &entry : directory.entries) {
        listed.insert(entry.url);
    }
    for (const QSDirectory::Link &link : directory.allLinks()) {
        if (!listed.contains(link.url)) {
            QSEntry page;
            page.title = link.label;
            page.url = link.url;
            found.append(page);
        }
    }
    return found;
}

const QList<QSEntry> &links()
{
    static const QList<QSEntry> once = readLinks();
    return once;
}

/// Why links failed their last check, by address.
QHash<QString, QString> readNotes()
{
    QHash<QString, QString> found;
    try {
        for (const QSLinkCheck &check :
             AppModel::store() ? AppModel::store()->linkChecks() : QList<QSLinkCheck>()) {
            found.insert(check.url, check.note);
        }
    } catch (const QSError &) { // the model, which reads them for the status, says so
    }
    return found;
}
} // namespace

LastCheckedView::LastCheckedView(AppModel &model, QWidget *parent)
    : QWidget(parent),
      m_model(model),
      m_summary(VxText::make({}, VxText::Role::body, this)),
      m_countIcon(new VxIconLabel(this)),
      m_count(VxText::make({}, VxText::Role::heading, this)),
      m_check(new QPushButton(u"Check all official links now"_s, this)),
      m_progress(new QWidget(this)),
      m_bar(new QProgressBar(m_progress)),
      m_done(VxText::make({}, VxText::Role::body, m_progress)),
      m_stop(VxButton::make(u"Stop"_s, u"xmark"_s, m_progress)),
      m_filter(new VxComboBox(this)),
      m_sort(new VxComboBox(this)),
      m_table(new SharedTable(this)),
      m_current(VxText::make({}, VxText::Role::note, this)),
      m_show(VxButton::make(u"Show"_s, u"building.columns.fill"_s, this)),
      m_page(VxButton::make(u"Official page"_s, u"safari.fill"_s, this)),
      m_main(VxButton::make({}, u"doc.text.fill"_s, this))
{
    createTable();
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(fontMetrics().height() / 2);
    column->addLayout(createSummary());
    column->addLayout(createCheck());
    column->addLayout(createChoices());
    column->addWidget(m_table, 1);
    column->addWidget(m_current);
    column->addLayout(createActions());
    connectTable();
    connectActions();
    connectModel();
    enableCheck();
    showChecking();
}

QLayout *LastCheckedView::createSummary()
{
    const int em = fontMetrics().height();
    auto *column = new QVBoxLayout;
    column->setSpacing(em / 2);
    auto *count = new QHBoxLayout;
    count->setSpacing(em / 2);
    count->addWidget(m_countIcon, 0, Qt::AlignTop);
    count->addWidget(m_count, 1);
    column->addWidget(m_summary);
    column->addLayout(count);
    return column;
}

QLayout *LastCheckedView::createCheck()
{
    m_check->setProperty("primary", true);
    m_bar->setTextVisible(false);
    m_bar->setAccessibleName(u"Links checked"_s);
    m_done->setWordWrap(false);
    m_stop->setAccessibleName(u"Stop checking the official links"_s);
    auto *progress = new QHBoxLayout(m_progress);
    progress->setContentsMargins({});
    progress->setSpacing(fontMetrics().height() / 2);
    progress->addWidget(m_bar, 1);
    progress->addWidget(m_done);
    progress->addWidget(m_stop);

    auto *row = new QHBoxLayout;
    row->setSpacing(fontMetrics().height());
    row->addWidget(m_check);
    row->addWidget(m_progress, 1);
    row->addStretch();
    return row;
}

QLayout *LastCheckedView::createChoices()
{
    m_filter->setAccessibleName(u"Show"_s);
    m_filter->addItems({u"All links"_s, u"Only what needs attention"_s});
    m_sort->setAccessibleName(u"Sort by"_s);
    m_sort->addItem(u"Directory order"_s);
    for (int column = 0; column < m_rows.columnCount(); ++column) {
        m_sort->addItem(m_rows.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
    }
    auto *row = new QHBoxLayout;
    row->setSpacing(fontMetrics().height() / 2);
    for (VxComboBox *choice : {m_filter, m_sort}) {
        auto *label = new QLabel(choice->accessibleName(), this);
        label->setBuddy(choice);
        row->addWidget(label);
        row->addWidget(choice);
    }
    row->addStretch();
    return row;
}

void LastCheckedView::createTable()
{
    const int em = fontMetrics().height();
    m_shown.setSourceModel(&m_rows);
    m_shown.setSortRole(LastCheckedModel::sortRole);
    m_shown.setSortCaseSensitivity(Qt::CaseInsensitive);
    m_shown.setFilterRole(LastCheckedModel::levelRole);
    m_table->setModel(&m_shown);
    m_table->setAccessibleName(u"Official links"_s);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setAlternatingRowColors(true);
    m_table->setShowGrid(false);
    m_table->setTabKeyNavigation(false);
    m_table->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_table->verticalHeader()->hide();
    m_table->setIconSize({em, em});
    m_table->verticalHeader()->setDefaultSectionSize(em * 15 / 4); // three lines
    m_table->setMinimumHeight(em * 10);                            // two rows
    QHeaderView *header = m_table->horizontalHeader();
    header->setHighlightSections(false);
    header->setSectionResizeMode(QHeaderView::Fixed);
    header->setSortIndicator(-1, Qt::AscendingOrder);
    m_table->setSortingEnabled(true);
    m_current->setMinimumHeight(em * 2); // the table keeps its height
    m_current->setAlignment(Qt::AlignTop);
}

QLayout *LastCheckedView::createActions()
{
    auto *flow = new VxFlow;
    flow->setSpacing(fontMetrics().height() / 2);
    for (QPushButton *button : {m_show, m_page, m_main}) {
        flow->addWidget(button);
    }
    return flow;
}

void LastCheckedView::connectActions()
{
    const auto act = [this](const QPushButton *button, auto action) {
        connect(button, &QPushButton::clicked, this, [this, action] {
            if (const QSEntry *entry = current()) {
                action(QSEntry(*entry));
            }
        });
    };
    act(m_show, [this](const QSEntry &entry) { m_model.showEntry(entry.id); });
    act(m_page, [this](const QSEntry &entry) { m_model.openOfficialPage(entry); });
    act(m_main, [this](const QSEntry &entry) { m_model.open(entry); });
    connect(m_table, &QTableView::activated, this,
            [this] { (m_show->isEnabled() ? m_show : m_page)->click(); });
    VxContextMenu::attach(m_table, [this](QMenu *menu) {
        VxContextMenu::addButtons(menu, {m_show, m_page, m_main});
    });
}

void LastCheckedView::connectTable()
{
    connect(m_table->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &LastCheckedView::showCurrent);
    connect(&m_shown, &QAbstractItemModel::dataChanged, this, &LastCheckedView::showCurrent);
    connect(m_filter, &QComboBox::currentIndexChanged, this, [this](int chosen) {
        static const QString anyButFine = u"[^0]"_s;
        m_shown.setFilterRegularExpression(chosen == 0 ? QString() : anyButFine);
        showCurrent();
    });
    connect(m_sort, &QComboBox::activated, this,
            [this](int chosen) { m_table->sortByColumn(chosen - 1, Qt::AscendingOrder); });
    connect(m_table->horizontalHeader(), &QHeaderView::sortIndicatorChanged, m_sort,
            [this](int column) { m_sort->setCurrentIndex(column + 1); });
}

void LastCheckedView::connectModel()
{
    connect(m_check, &QPushButton::clicked, &m_model, &AppModel::checkAllLinks);
    connect(m_stop, &QPushButton::clicked, &m_model, &AppModel::stopChecking);
    connect(&m_model, &AppModel::checkingChanged, this, &LastCheckedView::showChecking);
    connect(&m_model, &AppModel::revisionChanged, this, [this] {
        if (isVisible()) {
            reload();
        }
    });
}

void LastCheckedView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    reload();
}

void LastCheckedView::focusInEvent(QFocusEvent *event)
{
    m_table->setFocus(event->reason());
}

void LastCheckedView::reload()
{
    const QHash<QString, QString> notes = readNotes();
    QList<LastCheckedModel::Row> rows;
    for (const QSEntry &entry : links()) {
        const QSStatus::S status = m_model.linkStatus(entry);
        rows.append({.entry = entry,
                     .status = status,
                     .checked = m_model.lastChecked(entry),
                     .downloaded = downloaded(entry),
                     .note = status.level == 2 ? notes.value(entry.url) : QString()});
    }
    m_rows.setRows(rows);
    showCount();
    showCurrent();
}

std::optional<QDateTime> LastCheckedView::downloaded(const QSEntry &entry)
{
    if (entry.opensInBrowser() || !QFileInfo::exists(QSCache::fileURL(entry))) {
        return std::nullopt;
    }
    const QDateTime written = QFileInfo(QSCache::metaURL(entry.id)).lastModified();
    Known &known = m_copies[entry.id];
    if (known.written != written) {
        const std::optional<QSCacheMeta> meta = QSCache::meta(entry.id);
        known = {written, meta ? std::optional(meta->downloadedAt) : std::nullopt};
    }
    return known.downloaded;
}

void LastCheckedView::showCount()
{
    const bool loaded = QSDirectory::loadError().isEmpty();
    const int count = m_rows.attentionCount();
    m_summary->setText(u"Every official link in this version was opened and checked on %1."_s.arg(
        QSDate::longText(QSDirectory::shared().checked)));
    m_summary->setVisible(loaded);
    const bool fine = loaded && count == 0;
    m_countIcon->setSymbol(fine ? u"checkmark.seal.fill"_s : u"exclamationmark.triangle.fill"_s,
                           EntryLook::statusColour(fine ? 0 : 1));
    m_count->setText(!loaded     ? QSDirectory::loadError()
                     : count > 0 ? u"%1 item(s) need attention (marked below)."_s.arg(count)
                                 : u"No stale or broken links right now."_s);
}

void LastCheckedView::showChecking()
{
    const std::optional<AppModel::Progress> checking = m_model.checking();
    if (checking.has_value() == m_progress->isHidden()) {
        enableCheck();
    }
    if (checking) {
        m_bar->setRange(0, checking->total);
        m_bar->setValue(checking->done);
        m_done->setText(u"%1 of %2"_s.arg(checking->done).arg(checking->total));
    }
}

void LastCheckedView::enableCheck()
{
    const bool checking = m_model.checking().has_value();
    const bool possible = !links().isEmpty();
    m_check->setEnabled(possible); // both are there while the keyboard goes over
    m_progress->show();
    if ((checking ? m_check : m_stop)->hasFocus()) {
        (checking ? m_stop : m_check)->setFocus();
    }
    m_check->setEnabled(possible && !checking);
    m_progress->setVisible(checking);
}

void LastCheckedView::showCurrent()
{
    const QSEntry *entry = current();
    const QModelIndex row = m_table->currentIndex();
    m_current->setText(row.data(LastCheckedModel::wholeRole).toString());
    const QString action = entry ? EntryLook::mainAction(*entry) : u"Open"_s;
    m_main->setText(VxText::asCaption(action));
    const QString title = row.siblingAtColumn(0).data().toString();
    const auto offer = [&title](QPushButton *button, const QString &text, bool possible) {
        button->setAccessibleName(title.isEmpty() ? text : text + u", "_s + title);
        button->setEnabled(possible);
    };
    offer(m_show, m_show->text(), entry && !entry->id.isEmpty());
    offer(m_page, m_page->text(), entry);
    offer(m_main, action, entry);
}

const QSEntry *LastCheckedView::current() const
{
    return m_rows.entryAt(m_shown.mapToSource(m_table->currentIndex()).row());
}
