#include "VxFlow.h"

VxFlow::VxFlow(QWidget *parent) : QLayout(parent)
{
    setContentsMargins({});
}

void VxFlow::addItem(QLayoutItem *item)
{
    m_items.emplace_back(item);
}

int VxFlow::count() const
{
    return static_cast<int>(m_items.size());
}

QLayoutItem *VxFlow::itemAt(int index) const
{
    return index >= 0 && index < count() ? m_items.at(static_cast<std::size_t>(index)).get()
                                         : nullptr;
}

QLayoutItem *VxFlow::takeAt(int index)
{
    if (index < 0 || index >= count()) {
        return nullptr;
    }
    QLayoutItem *taken = m_items.at(static_cast<std::size_t>(index)).release();
    m_items.erase(m_items.begin() + index);
    return taken;
}

int VxFlow::heightForWidth(int width) const
{
    return layOut(QRect(0, 0, width, 0), Pass::measure);
}

QSize VxFlow::sizeHint() const
{
    QSize row;
    for (const auto &item : m_items) {
        if (!item->isEmpty()) {
            const QSize hint = item->sizeHint();
            const int before = row.width() > 0 ? row.width() + spacing() : 0;
            row = QSize(before + hint.width(), qMax(row.height(), hint.height()));
        }
    }
    return row;
}

QSize VxFlow::minimumSize() const
{
    QSize largest;
    for (const auto &item : m_items) {
        if (!item->isEmpty()) {
            largest = largest.expandedTo(item->minimumSize());
        }
    }
    return largest;
}

void VxFlow::setGeometry(const QRect &rect)
{
    QLayout::setGeometry(rect);
    layOut(rect, Pass::place);
}

int VxFlow::layOut(const QRect &rect, Pass pass) const
{
    QPoint corner = rect.topLeft();
    int rowHeight = 0;
    for (const auto &item : m_items) {
        if (item->isEmpty()) {
            continue;
        }
        const QSize size = item->sizeHint().boundedTo({rect.width(), item->sizeHint().height()});
        if (corner.x() > rect.left() && corner.x() + size.width() > rect.left() + rect.width()) {
            corner = QPoint(rect.left(), corner.y() + rowHeight + spacing());
            rowHeight = 0;
        }
        if (pass == Pass::place) {
            item->setGeometry(QRect(corner, size));
        }
        corner.rx() += size.width() + spacing();
        rowHeight = qMax(rowHeight, size.height());
    }
    return corner.y() + rowHeight - rect.top();
}
