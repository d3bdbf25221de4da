#include "PaperPreview.h"

#include "QSThemes.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
/// The first block that differs; -1 when none does.
int firstDifference(const QList<QSBlock> &before, const QList<QSBlock> &after)
{
    const auto [old, changed] = std::ranges::mismatch(before, after);
    return changed == after.end() ? -1 : static_cast<int>(changed - after.begin());
}
} // namespace

PaperPreview::PaperPreview(QWidget *parent) : QAbstractScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setAccessibleName(u"Preview of the printed document"_s);
    setMinimumWidth(fontMetrics().height() * 12);
}

void PaperPreview::open(const QSRendered &rendered)
{
    m_rendered = rendered;
    m_layout.update(rendered);
    fitScrollBar();
    verticalScrollBar()->setValue(0);
    viewport()->update();
}

void PaperPreview::follow(const QSRendered &rendered)
{
    const int changed = firstDifference(m_rendered.blocks, rendered.blocks);
    const int pagesBefore = m_layout.pageCount();
    m_rendered = rendered;
    m_layout.update(rendered);
    if (m_layout.pageCount() != pagesBefore) {
        fitScrollBar();
    }
    if (changed >= 0) {
        reveal(changed);
    }
    viewport()->update();
}

qreal PaperPreview::scale() const
{
    static constexpr qreal largest = 2;
    const qreal room = viewport()->width() - 2 * gap();
    return std::clamp(room / QSPageLayout::pageSize.width(), 0.1, largest * logicalDpiX() / 72.0);
}

int PaperPreview::gap() const
{
    return fontMetrics().height();
}

QRectF PaperPreview::sheet(int page) const
{
    const QSizeF size = QSPageLayout::pageSize * scale();
    const qreal left = (viewport()->width() - size.width()) / 2;
    const qreal top = gap() + page * (size.height() + gap()) - verticalScrollBar()->value();
    return {QPointF(left, top), size};
}

void PaperPreview::fitScrollBar()
{
    const qreal all =
        gap() + m_layout.pageCount() * (QSPageLayout::pageSize.height() * scale() + gap());
    QScrollBar *bar = verticalScrollBar();
    bar->setPageStep(viewport()->height());
    bar->setSingleStep(fontMetrics().height() * 3);
    bar->setRange(0, qMax(0, qCeil(all) - viewport()->height()));
}

void PaperPreview::reveal(int block)
{
    const QSPageLayout::Place place = m_layout.placeOfBlock(block);
    const qreal sheetTop = sheet(place.page).top();
    const qreal top = sheetTop + place.top * scale();
    const qreal bottom = sheetTop + place.bottom * scale();
    const qreal room = viewport()->height();
    // of a block too long for the room its end shows, where people type
    if (bottom > room) {
        verticalScrollBar()->setValue(qRound(verticalScrollBar()->value() + bottom - room * 2 / 3));
    } else if (top < 0 && bottom < room / 3) {
        verticalScrollBar()->setValue(qRound(verticalScrollBar()->value() + top - room / 3));
    }
}

void PaperPreview::focusInEvent(QFocusEvent *event)
{
    setAccessibleDescription(m_rendered.plainText()); // the paper, to those who hear it
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void PaperPreview::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    fitScrollBar();
}

void PaperPreview::paintEvent(QPaintEvent *event)
{
    QPainter painter(viewport());
    painter.fillRect(event->rect(), palette().window());
    for (int page = 0; page < m_layout.pageCount(); ++page) {
        if (sheet(page).adjusted(-gap(), -gap(), gap(), gap()).intersects(event->rect())) {
            paintSheet(painter, page);
        }
    }
    if (hasFocus()) {
        painter.setPen(QPen(palette().link(), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(viewport()->rect().adjusted(1, 1, -1, -1));
    }
}

void PaperPreview::paintSheet(QPainter &painter, int page) const
{
    const QRectF paper = sheet(page);
    painter.setPen(Qt::NoPen);
    const int depth = gap() / 3;
    for (int ring = depth; ring > 0; --ring) { // a soft shadow, darker toward the sheet
        painter.setBrush(QColor(0, 0, 0, 90 / depth));
        painter.drawRoundedRect(paper.adjusted(-ring, -ring / 2.0, ring, ring * 1.5), ring, ring);
    }
    painter.fillRect(paper, QSColors::paper);
    painter.save();
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.translate(paper.topLeft());
    painter.scale(scale(), scale());
    m_layout.drawPage(painter, page);
    painter.restore();
}
