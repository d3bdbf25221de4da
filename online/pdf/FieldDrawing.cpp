#include "FieldDrawing.h"

#include "TextCanvas.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {
using Kind = FormField::Kind;

// all in points
constexpr double usual = 12;        // of a size that the form leaves open
constexpr double leastReadable = 6; // to which a long text shrinks
constexpr double leastInLowBox = 4; // to which any text shrinks where the box is that low
constexpr double leastInList = 5;
constexpr double edge = 0.5;  // between ink and the field's edge
constexpr double padding = 2; // between the border and the text, where there is room
constexpr double widest = 1e6;

constexpr qsizetype mostLetters = 20'000; // more than a page takes

// shares of a font's size
constexpr double tall = 0.74; // a capital with some of its accent, above the baseline
constexpr double deep = 0.22; // a descender below it
constexpr double lineOfList = 1.2;

const QColor chosenBar(153, 193, 218);

double borderOf(const FieldFrame &frame)
{
    return frame.border.isValid() ? frame.width : 0;
}

/// The rest of a text from a letter on, with the whole word that the letter stands in.
QString restFrom(const QString &text, qsizetype first)
{
    qsizetype begin = first;
    while (begin > 0 && !text.at(begin - 1).isSpace()) {
        --begin;
    }
    return text.sliced(begin > 0 ? begin : first).trimmed();
}

QStringList letters(const QString &text)
{
    QStringList result;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype begin = 0, end = finder.toNextBoundary(); end > 0;
         begin = end, end = finder.toNextBoundary()) {
        result.append(text.sliced(begin, end - begin));
    }
    return result;
}

double shareBefore(Qt::Alignment alignment)
{
    return alignment.testFlag(Qt::AlignHCenter) ? 0.5 : alignment.testFlag(Qt::AlignRight) ? 1 : 0;
}

/// The place of the line that letters stand on in a box: in its middle, but so that they stand
/// whole where they can. ink: of the letters, from that line.
double baselineIn(double height, double size, double inkTop, double inkBottom)
{
    double baseline = height / 2 + (tall - deep) / 2 * size;
    const double lowest = height - edge - std::max(inkBottom, deep * size);
    const double highest = edge + std::max(-inkTop, tall * size);
    if (lowest >= highest) {
        return std::clamp(baseline, highest, lowest);
    }
    baseline = std::min(baseline, height - edge - inkBottom);
    return std::max(baseline, edge - inkTop);
}

/// The largest of the sizes between two; the least where none fits.
template <typename Fits>
double largestThatFits(double least, double most, const Fits &fits)
{
    constexpr double close = 0.1;
    if (fits(most)) {
        return most;
    }
    if (!fits(least)) {
        return least;
    }
    double fitting = least;
    while (most - fitting > close) {
        const double middle = (fitting + most) / 2;
        (fits(middle) ? fitting : most) = middle;
    }
    return fitting;
}

TextStyle sized(const Widget &widget, double size)
{
    TextStyle style = widget.style;
    style.size = size;
    return style;
}

/// The size that a line of text begins with before it shrinks.
double sizeOfLine(const Widget &widget, double height)
{
    constexpr double share = 0.75; // of a box's height
    const double fitting = std::clamp(height * share, leastInLowBox, usual);
    return widget.field.fontSize > 0 ? widget.field.fontSize : fitting;
}
} // namespace

QStringList FieldDrawing::texts(const Widget &widget)
{
    const FormValue &value = widget.value;
    if (widget.field.password) {
        return {QString(value.text.size(), u'*')};
    }
    QStringList texts;
    for (const int chosen : value.chosen) {
        const FormField::Choice &choice = widget.field.choices.at(chosen);
        // Agencies have one to say that nothing is chosen, and show it or show nothing.
        const bool isNothing = choice.exportValue.isEmpty() && !widget.changed;
        texts.append(isNothing ? QString() : choice.label);
    }
    return texts.isEmpty() ? QStringList{value.text} : texts;
}

FieldDrawing::FieldDrawing(const Widget &widget)
    : m_size(widget.turn % 180 == 0 ? widget.box : widget.box.transposed()), m_frame(widget.frame)
{
    if (widget.field.kind == Kind::listBox) {
        setList(widget);
        return;
    }
    m_cells = widget.field.comb ? widget.field.maxLength : 0;
    const QString whole = texts(widget).constFirst();
    const QString text = whole.first(std::min(whole.size(), mostLetters));
    if (text.trimmed().isEmpty() || m_size.isEmpty()) {
        return;
    }
    if (widget.field.comb) {
        setComb(widget, text);
    } else if (widget.field.multiLine) {
        setLines(widget, text);
    } else {
        setOneLine(widget, text);
    }
    m_rest += whole.sliced(text.size());
}

