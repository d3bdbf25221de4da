#pragma once

#include <QImage>
#include <QTransform>

class FieldDrawing;

/// Whether a drawing is to be seen on a page that somebody else has drawn.
namespace InkCheck {
/// page: in grey. drawingToDots: from the drawing's points to the page's dots. False when some part
/// of the drawing's ink has nothing like it on the page: it is covered, elsewhere or missing. Print
/// that lies around and under it does no harm. True for a drawing without ink.
[[nodiscard]] bool isSeen(const QImage &page, const FieldDrawing &drawing,
                          const QTransform &drawingToDots);
} // namespace InkCheck
