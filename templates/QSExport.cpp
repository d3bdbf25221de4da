#include "QSExport.h"

#include "OfficeConverter.h"
#include "QSBlockStyle.h"
#include "QSError.h"
#include "QSFlatODF.h"
#include "QSInfo.h"
#include "QSMutation.h"
#include "QSPageLayout.h"
#include "TextCanvas.h"

#include <QPageLayout>
#include <QPageRanges>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <stdexcept>

namespace {
constexpr int longestName = 120; ///< characters as a reader counts them
constexpr int longestNameBytes =
    240; ///< of the 255 that file systems take; the rest is for an extension

/// Scales points to the device and puts the page in the middle of its paper; a page larger than the
/// paper shrinks to fit.
void fitToPaper(QPainter &painter, const QPagedPaintDevice &device)
{
    const QPageLayout layout = device.pageLayout();
    const QSizeF paper = layout.fullRect(QPageLayout::Point).size();
    const QPointF origin = layout.paintRect(QPageLayout::Point).topLeft();
    constexpr QSizeF page = QSPageLayout::pageSize;
    const qreal fit = std::min({1.0, paper.width() / page.width(), paper.height() / page.height()});

    painter.scale(device.logicalDpiX() / 72.0, device.logicalDpiY() / 72.0);
    painter.translate(-origin);
    painter.translate((paper.width() - fit * page.width()) / 2,
                      (paper.height() - fit * page.height()) / 2);
    painter.scale(fit, fit);
}

int pagesOf(const QSPageLayout &layout)
{
    return QSMutation::on(u"export-first-page-only") ? 1 : layout.pageCount();
}

/// The pages (from 0) that the device was asked to print.
QList<int> wantedPages(const QPagedPaintDevice &device, int count)
{
    const QPageRanges ranges = device.pageRanges();
    QList<int> pages;
    for (int page = 0; page < count; ++page) {
        if (ranges.isEmpty() || ranges.contains(page + 1)) {
            pages.append(page);
        }
    }
    return pages;
}
} // namespace

const QSExport::FormatInfo &QSExport::info(Format format)
{
    return formats[static_cast<std::size_t>(format)];
}

QByteArray QSExport::pdf(const QSRendered &rendered)
{
    QSPageLayout layout;
    layout.update(rendered);
    PagesCanvas canvas;
    canvas.setTitle(lineFlow(rendered.title), QSInfo::appName);
    for (int page = 0; page < pagesOf(layout); ++page) {
        canvas.beginPage(QSPageLayout::pageSize);
        layout.drawPage(canvas, page);
    }
    try {
        return canvas.finish();
    } catch (const std::runtime_error &error) {
        throw QSError::invalid(QString::fromUtf8(error.what()));
    }
}

QByteArray QSExport::docx(const QSRendered &rendered, const std::stop_token &stop)
{
    return OfficeConverter::convert(QSFlatODF::write(rendered),
                                    QStringLiteral("docx:MS Word 2007 XML"), stop);
}

QByteArray QSExport::rtf(const QSRendered &rendered, const std::stop_token &stop)
{
    return OfficeConverter::convert(QSFlatODF::write(rendered), QStringLiteral("rtf"), stop);
}

QByteArray QSExport::data(const QSRendered &rendered, Format format, const std::stop_token &stop)
{
    switch (format) {
    case Format::pdf:
        return pdf(rendered);
    case Format::docx:
        return docx(rendered, stop);
    case Format::rtf:
        return rtf(rendered, stop);
    }
    Q_UNREACHABLE();
}

void QSExport::print(const QSRendered &rendered, QPagedPaintDevice &device)
{
    QSPageLayout layout;
    layout.update(rendered);
    const QList<int> pages = wantedPages(device, pagesOf(layout));
    if (pages.isEmpty()) {
        throw QSError::invalid(QStringLiteral("The document has none of the pages to print."));
    }
    QPainter painter;
    if (!painter.begin(&device)) {
        throw QSError::invalid(QStringLiteral("The printer can't be drawn on."));
    }
    fitToPaper(painter, device);
    for (const int page : pages) {
        if (page != pages.first() && !device.newPage()) {
            throw QSError::invalid(QStringLiteral("The printer took no further page."));
        }
        layout.drawPage(painter, page);
    }
    if (!painter.end()) {
        throw QSError::invalid(QStringLiteral("The printer did not finish the document."));
    }
}

QString QSExport::safeFileName(const QString &text)
{
    static constexpr QStringView refused = u"/:\\?%*|\"<>";
    QString name = lineFlow(text);
    for (QChar &c : name) {
        if (refused.contains(c) && !QSMutation::on(u"file-name-keeps-slashes")) {
            c = u'-';
        } else if (c == u'\t') {
            c = u' ';
        }
    }
    // A name with a leading dot would be a hidden file that its writer never finds again.
    const auto isPadding = [](QChar c) { return c.isSpace() || c == u'.'; };
    name.erase(name.begin(), std::ranges::find_if_not(name, isPadding));

    QTextBoundaryFinder ends(QTextBoundaryFinder::Grapheme, name);
    qsizetype length = 0;
    for (int i = 0; i < longestName && ends.toNextBoundary() >= 0; ++i) {
        if (QStringView(name).first(ends.position()).toUtf8().size() > longestNameBytes) {
            break;
        }
        length = ends.position();
    }
    name = name.first(length).trimmed();
    return name.isEmpty() ? QStringLiteral("Document") : name;
}