bool FieldDrawing::isEmpty() const
{
    return m_lines.empty() && !m_frame.background.isValid() && !m_frame.border.isValid();
}

QString FieldDrawing::missing() const
{
    QString missing;
    for (const Line &line : m_lines) {
        missing += line.text.missing();
    }
    return missing;
}

void FieldDrawing::setOneLine(const Widget &widget, const QString &text)
{
    const double border = borderOf(m_frame);
    const double pad = border + std::min(padding, m_size.width() / 25);
    const double room = std::max(1.0, m_size.width() - 2 * pad);
    const double height = m_size.height();
    double size = sizeOfLine(widget, height - 2 * border);
    const double least = std::min(size, leastReadable);
    TextLayout line(text, sized(widget, size));
    const double width = std::max(line.size().width(), line.ink().right());
    const bool tooLong = size * room / width < least && width > room;
    if (width > room) {
        constexpr double close = 0.999;
        size = std::max(least, size * room / width * close);
    }
    line.setSize(size);
    const double high = line.ink().height();
    const double most = height - 2 * edge;
    const bool tooHigh = high > most && size * most / high < leastInLowBox;
    if (high > most) {
        size = std::max(std::min(size, leastInLowBox), size * most / high);
        line.setSize(size);
    }
    if (tooLong && line.size().width() > room) {
        const double from = line.runsToTheLeft() ? line.size().width() - room : 0;
        m_rest = restFrom(text, line.firstOutside({from, -widest / 2, room, widest}));
        line.cutTo({room, widest});
    } else if (tooHigh) {
        m_rest = text;
    }
    const QRectF ink = line.ink();
    const double base = line.baseline();
    const double top = baselineIn(height, size, ink.top() - base, ink.bottom() - base) - base;
    const double left = pad + (room - line.size().width()) * shareBefore(widget.field.alignment);
    m_lines.push_back({std::move(line), {left, top}});
}

void FieldDrawing::setLines(const Widget &widget, const QString &text)
{
    const double border = borderOf(m_frame);
    const double pad = border + std::min(padding, m_size.width() / 25);
    const double room = std::max(1.0, m_size.width() - 2 * pad);
    const double height = m_size.height();
    const double wanted = widget.field.fontSize > 0 ? widget.field.fontSize : usual;
    const double least = std::min(wanted, leastReadable);
    TextLayout lines(text, sized(widget, wanted), room, widget.field.alignment);
    const auto fits = [&](double size) {
        lines.setSize(size);
        const QRectF ink = lines.ink();
        return ink.height() <= height - 2 * edge && ink.left() >= edge - pad &&
               ink.right() <= room + pad - edge;
    };
    const double size = largestThatFits(least, wanted, fits);
    const bool whole = fits(size);
    const QRectF ink = lines.ink();
    double top = std::min(border + padding, height - edge - ink.bottom());
    top = std::max(top, edge - ink.top());
    if (!whole) {
        top = std::max(edge - ink.top(), border);
        const QRectF seen(-pad, edge - top, m_size.width(), height - 2 * edge);
        m_rest = restFrom(text, lines.firstOutside(seen));
        lines.cutTo({room, height - edge - top});
    }
    m_lines.push_back({std::move(lines), {pad, top}});
}

