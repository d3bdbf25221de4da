#include "TextLayout.h"

#include "TextEngine.h"

#include <QTextBoundaryFinder>

#include <pango/pangocairo.h>

#include <algorithm>

namespace {
/// The families' names, each with the fonts that go on where it ends.
const char *namesOf(TextStyle::Family family)
{
    switch (family) {
    case TextStyle::Family::serif:
        return "Liberation Serif,Noto Serif,Noto Serif CJK SC,Noto Sans CJK SC";
    case TextStyle::Family::mono:
        return "Liberation Mono,Noto Sans Mono,Noto Sans,Noto Sans CJK SC";
    case TextStyle::Family::sans:
        break;
    }
    return "Liberation Sans,Noto Sans,Noto Sans CJK SC";
}

QRectF inPoints(const PangoRectangle &rectangle)
{
    return {pango_units_to_double(rectangle.x), pango_units_to_double(rectangle.y),
            pango_units_to_double(rectangle.width), pango_units_to_double(rectangle.height)};
}

int inUnits(double points)
{
    return pango_units_from_double(points);
}

/// Walks over the runs or clusters of a layout; next has the signature of Pango's.
template <typename Visit>
void forEach(PangoLayout *layout, gboolean (*next)(PangoLayoutIter *), const Visit &visit)
{
    const std::unique_ptr<PangoLayoutIter, decltype(&pango_layout_iter_free)> iterator(
        pango_layout_get_iter(layout), &pango_layout_iter_free);
    do {
        visit(iterator.get());
    } while (next(iterator.get()));
}
} // namespace

void TextLayout::Unref::operator()(PangoLayout *layout) const
{
    const auto lock = TextEngine::lock();
    g_object_unref(layout);
}

TextLayout::TextLayout(const QString &text, const TextStyle &style, double width,
                       Qt::Alignment alignment)
    : m_style(style)
{
    const auto lock = TextEngine::lock();
    m_layout.reset(pango_layout_new(TextEngine::context()));
    setText(text);
    pango_layout_set_wrap(m_layout.get(), PANGO_WRAP_WORD_CHAR);
    pango_layout_set_width(m_layout.get(), width < 0 ? -1 : inUnits(width));
    pango_layout_set_alignment(m_layout.get(),
                               alignment.testFlag(Qt::AlignHCenter) ? PANGO_ALIGN_CENTER
                               : alignment.testFlag(Qt::AlignRight) ? PANGO_ALIGN_RIGHT
                                                                    : PANGO_ALIGN_LEFT);
    applySize();
}

TextLayout::~TextLayout() = default;

void TextLayout::applySize()
{
    PangoFontDescription *font = pango_font_description_new();
    pango_font_description_set_family_static(font, namesOf(m_style.family));
    pango_font_description_set_weight(font, m_style.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_font_description_set_style(font,
                                     m_style.italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    pango_font_description_set_absolute_size(font, m_style.size * PANGO_SCALE);
    pango_layout_set_font_description(m_layout.get(), font);
    pango_font_description_free(font);
}

void TextLayout::setSize(double points)
{
    const auto lock = TextEngine::lock();
    m_style.size = points;
    applySize();
}

void TextLayout::setText(const QString &text)
{
    m_text = text;
    m_utf8 = text.toUtf8();
    pango_layout_set_text(m_layout.get(), m_utf8.constData(), static_cast<int>(m_utf8.size()));
}

// Not with Pango's own ellipsis: that stands for what it hides, and who reads the page again would
// find there what nobody sees.
void TextLayout::cutTo(const QSizeF &room)
{
    const auto lock = TextEngine::lock();
    // What lies outside now does so with less text too, which saves most of the search.
    const double left = runsToTheLeft() ? size().width() - room.width() : -room.width();
    const QRectF seen(QPointF(left, -room.height()),
                      QPointF(left + (runsToTheLeft() ? 1 : 2) * room.width(), room.height()));
    const QString whole = m_text.first(firstOutside(seen));
    QList<qsizetype> ends = {0};
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, whole);
    while (finder.toNextBoundary() > 0) {
        ends.append(finder.position());
    }
    const auto fits = [&](qsizetype end) {
        setText(whole.first(end).trimmed() + u'\u2026');
        return size().width() <= room.width() && ink().bottom() <= room.height();
    };
    const auto last = std::partition_point(ends.cbegin() + 1, ends.cend(), fits);
    (void)fits(*(last - 1));
}

QSizeF TextLayout::size() const
{
    const auto lock = TextEngine::lock();
    PangoRectangle logical;
    pango_layout_get_extents(m_layout.get(), nullptr, &logical);
    return inPoints(logical).size();
}

QRectF TextLayout::ink() const
{
    const auto lock = TextEngine::lock();
    PangoRectangle ink;
    pango_layout_get_extents(m_layout.get(), &ink, nullptr);
    return inPoints(ink);
}

double TextLayout::baseline() const
{
    const auto lock = TextEngine::lock();
    return pango_units_to_double(pango_layout_get_baseline(m_layout.get()));
}

bool TextLayout::runsToTheLeft() const
{
    const auto lock = TextEngine::lock();
    return pango_layout_get_direction(m_layout.get(), 0) == PANGO_DIRECTION_RTL;
}

qsizetype TextLayout::position(int byte) const
{
    return QString::fromUtf8(m_utf8.first(byte)).size();
}

qsizetype TextLayout::firstOutside(const QRectF &room) const
{
    const auto lock = TextEngine::lock();
    auto first = static_cast<int>(m_utf8.size());
    forEach(m_layout.get(), pango_layout_iter_next_cluster, [&](PangoLayoutIter *at) {
        PangoRectangle ink;
        pango_layout_iter_get_cluster_extents(at, &ink, nullptr);
        const bool leavesInk = ink.width > 0 && ink.height > 0;
        if (leavesInk && !room.contains(inPoints(ink))) {
            first = std::min(first, pango_layout_iter_get_index(at));
        }
    });
    return position(first);
}

QString TextLayout::missing() const
{
    const auto lock = TextEngine::lock();
    QString letters;
    if (pango_layout_get_unknown_glyphs_count(m_layout.get()) == 0) {
        return letters;
    }
    forEach(m_layout.get(), pango_layout_iter_next_run, [&](PangoLayoutIter *at) {
        const PangoLayoutRun *run = pango_layout_iter_get_run_readonly(at);
        const int count = run ? run->glyphs->num_glyphs : 0;
        for (int i = 0; i < count; ++i) {
            const PangoGlyph glyph = run->glyphs->glyphs[i].glyph;
            const char32_t letter = glyph & ~PANGO_GLYPH_UNKNOWN_FLAG;
            const QString text = QString::fromUcs4(&letter, 1);
            if ((glyph & PANGO_GLYPH_UNKNOWN_FLAG) != 0 && glyph != PANGO_GLYPH_EMPTY &&
                !letters.contains(text)) {
                letters += text;
            }
        }
    });
    return letters;
}

void TextLayout::show(cairo_t *target) const
{
    const QColor &colour = m_style.colour;
    cairo_set_source_rgb(target, colour.redF(), colour.greenF(), colour.blueF());
    pango_cairo_show_layout(target, m_layout.get());
}
