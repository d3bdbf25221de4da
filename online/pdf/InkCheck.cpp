#include "InkCheck.h"

#include "FieldDrawing.h"
#include "TextCanvas.h"

#include <algorithm>
#include <array>

namespace {
/// How the greys of two pictures go together: the sums of a straight line's least squares.
struct Likeness
{
    double count = 0;
    double wanted = 0;
    double wantedSquares = 0;
    double found = 0;
    double products = 0;

    void add(double one, double other)
    {
        ++count;
        wanted += one;
        wantedSquares += one * one;
        found += other;
        products += one * other;
    }
    /// The contrast that is wanted, squared and summed.
    [[nodiscard]] double contrast() const { return wantedSquares - wanted * wanted / count; }
    /// The share of it that is found: 1 for the same picture, 0 for any other.
    [[nodiscard]] double share() const { return (products - wanted * found / count) / contrast(); }
};

Likeness likeness(const QImage &wanted, const QImage &found, const QRect &part)
{
    Likeness result;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        const uchar *one = wanted.constScanLine(y);
        const uchar *other = found.constScanLine(y);
        for (int x = part.left(); x <= part.right(); ++x) {
            result.add(one[x], other[x]);
        }
    }
    return result;
}

/// Two programs put a letter's edge on different dots; so much smaller, it is the same letter.
QImage softened(const QImage &picture)
{
    return picture
        .scaled((picture.width() + 1) / 2, (picture.height() + 1) / 2, Qt::IgnoreAspectRatio,
                Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_Grayscale8);
}

/// Piece by piece along the text, so that a part that is covered does not hide behind the rest.
QList<Likeness> inPieces(const QImage &wanted, const QImage &found)
{
    constexpr int shortest = 8;
    const QSize size = wanted.size();
    const bool isWide = size.width() > size.height();
    const int length = std::max(size.width(), size.height());
    const int step = std::max(shortest, std::min(size.width(), size.height()));
    QList<Likeness> pieces;
    for (int begin = 0; begin < length; begin += step) {
        const QRect piece =
            isWide ? QRect(begin, 0, step, size.height()) : QRect(0, begin, size.width(), step);
        pieces.append(likeness(wanted, found, piece & wanted.rect()));
    }
    return pieces;
}

QImage drawn(const FieldDrawing &drawing, const QTransform &toDots, const QRect &place)
{
    QImage picture(place.size(), QImage::Format_RGB32);
    picture.fill(Qt::white);
    PictureCanvas canvas(picture, toDots * QTransform::fromTranslate(-place.x(), -place.y()),
                         QRectF({}, drawing.size()));
    drawing.draw(canvas);
    return picture;
}
bool areAlike(const QList<Likeness> &pieces)
{
    constexpr double leastContrast = 10000; // of a full stop or so
    constexpr double sliver = 0.2;          // of the clearest piece: the edge of a letter
    constexpr double leastShare = 0.08;     // print under the text takes from it
    double most = leastContrast;
    for (const Likeness &piece : pieces) {
        most = std::max(most, piece.contrast());
    }
    return std::ranges::none_of(pieces, [most](const Likeness &piece) {
        return piece.contrast() > most * sliver && piece.share() < leastShare;
    });
}
} // namespace

bool InkCheck::isSeen(const QImage &page, const FieldDrawing &drawing,
                      const QTransform &drawingToDots)
{
    const QRect whole = drawingToDots.mapRect(QRectF({}, drawing.size())).toAlignedRect();
    const QRect place = whole & page.rect();
    if (place.isEmpty()) {
        return drawing.isEmpty();
    }
    const QImage wanted = softened(drawn(drawing, drawingToDots, place));
    // Programs round to a dot in their own ways; small letters are hardly alike one dot further.
    static constexpr std::array<int, 3> shifts = {0, -1, 1};
    for (const int x : shifts) {
        for (const int y : shifts) {
            if (areAlike(inPieces(wanted, softened(page.copy(place.translated(x, y)))))) {
                return true;
            }
        }
    }
    return false;
}
