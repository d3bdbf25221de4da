#pragma once

#include "QSRendered.h"

#include <QRectF>
#include <QSizeF>

#include <memory>

class PagesCanvas;
class QPainter;

/// A rendered document set in lines and pages: the one layout that the preview, the printer and
/// the PDF all draw, so that what is shown is what is printed.
///
/// All lengths are points (1/72 inch), with y downward from the page's top left corner. Lines break
/// by the font's design metrics, never by the screen's hinting, so the breaks are the same at every
/// zoom and on every device. A layout belongs to the thread that made it.
///
/// A line is 1.08 times as high as its font asks, with the extra height above it. Spaces above and
/// below blocks add up, but a page never begins with one. A block may split between any two lines;
/// headings and signature lines, also several in a row, stay whole and on one page with the first
/// line of what follows, unless that is taller than a page.
///
/// update() sets only the blocks that changed since the last call: a keystroke costs one block's
/// line breaking, however long the document is.
class QSPageLayout final
{
public:
    static constexpr QSizeF pageSize{612, 792}; ///< US Letter
    static constexpr qreal margin = 72;         ///< on all four sides

    /// The lines of a block on the page where it begins.
    struct Place
    {
        int page = 0;     ///< from 0
        qreal top = 0;    ///< of its first line
        qreal bottom = 0; ///< of its last line there
    };

    QSPageLayout();
    ~QSPageLayout();

    /// Sets the document, reusing the lines of blocks that stayed the same.
    void update(const QSRendered &rendered);

    /// At least 1: an empty document is one empty page.
    [[nodiscard]] int pageCount() const;
    /// Where a block of the document (from 0) begins, and how far it reaches on that page.
    [[nodiscard]] Place placeOfBlock(int block) const;

    /// The characters that can't be printed, since no installed font has them: each once, in order
    /// of appearance.
    [[nodiscard]] QString missingCharacters() const;

    /// Draws one page's text and its "Page k of N" foot, without a background, in points.
    void drawPage(QPainter &painter, int page) const;
    /// The same on a page of a PDF, in which all of it can be read again.
    void drawPage(PagesCanvas &canvas, int page) const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};
