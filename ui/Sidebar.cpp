#include "Sidebar.h"

#include "QSInfo.h"
#include "VxIcon.h"
#include "VxText.h"

#include <QLabel>
#include <QListWidget>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {
Screen screenAt(int row)
{
    return Screens::all.at(static_cast<std::size_t>(row)).screen;
}
} // namespace

Sidebar::Sidebar(QWidget *parent) : QFrame(parent), m_list(new QListWidget(this))
{
    setObjectName(u"rail"_s);
    const int em = fontMetrics().height();
    m_list->setObjectName(u"screens"_s);
    m_list->ensurePolished(); // so that rows are measured with the style sheet's padding
    m_list->setAccessibleName(u"Screens"_s);
    m_list->setIconSize({em, em});
    m_list->setSpacing(em / 8);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    for (const Screens::Info &info : Screens::all) {
        m_list->addItem(
            new QListWidgetItem(VxIcon::named(info.symbol.toString()), info.title.toString()));
    }
    connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0) {
            Q_EMIT chosen(screenAt(row));
        }
    });

    // the current row as well: it leads back from the editor and from search results
    const auto choose = [this](const QListWidgetItem *item) {
        if (item == m_list->currentItem()) {
            Q_EMIT chosen(screenAt(m_list->row(item)));
        }
    };
    connect(m_list, &QListWidget::itemClicked, this, choose);
    connect(m_list, &QListWidget::itemActivated, this, choose);

    QLabel *product = VxText::make(QSInfo::appName, VxText::Role::heading, this);
    product->setContentsMargins(em / 2, em / 2, 0, em / 2);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(em / 2, em / 2, em / 2, em / 2);
    column->addWidget(product);
    column->addWidget(m_list);
    setFixedWidth(em * 13);
}

Screen Sidebar::current() const
{
    return screenAt(m_list->currentRow());
}

void Sidebar::setCurrent(Screen screen)
{
    const QSignalBlocker quiet(m_list);
    m_list->setCurrentRow(static_cast<int>(screen)); // in the order of the rows
}