void FieldDrawing::setComb(const Widget &widget, const QString &text)
{
    constexpr double shareOfCell = 0.95;
    const QStringList all = letters(text);
    const qsizetype count = std::min<qsizetype>(all.size(), m_cells);
    m_rest = all.mid(count).join(QString());
    const double cell = m_size.width() / m_cells;
    const double height = m_size.height();
    double size = sizeOfLine(widget, height - 2 * borderOf(m_frame));
    double above = 0;
    double below = 0;
    double widestLetter = 0;
    for (const QString &letter : all.first(count)) {
        Line line{TextLayout(letter, sized(widget, size)), {}};
        const QRectF ink = line.text.ink();
        widestLetter = std::max(widestLetter, ink.width());
        above = std::max(above, line.text.baseline() - ink.top());
        below = std::max(below, ink.bottom() - line.text.baseline());
        m_lines.push_back(std::move(line));
    }
    const double shrunk = std::min({1.0, cell * shareOfCell / std::max(widestLetter, 0.01),
                                    (height - 2 * edge) / std::max(above + below, 0.01)});
    if (shrunk < 1 && size * shrunk < std::min(size, leastInLowBox)) {
        m_rest = text;
    }
    const double share = std::max(shrunk, std::min(1.0, leastInLowBox / size));
    const double baseline = baselineIn(height, size * share, -above * share, below * share);
    const auto before =
        std::floor(static_cast<double>(m_cells - count) * shareBefore(widget.field.alignment));
    const bool backwards = text.isRightToLeft();
    for (qsizetype i = 0; i < count; ++i) {
        Line &line = m_lines.at(static_cast<size_t>(i));
        line.text.setSize(size * share);
        const auto at = static_cast<double>(backwards ? count - 1 - i : i) + before;
        const QRectF ink = line.text.ink();
        line.corner = {cell * (at + 0.5) - ink.center().x(), baseline - line.text.baseline()};
    }
}

void FieldDrawing::setList(const Widget &widget)
{
    const QList<FormField::Choice> &choices = widget.field.choices;
    const QList<int> &chosen = widget.value.chosen;
    const double border = borderOf(m_frame);
    const double pad = border + padding;
    const QSizeF room(std::max(1.0, m_size.width() - 2 * pad), m_size.height() - 2 * border);
    const double wanted = widget.field.fontSize > 0 ? widget.field.fontSize : usual;
    // A list on paper can't be scrolled: its letters are as small as it takes to show each choice,
    // if that can be read.
    const double fitting =
        room.height() / (std::max<double>(1, static_cast<double>(choices.size())) * lineOfList);
    const double size = fitting >= leastInList ? std::min(wanted, fitting) : wanted;
    const double step = size * lineOfList;
    const int shown = std::max(1, static_cast<int>(room.height() / step + 0.01));
    const int first = chosen.isEmpty() || chosen.constLast() < shown ? 0 : chosen.constFirst();
    QStringList hidden;
    for (int i = 0; i < choices.size(); ++i) {
        const bool isChosen = chosen.contains(i);
        if (i < first || i >= first + shown) {
            hidden += isChosen ? QStringList(choices.at(i).label) : QStringList();
            continue;
        }
        TextLayout line(choices.at(i).label, sized(widget, size));
        if (line.size().width() > room.width()) {
            line.setSize(
                std::max(std::min(size, leastInList), size * room.width() / line.size().width()));
        }
        if (line.size().width() > room.width() + edge) {
            hidden += isChosen ? QStringList(choices.at(i).label) : QStringList();
            line.cutTo({room.width(), widest});
        }
        const double middle = border + step * (i - first + 0.5);
        const double top = middle + (tall - deep) / 2 * line.style().size - line.baseline();
        m_lines.push_back({std::move(line), {pad, top}, isChosen});
        m_step = step;
    }
    m_rest = hidden.join(u'\n');
}

void FieldDrawing::drawFrame(TextCanvas &canvas) const
{
    if (m_frame.background.isValid()) {
        canvas.fill(QRectF({}, m_size), m_frame.background);
    }
    if (!m_frame.border.isValid()) {
        return;
    }
    const double width = m_frame.width;
    if (m_frame.line == FieldFrame::Line::under) {
        const double y = m_size.height() - width / 2;
        canvas.line({0, y}, {m_size.width(), y}, width, m_frame.border);
        return;
    }
    const double inset = width / 2;
    canvas.outline(QRectF({}, m_size).adjusted(inset, inset, -inset, -inset), width, m_frame.border,
                   m_frame.line == FieldFrame::Line::dashed);
    const bool hasCells = m_cells > 0 && m_size.width() / m_cells > 2 * width;
    for (int cell = 1; hasCells && cell < m_cells; ++cell) {
        const double x = m_size.width() * cell / m_cells;
        canvas.line({x, 0}, {x, m_size.height()}, width, m_frame.border);
    }
}

void FieldDrawing::draw(TextCanvas &canvas) const
{
    drawFrame(canvas);
    for (const Line &line : m_lines) {
        if (line.chosen) {
            const double border = borderOf(m_frame);
            const double middle =
                line.corner.y() + line.text.baseline() - (tall - deep) / 2 * line.text.style().size;
            canvas.fill({border, middle - m_step / 2, m_size.width() - 2 * border, m_step},
                        chosenBar);
        }
        canvas.draw(line.text, line.corner);
    }
}
