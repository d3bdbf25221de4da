#include "QSLetters.h"

#include "QSDirections.h"
#include "TextCanvas.h"

#include <QGlyphRun>
#include <QSet>
#include <QTextBoundaryFinder>
#include <QTextLayout>
#include <QTransform>

#include <algorithm>
#include <vector>

namespace {
/// False for what only directs the letters around it, or is space: no font needs a glyph for it.
bool isPrinted(char32_t character)
{
    const bool selectsVariant = (character >= 0xFE00 && character <= 0xFE0F) ||
                                (character >= 0xE0100 && character <= 0xE01EF);
    const QChar::Category category = QChar::category(character);
    return category != QChar::Other_Control && category != QChar::Other_Format &&
           !QChar::isSpace(character) && !selectsVariant;
}

/// Every font for Latin letters has these, each as one glyph unless two have grown together.
bool isPlain(QChar character)
{
    constexpr QChar afterLatin(0x250);
    return character >= u' ' && character < afterLatin && character != QChar::SoftHyphen;
}

/// Not told by the glyph: what Qt puts in place of a letter without a font has any number, and says
/// to have everything, what is no character too. A letter and its mark can be of two fonts.
bool hasFont(const QTextLayout &text, int at, int length, char32_t character)
{
    constexpr char16_t noCharacter = 0xFFFF;
    const QList<QGlyphRun> runs = text.glyphRuns(at, length);
    return QChar::category(character) != QChar::Other_PrivateUse &&
           std::ranges::any_of(runs, [character](const QGlyphRun &run) {
               return run.rawFont().supportsCharacter(character) &&
                      !run.rawFont().supportsCharacter(noCharacter);
           });
}

/// A piece of a line's text with its glyphs, which can be of several fonts.
struct Cluster
{
    QString text;
    QList<QGlyphRun> runs;
    qreal left = 0;
};

qreal leftOf(const QList<QGlyphRun> &runs)
{
    qreal left = std::numeric_limits<qreal>::max();
    for (const QGlyphRun &run : runs) {
        for (const QPointF &place : run.positions()) {
            left = std::min(left, place.x());
        }
    }
    return left;
}

bool isPartOfMore(const QList<QGlyphRun> &runs)
{
    return std::ranges::any_of(
        runs, [](const QGlyphRun &run) { return run.flags().testFlag(QGlyphRun::SplitLigature); });
}

/// Of the last glyph; 0 for a mark.
qreal lastStep(const QGlyphRun &run)
{
    const QList<quint32> last = run.glyphIndexes().last(1);
    return run.rawFont().advancesForGlyphIndexes(last).constFirst().x();
}

/// A mark without a width of its own at the end: readers would take the letter to end where the
/// mark stands and see a gap behind it.
bool endsInMark(const QList<QGlyphRun> &runs)
{
    return std::ranges::any_of(
        runs, [](const QGlyphRun &run) { return !run.isRightToLeft() && lastStep(run) <= 0; });
}

/// A letter that is drawn as a part of the one before.
bool leansOnTheOneBefore(const QList<QGlyphRun> &runs)
{
    return !runs.isEmpty() && std::ranges::all_of(runs, [](const QGlyphRun &run) {
        return run.isRightToLeft() && lastStep(run) <= 0;
    });
}

/// From left to right, as readers of a PDF expect letters of any script.
std::vector<Cluster> clustersOf(const QTextLine &line, const QString &text)
{
    const auto runsOf = [&line](qsizetype from, qsizetype end) {
        return line.glyphRuns(line.textStart() + static_cast<int>(from),
                              static_cast<int>(end - from));
    };
    std::vector<Cluster> clusters;
    QTextBoundaryFinder ends(QTextBoundaryFinder::Grapheme, text);
    ends.toNextBoundary();
    for (qsizetype from = 0, end = ends.position(); from < text.size(); from = end) {
        QList<QGlyphRun> runs;
        bool goesOn = true;
        while (goesOn) {
            end = ends.position();
            runs = runsOf(from, end);
            ends.toNextBoundary();
            goesOn = end < text.size() && !text.at(end).isSpace() &&
                     (isPartOfMore(runs) || endsInMark(runs) ||
                      leansOnTheOneBefore(runsOf(end, ends.position())));
        }
        QString letters = text.sliced(from, end - from);
        letters.removeIf(QSDirections::isControl);
        const bool leavesInk = std::ranges::any_of(letters.toStdU32String(), isPrinted);
        if (!runs.isEmpty() && (leavesInk || letters == u' ')) {
            clusters.push_back({letters, runs, leftOf(runs)});
        }
    }
    std::ranges::stable_sort(clusters, {}, &Cluster::left);
    return clusters;
}

void drawRun(PagesCanvas &canvas, const QGlyphRun &run, const QString &text,
             const QTransform &toPage, const QColor &colour)
{
    SetGlyphs set{run.rawFont(), run.rawFont().pixelSize() * toPage.m22(), run.glyphIndexes(),
                  run.positions(), text};
    for (QPointF &place : set.places) {
        place = toPage.map(place);
    }
    if (run.isRightToLeft()) { // the last one ends where the text does
        std::ranges::reverse(set.glyphs);
        std::ranges::reverse(set.places);
    }
    canvas.draw(set, colour);
}

/// True when that was enough: for lines of plain letters in one font, each with its own glyph.
bool drawPlain(PagesCanvas &canvas, const QTextLine &line, const QString &text,
               const QTransform &toPage, const QColor &colour)
{
    if (!std::ranges::all_of(text, isPlain)) {
        return false;
    }
    const QList<QGlyphRun> runs = line.glyphRuns(line.textStart(), static_cast<int>(text.size()));
    if (runs.size() != 1 || runs.constFirst().glyphIndexes().size() != text.size()) {
        return false;
    }
    const QGlyphRun &run = runs.constFirst();
    const QList<quint32> glyphs = run.glyphIndexes();
    const QList<QPointF> places = run.positions();
    for (qsizetype i = 0; i < text.size(); ++i) {
        canvas.draw({run.rawFont(),
                     run.rawFont().pixelSize() * toPage.m22(),
                     {glyphs.at(i)},
                     {toPage.map(places.at(i))},
                     text.at(i)},
                    colour);
    }
    return true;
}
} // namespace

QStringList QSLetters::missing(const QTextLayout &text)
{
    QSet<char32_t> looked;
    QStringList missing;
    if (std::ranges::all_of(text.text(), isPlain)) {
        return missing;
    }
    int at = 0;
    for (const char32_t character : text.text().toStdU32String()) {
        const int length = QChar::requiresSurrogates(character) ? 2 : 1;
        if (isPrinted(character) && !looked.contains(character)) {
            looked.insert(character);
            if (!hasFont(text, at, length, character)) {
                missing.append(text.text().sliced(at, length));
            }
        }
        at += length;
    }
    return missing;
}

void QSLetters::draw(PagesCanvas &canvas, const QTextLayout &text, const QTextLine &line,
                     const QTransform &toPage, const QColor &colour)
{
    QString letters = text.text().sliced(line.textStart(), line.textLength());
    while (!letters.isEmpty() && letters.back().isSpace()) {
        letters.chop(1);
    }
    if (drawPlain(canvas, line, letters, toPage, colour)) {
        return;
    }
    for (const Cluster &cluster : clustersOf(line, letters)) {
        QString read = cluster.text; // by the first run; the others' glyphs belong to it
        for (const QGlyphRun &run : cluster.runs) {
            drawRun(canvas, run, std::exchange(read, QString()), toPage, colour);
        }
    }
}
