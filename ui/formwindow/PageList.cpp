#include "PageList.h"

#include "QSPDFDocument.h"

#include <QPainter>
#include <QSignalBlocker>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

PageList::PageList(PageRenderer &renderer, QWidget *parent)
    : QListWidget(parent), m_renderer(renderer)
{
    setAccessibleName(u"Pages"_s);
    setViewMode(QListView::IconMode);
    setFlow(QListView::TopToBottom);
    setWrapping(false);
    setMovement(QListView::Static);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    const int em = fontMetrics().height();
    setIconSize({em * 5, em * 6});
    setMinimumWidth(em * 8);
    connect(this, &QListWidget::iconSizeChanged, this, [this] {
        for (int page = 0; page < count(); ++page) {
            outdate(page);
        }
        m_renderer.wake();
    });
    connect(this, &QListWidget::currentRowChanged, this, [this](int page) {
        markCurrent();
        if (page >= 0) {
            Q_EMIT pageChosen(page);
        }
    });
    connect(this, &QListWidget::itemClicked, this,
            [this](const QListWidgetItem *item) { Q_EMIT pageChosen(row(item)); });
    connect(this, &QListWidget::itemActivated, this,
            [this](const QListWidgetItem *item) { Q_EMIT pageChosen(row(item)); });
}

void PageList::open(const std::shared_ptr<QSPDFDocument> &document)
{
    const QSignalBlocker quiet(this);
    clear();
    m_lacking.clear();
    m_document = document;
    for (int page = 0; document && page < document->pageCount(); ++page) {
        QPixmap blank(iconSize());
        blank.fill(Qt::transparent);
        addItem(new QListWidgetItem(QIcon(blank), u"Page "_s + document->pageLabel(page)));
        item(page)->setTextAlignment(Qt::AlignHCenter);
        m_lacking.insert(page);
    }
}

void PageList::setCurrentPage(int page)
{
    const QSignalBlocker quiet(this);
    setCurrentRow(page);
    markCurrent();
}

void PageList::markCurrent()
{
    for (int page = 0; page < count(); ++page) { // for those who don't see the colour
        QFont font = this->font();
        font.setBold(page == currentRow());
        item(page)->setFont(font);
    }
}

void PageList::outdate(int page)
{
    m_lacking.insert(page);
}

double PageList::dotsPerInch(int page) const
{
    const QSizeF points = m_document->pageSize(page);
    const double scale =
        qMin(iconSize().width() / points.width(), iconSize().height() / points.height());
    return scale * 72 * devicePixelRatioF();
}

std::optional<PageRenderer::Job> PageList::nextJob()
{
    if (!isVisible()) {
        return std::nullopt;
    }
    const auto found = std::ranges::find_if(m_lacking, [this](int page) {
        return visualItemRect(item(page)).intersects(viewport()->rect());
    });
    if (found == m_lacking.end()) {
        return std::nullopt;
    }
    const int page = *found;
    m_lacking.remove(page);
    return PageRenderer::Job{page, dotsPerInch(page), {}};
}

void PageList::take(const PageRenderer::Job &job, const QImage &drawing)
{
    QListWidgetItem *entry = item(job.page);
    if (!entry) {
        return;
    }
    QImage sheet = drawing.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&sheet);
    painter.setPen(Qt::gray);
    painter.drawRect(sheet.rect().adjusted(0, 0, -1, -1));
    painter.end();
    sheet.setDevicePixelRatio(devicePixelRatioF());
    QIcon icon;
    for (const QIcon::Mode mode : {QIcon::Normal, QIcon::Selected}) { // not tinted when selected
        icon.addPixmap(QPixmap::fromImage(sheet), mode);
    }
    entry->setIcon(icon);
}

void PageList::lose(const PageRenderer::Job &job, bool hopeless)
{
    if (!hopeless) {
        m_lacking.insert(job.page);
    }
}

void PageList::resizeEvent(QResizeEvent *event)
{
    QListWidget::resizeEvent(event);
    m_renderer.wake();
}

void PageList::scrollContentsBy(int dx, int dy)
{
    QListWidget::scrollContentsBy(dx, dy);
    m_renderer.wake();
}

void PageList::showEvent(QShowEvent *event)
{
    QListWidget::showEvent(event);
    m_renderer.wake();
}
