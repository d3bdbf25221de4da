#include "FormPrint.h"

#include "AsyncTask.h"
#include "QSError.h"
#include "QSFile.h"
#include "QSPDF.h"
#include "VxText.h"

#include <QPainter>
#include <QPrinter>
#include <QProgressDialog>

#include <algorithm>
#include <atomic>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr double sharpest = 600;         ///< dots per inch; more is not seen on paper
constexpr double dotsAtOnce = 8'000'000; ///< of a page, to keep its memory small
constexpr double sameSize = 1.01;        ///< a page hardly larger than its sheet is not shrunk

/// The pages (from 0) in the order in which they go through the printer.
QList<int> sheets(const QPrinter &printer, int count)
{
    const QPageRanges ranges = printer.pageRanges();
    QList<int> pages;
    for (int page = 0; page < count; ++page) {
        if (ranges.isEmpty() || ranges.contains(page + 1)) {
            pages.append(page);
        }
    }
    if (pages.isEmpty()) {
        throw QSError::invalid(u"The form has none of the pages to print."_s);
    }
    if (printer.pageOrder() == QPrinter::LastPageFirst) {
        std::ranges::reverse(pages);
    }
    const int copies = printer.supportsMultipleCopies() ? 1 : printer.copyCount();
    QList<int> all;
    for (int copy = 0; copy < copies; ++copy) {
        all += pages;
    }
    if (!printer.collateCopies()) {
        std::ranges::stable_sort(all, {}, [&pages](int page) { return pages.indexOf(page); });
    }
    return all;
}

/// Where a page stands on the printer's sheet, in points.
QRectF placeOf(const QSizeF &page, const QPrinter &printer)
{
    QPageLayout sheet = printer.pageLayout();
    sheet.setUnits(QPageLayout::Point);
    const QRectF paper = sheet.fullRect();
    double scale = 1;
    if (page.width() > paper.width() * sameSize || page.height() > paper.height() * sameSize) {
        const QRectF room = paper.marginsRemoved(sheet.minimumMargins());
        scale = qMin(room.width() / page.width(), room.height() / page.height());
    }
    QRectF place({}, page * scale);
    place.moveCenter(paper.center());
    return place;
}

void turnSheet(QPrinter &printer, const QSizeF &page)
{
    printer.setPageOrientation(page.width() > page.height() ? QPageLayout::Landscape
                                                            : QPageLayout::Portrait);
}

/// Draws a page at the printer's resolution, strip by strip.
void drawPage(QPainter &painter, const QSPDFDocument &document, int page, const QPrinter &printer)
{
    const QSizeF points = document.pageSize(page);
    const QRectF place = placeOf(points, printer);
    const double perPoint = printer.resolution() / 72.0;
    const double exact = printer.resolution() * place.width() / points.width();
    // of a finer printer a dot of ours covers a whole number of dots, so that no seam shows
    const double dotsPerInch = exact / std::ceil(exact / sharpest);
    const QSize dots = (points * (dotsPerInch / 72)).toSize();
    const double printerDots = exact / dotsPerInch;
    const QPointF corner((place.topLeft() * perPoint).toPoint());
    const int step = qMax(1, static_cast<int>(dotsAtOnce / dots.width()));
    for (int top = 0; top < dots.height(); top += step) {
        const QRect strip(0, top, dots.width(), qMin(step, dots.height() - top));
        const QImage drawing = document.render(page, dotsPerInch, strip).image;
        if (drawing.isNull()) {
            throw QSError::invalid(u"Page %1 could not be drawn."_s.arg(page + 1));
        }
        painter.drawImage(
            QRectF(corner + QPointF(0, top * printerDots), QSizeF(drawing.size()) * printerDots),
            drawing);
    }
}

void writeFile(const QSPDFDocument &document, const QPrinter &printer)
{
    QByteArray pdf = document.fields().isEmpty() ? document.bytes() : QSPDF::flatten(document);
    const QList<QPageRanges::Range> ranges = printer.pageRanges().toRangeList();
    if (ranges.size() > 1) {
        throw QSError::invalid(u"A PDF file takes one run of pages, for example 2-4."_s);
    }
    if (!ranges.isEmpty()) {
        pdf = QSPDF::pages(pdf, ranges.constFirst().from - 1, ranges.constFirst().to - 1);
    }
    try {
        QSFile::write(printer.outputFileName(), pdf);
    } catch (const QSError &error) {
        throw QSError::io(u"\"%1\" could not be written: %2"_s.arg(printer.outputFileName(),
                                                                   error.description()));
    }
}
void drawPages(const QSPDFDocument &document, QPrinter &printer,
               const FormPrint::Progress &progress)
{
    const QList<int> pages = sheets(printer, document.pageCount());
    printer.setFullPage(true);
    turnSheet(printer, document.pageSize(pages.constFirst()));
    QPainter painter;
    if (!painter.begin(&printer)) {
        throw QSError::invalid(u"The printer can't be drawn on."_s);
    }
    for (int sheet = 0; sheet < pages.size(); ++sheet) {
        turnSheet(printer, document.pageSize(pages.at(sheet)));
        if (sheet > 0 && !printer.newPage()) {
            throw QSError::invalid(u"The printer took no further page."_s);
        }
        drawPage(painter, document, pages.at(sheet), printer);
        if (progress && !progress(sheet + 1, static_cast<int>(pages.size()))) {
            printer.abort();
            return;
        }
    }
    if (!painter.end()) {
        throw QSError::invalid(u"The printer did not finish the form."_s);
    }
}
} // namespace

namespace FormPrint {
void print(const QSPDFDocument &document, QPrinter &printer, const Progress &progress)
{
    if (printer.outputFormat() == QPrinter::PdfFormat && !printer.outputFileName().isEmpty()) {
        writeFile(document, printer);
    } else {
        draw(document, printer, progress);
    }
}

void draw(const QSPDFDocument &document, QPrinter &printer, const Progress &progress)
{
    if (document.fields().isEmpty()) {
        drawPages(document, printer, progress);
    } else { // which has been read back, and is without what only the screen is to show
        drawPages(*QSPDFDocument::open(QSPDF::flatten(document)), printer, progress);
    }
}

bool inBackground(const std::function<void(const Progress &)> &work, const QString &title,
                  QWidget *window)
{
    static constexpr int soon = 300; // ms, after which a dialog does not only flash up
    QProgressDialog dialog({}, u"Stop"_s, 0, 0, window);
    dialog.setLabel(VxText::make(u"Printing \"%1\"\u2026"_s.arg(title), VxText::Role::body));
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.setMinimumDuration(soon);
    dialog.setAutoClose(false);
    std::atomic_bool stopped = false;
    QObject::connect(&dialog, &QProgressDialog::canceled, &dialog, [&stopped] { stopped = true; });
    const auto progress = [&](int done, int all) {
        QMetaObject::invokeMethod(
            &dialog,
            [&dialog, done, all] {
                dialog.setMaximum(all);
                dialog.setValue(done);
            },
            Qt::QueuedConnection);
        return !stopped;
    };
    dialog.setValue(0); // it counts from here
    AsyncTask::wait<bool>([&] {
        work(progress);
        return true;
    });
    return !stopped;
}
} // namespace FormPrint
