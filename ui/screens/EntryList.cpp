#include "EntryList.h"

#include "VellThemeRoot.h"

#include <QIcon>
#include <QPainter>
#include <QResizeEvent>
#include <QStyledItemDelegate>

namespace {
/// One text of a row with its place.
struct Part
{
    QString text;
    QRect rect;
    QFont font;
    QIcon icon;
    bool dim = false;
};

QFont bold(QFont font)
{
    font.setWeight(QFont::DemiBold);
    return font;
}

bool isHeading(const QModelIndex &index)
{
    return !index.data(EntryList::idRole).isValid();
}

/// The parts of a row from a point on down.
QList<Part> parts(const QModelIndex &index, const QFont &font, QRect row)
{
    const QFontMetrics metrics(font);
    const int em = metrics.height();
    row.adjust(em / 2, isHeading(index) ? em * 3 / 4 : em / 2, -em / 2, 0);
    QList<Part> found;
    const auto add = [&](const QString &text, const QFont &face, const QIcon &icon, bool dim) {
        const QRect room = row.adjusted(isHeading(index) ? 0 : em * 3 / 2, 0, 0, 0);
        const int height = QFontMetrics(face).boundingRect(room, Qt::TextWordWrap, text).height();
        found.append({text, QRect(room.topLeft(), QSize(room.width(), height)), face, icon, dim});
        row.setTop(row.top() + height + em / 8);
    };
    const QString title = index.data().toString();
    if (isHeading(index)) {
        add(title, bold(font), {}, false);
        return found;
    }
    add(title, bold(font), index.data(Qt::DecorationRole).value<QIcon>(), false);
    add(index.data(EntryList::aboutRole).toString(), font, {}, true);
    const bool fine = index.data(EntryList::levelRole).toInt() == 0;
    const QString status = index.data(EntryList::statusRole).toString();
    if (status.isEmpty()) {
        return found;
    }
    const int room = found.constLast().rect.width();
    add(fine ? metrics.elidedText(status, Qt::ElideRight, room) : status, font,
        index.data(EntryList::statusIconRole).value<QIcon>(), fine);
    return found;
}

/// The icon in one colour: its own would not be seen on the colour of a selection.
QPixmap inColour(const QIcon &icon, const QSize &size, qreal ratio, const QColor &colour)
{
    QPixmap picture = icon.pixmap(size, ratio);
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(QRect({0, 0}, size), colour);
    return picture;
}

class EntryDelegate final : public QStyledItemDelegate
{
public:
    explicit EntryDelegate(EntryList *list) : QStyledItemDelegate(list), m_list(list) {}

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option,
                                 const QModelIndex &index) const override;

private:
    EntryList *m_list;
};

void EntryDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                          const QModelIndex &index) const
{
    QStyleOptionViewItem background = option;
    initStyleOption(&background, index);
    background.text.clear();
    background.icon = {};
    background.features &= ~QStyleOptionViewItem::HasDecoration;
    option.widget->style()->drawControl(QStyle::CE_ItemViewItem, &background, painter,
                                        option.widget);

    const bool selected = option.state.testFlag(QStyle::State_Selected);
    const QColor lit = option.palette.color(QPalette::HighlightedText);
    const VellTheme &theme = VellThemeRoot::theme();
    const int em = option.fontMetrics.height();
    painter->save();
    for (const Part &part : parts(index, option.font, option.rect)) {
        const QPoint corner(part.rect.left() - em * 3 / 2, part.rect.top());
        if (!part.icon.isNull() && selected) {
            painter->drawPixmap(
                corner, inColour(part.icon, {em, em}, option.widget->devicePixelRatioF(), lit));
        } else {
            part.icon.paint(painter, QRect(corner, QSize(em, em)));
        }
        painter->setPen(selected ? lit : (part.dim ? theme.dim : theme.text).color());
        painter->setFont(part.font);
        painter->drawText(part.rect, Qt::TextWordWrap, part.text);
    }
    painter->restore();
}

QSize EntryDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QRect row(0, 0, m_list->viewport()->width(), 0);
    const QRect last = parts(index, option.font, row).constLast().rect;
    const int below = option.fontMetrics.height() / (isHeading(index) ? 4 : 2);
    return {0, last.bottom() + 1 + below};
}
} // namespace

EntryList::EntryList(QWidget *parent) : QListView(parent)
{
    setItemDelegate(new EntryDelegate(this));
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMinimumWidth(fontMetrics().height() * 11);
}

void EntryList::resizeEvent(QResizeEvent *event)
{
    QListView::resizeEvent(event);
    if (event->size().width() != event->oldSize().width()) {
        scheduleDelayedItemsLayout();
    }
    scrollTo(currentIndex()); // what was scrolled to while the list had another size
}

QModelIndex EntryList::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    if (action != MoveHome) {
        return QListView::moveCursor(action, modifiers);
    }
    scrollToTop();
    QModelIndex first = model()->index(0, 0);
    while (first.isValid() && !first.flags().testFlag(Qt::ItemIsEnabled)) {
        first = first.siblingAtRow(first.row() + 1);
    }
    return first;
}
