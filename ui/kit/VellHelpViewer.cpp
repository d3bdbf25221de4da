#include "VellHelpViewer.h"

#include "VxMemory.h"
#include "VxSearch.h"
#include "VxText.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSplitter>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Gives a title that does not fit into one line as many as it needs.
class WrappingTitles final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option,
                                 const QModelIndex &index) const override
    {
        // the style measures by this width, and forgets the blank at both sides of an item
        QStyleOptionViewItem narrow = option;
        const auto *view = qobject_cast<const QListView *>(option.widget);
        narrow.rect.setWidth(view->viewport()->width() - option.fontMetrics.height() * 3 / 2);
        return {0, QStyledItemDelegate::sizeHint(narrow, index).height()};
    }
};

VellHelpBlock block(const QString &line)
{
    using enum VellHelpBlock::Kind;
    if (line.startsWith(u"## "_s)) {
        return {heading, line.sliced(3)};
    }
    if (line.startsWith(u"\u2022 "_s)) {
        return {bullet, line.sliced(2)};
    }
    return {paragraph, line};
}
} // namespace

VellHelpViewer::VellHelpViewer(const QString &initialTopic, QWidget *parent)
    : QWidget(parent),
      m_search(new QLineEdit(this)),
      m_nothing(VxText::make({}, VxText::Role::body, this)),
      m_list(new QListWidget(this)),
      m_page(new VellHelpPage(this))
{
    const int em = fontMetrics().height();
    auto *split = new QSplitter(Qt::Horizontal, this);
    split->addWidget(createTopics());
    split->addWidget(m_page);
    split->setChildrenCollapsible(false);
    split->setStretchFactor(1, 1);
    split->setSizes({em * 17, em * 34});
    VxMemory::keepSplitter(split, u"vell.help.splitter"_s);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(em / 2, em / 2, em / 2, em / 2);
    column->addWidget(split);
    connectViews();
    openTopic(initialTopic);
}

QWidget *VellHelpViewer::createTopics()
{
    const int em = fontMetrics().height();
    m_search->setPlaceholderText(u"Search the help"_s);
    m_search->setAccessibleName(u"Search the help"_s);
    VxSearch::dress(m_search);
    m_list->setAccessibleName(u"Help topics"_s);
    m_list->setWordWrap(true);
    m_list->setItemDelegate(new WrappingTitles(m_list));
    m_list->setResizeMode(QListView::Adjust);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    auto *topics = new QWidget(this);
    topics->setMinimumWidth(em * 12);
    auto *column = new QVBoxLayout(topics);
    column->setContentsMargins({});
    column->setSpacing(em / 2);
    column->addWidget(m_search);
    column->addWidget(m_nothing);
    column->addWidget(m_list, 1);
    column->setAlignment(m_nothing, Qt::AlignTop);
    return topics;
}

void VellHelpViewer::connectViews()
{
    connect(m_search, &QLineEdit::textChanged, this, &VellHelpViewer::filter);
    connect(m_search, &QLineEdit::returnPressed, this, &VellHelpViewer::enterList);
    auto *down = new QShortcut(QKeySequence(Qt::Key_Down), m_search);
    down->setContext(Qt::WidgetShortcut);
    connect(down, &QShortcut::activated, this, &VellHelpViewer::enterList);
    connect(m_list, &QListWidget::currentRowChanged, this, &VellHelpViewer::showCurrent);
    connect(m_list, &QListWidget::itemActivated, this, &VellHelpViewer::startReading);
}

QList<VellHelpBlock> VellHelpViewer::blocks(const QString &body)
{
    QList<VellHelpBlock> found;
    for (const QString &line : body.split(u'\n')) {
        found.append(block(line));
    }
    return found;
}

void VellHelpViewer::openTopic(const QString &id)
{
    const QSignalBlocker quiet(m_search);
    m_search->clear();
    list(id);
}

bool VellHelpViewer::clearSearch()
{
    const bool searching = !m_search->text().isEmpty();
    m_search->clear();
    return searching;
}

void VellHelpViewer::startSearch()
{
    m_search->setFocus(Qt::ShortcutFocusReason);
    m_search->selectAll();
}

void VellHelpViewer::startReading()
{
    m_page->setFocus(Qt::OtherFocusReason);
}

void VellHelpViewer::filter()
{
    list(VellHelp::words(m_search->text()).isEmpty() ? m_current : QString());
}

void VellHelpViewer::list(const QString &id)
{
    m_topics = VellHelp::search(m_search->text());
    {
        const QSignalBlocker quiet(m_list);
        m_list->clear();
        for (const VellHelpTopic &topic : m_topics) {
            m_list->addItem(topic.title);
        }
        const auto wanted = std::ranges::find(m_topics, id, &VellHelpTopic::id);
        m_list->setCurrentRow(
            wanted == m_topics.end() ? 0 : static_cast<int>(wanted - m_topics.begin()));
    }
    m_page->setMarked(VellHelp::words(m_search->text()));
    tellFound();
    showCurrent();
}

void VellHelpViewer::tellFound()
{
    const QString query = m_search->text().simplified();
    const qsizetype count = m_topics.size();
    QString found;
    if (count == 0) {
        found =
            u"No help topic has \"%1\". Try a single word, or another word for it."_s.arg(query);
    } else if (!query.isEmpty()) {
        found = count == 1 ? u"1 topic found"_s : u"%1 topics found"_s.arg(count);
    }
    m_search->setAccessibleDescription(found);
    m_nothing->setText(found);
    m_nothing->setVisible(count == 0);
    m_list->setVisible(count > 0);
}

void VellHelpViewer::showCurrent()
{
    const int row = m_list->currentRow();
    if (row >= 0 && m_current != m_topics.at(row).id) {
        const VellHelpTopic &topic = m_topics.at(row);
        m_current = topic.id;
        m_page->setTopic(topic.title, blocks(topic.body));
    }
}

void VellHelpViewer::enterList()
{
    if (m_list->currentRow() >= 0) {
        m_list->setFocus(Qt::TabFocusReason);
    }
}
