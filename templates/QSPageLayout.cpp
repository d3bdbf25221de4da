#include "QSPageLayout.h"

#include "QSBlockStyle.h"
#include "QSDirections.h"
#include "QSLetters.h"
#include "TextCanvas.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QHash>
#include <QImage>
#include <QPainter>
#include <QTextLayout>
#include <QTextOption>

#include <algorithm>
#include <span>
#include <vector>

namespace {
// Text is set in tenths of a point: the font system rounds sizes to whole units (12.5 points would
// become 13) and metrics to 1/64 unit.
constexpr int unitsPerPoint = 10;
constexpr qreal frameWidth = QSPageLayout::pageSize.width() - 2 * QSPageLayout::margin;
constexpr qreal frameHeight = QSPageLayout::pageSize.height() - 2 * QSPageLayout::margin;
constexpr QSBlockStyle footStyle{.name = u"Foot", .size = 9, .centred = true, .grey = true};
constexpr qreal footBaseline = QSPageLayout::pageSize.height() - 40;
/// What a sum of fractions may exceed the frame by before it counts as too long.
constexpr qreal tolerance = 0.01;

/// A device on which one unit is a tenth of a point, so that fonts resolve to that size whatever
/// the screen's resolution is.
QImage createMeasure()
{
    constexpr qreal inchesPerMeter = 1000 / 25.4;
    QImage device(1, 1, QImage::Format_ARGB32_Premultiplied);
    device.setDotsPerMeterX(qRound(72 * unitsPerPoint * inchesPerMeter));
    device.setDotsPerMeterY(qRound(72 * unitsPerPoint * inchesPerMeter));
    return device;
}

/// The typeface that word processors will show the document in, or the free one that equals it
/// metric for metric. Only what is really there counts: the font system offers some other typeface
/// under any name.
QString serifFamily()
{
    const QString wanted = QStringLiteral("Times New Roman");
    return QFontDatabase::hasFamily(wanted) ? wanted : QStringLiteral("Liberation Serif");
}

/// The fonts of the scripts that it lacks, from the first one that has a letter. Left to itself the
/// font system takes any, and letters of one word from two that don't join.
QStringList families()
{
    // Qt 6.4 names a glyph of a printed PDF by one letter alone, and larger fonts than this one
    // draw some ideographs and radicals with the same glyph: a copied text would be another.
    QStringList names = {serifFamily(), QStringLiteral("Droid Sans Fallback"),
                         QStringLiteral("Noto Naskh Arabic")};
    for (const QStringView script :
         {u"Hebrew",   u"Devanagari", u"Gurmukhi", u"Bengali", u"Gujarati", u"Tamil", u"Telugu",
          u"Kannada",  u"Malayalam",  u"Sinhala",  u"Thai",    u"Lao",      u"Khmer", u"Myanmar",
          u"Ethiopic", u"Armenian",   u"Georgian", u"Tibetan", u"CJK KR",   u"CJK SC"}) {
        names.append(QStringLiteral("Noto Serif ") + script.toString());
    }
    return names;
}

QFont serif(qreal size, bool bold, bool italic)
{
    static const QImage measure = createMeasure();
    static const QStringList names = families();
    QFont font(names);
    font.setStyleHint(QFont::Serif);
    font.setPointSizeF(size);
    font.setBold(bold);
    font.setItalic(italic);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setKerning(true);
    return QFont(font, &measure);
}

QTextOption createOption(const QSBlockStyle &style)
{
    QTextOption option(style.centred ? Qt::AlignHCenter : Qt::AlignLeft);
    option.setTextDirection(Qt::LeftToRight);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setUseDesignMetrics(true);
    // QTextLayout takes tabs in units of the default resolution, which a plain image has.
    static const qreal tabUnit =
        QImage(1, 1, QImage::Format_ARGB32_Premultiplied).logicalDpiX() / 72.0;
    option.setTabStopDistance(blockTabDistance * tabUnit);
    if (style.tabStops) {
        QList<QTextOption::Tab> tabs;
        for (const qreal stop : blockTabStops) {
            tabs.append(QTextOption::Tab(stop * tabUnit, QTextOption::LeftTab));
        }
        option.setTabs(tabs);
    }
    return option;
}

/// A line's place in its block, in points.
struct LineMetrics
{
    qreal height = 0;   ///< to the top of the next line
    qreal baseline = 0; ///< below the line's own top
};

/// A block's lines. Equal blocks share one.
struct SetBlock
{
    QTextLayout text;
    std::vector<LineMetrics> lines;
    QSBlockStyle style;
    QStringList missing; ///< characters without a glyph, each once
};
using SetBlockPtr = std::shared_ptr<const SetBlock>;

struct PlacedLine
{
    const SetBlock *block = nullptr;
    std::size_t line = 0;
    qreal baseline = 0; ///< below the top of the text frame, in points
};
using Page = std::vector<PlacedLine>;

/// One kind of block, ready to set: fonts and options are costly to make for every block.
struct Setter
{
    explicit Setter(const QSBlockStyle &blockStyle)
        : style(blockStyle),
          font(serif(style.size, style.bold, style.italic)),
          option(createOption(style)),
          rightToLeftOption(option),
          metrics(font)
    {
        rightToLeftOption.setTextDirection(Qt::RightToLeft);
        if (!style.centred) {
            rightToLeftOption.setAlignment(Qt::AlignRight);
        }
    }

    /// Lines keep the even distance of their kind's own font, also where a name in another script
    /// takes letters from another one; only letters too tall for that make a line higher. The
    /// extra height is above the line, as is the font's line gap: a line's bottom is its descent.
    [[nodiscard]] LineMetrics measure(const QTextLine &line) const
    {
        const qreal natural = metrics.ascent() + metrics.descent() + metrics.leading();
        const qreal ascent = std::max(metrics.ascent(), line.ascent());
        const qreal descent = std::max(metrics.descent(), line.descent());
        const qreal height = std::max(blockLineHeight * natural, ascent + descent);
        return {.height = height / unitsPerPoint, .baseline = (height - descent) / unitsPerPoint};
    }

    [[nodiscard]] SetBlockPtr set(const QString &flow) const
    {
        auto block = std::make_shared<SetBlock>();
        block->style = style;
        QTextLayout &text = block->text;
        text.setCacheEnabled(true); // a page is drawn far more often than its blocks are set
        text.setFont(font);
        text.setTextOption(QSDirections::beginsOnTheRight(flow) ? rightToLeftOption : option);
        text.setText(flow);
        text.beginLayout();
        for (QTextLine line = text.createLine(); line.isValid(); line = text.createLine()) {
            line.setLineWidth(frameWidth * unitsPerPoint);
            block->lines.push_back(measure(line));
        }
        text.endLayout();
        block->missing = QSLetters::missing(text);
        return block;
    }

    QSBlockStyle style;
    QFont font;
    QTextOption option;
    QTextOption rightToLeftOption; ///< for texts that begin in Arabic or Hebrew
    QFontMetricsF metrics;
};

/// From the first line's top to the end of the last block's first line.
qreal heightTogether(std::span<const SetBlock *const> blocks)
{
    qreal height = blocks.back()->lines.front().height;
    for (std::size_t i = 0; i + 1 < blocks.size(); ++i) {
        height += blocks[i]->style.after + blocks[i + 1]->style.before;
        for (const LineMetrics &line : blocks[i]->lines) {
            height += line.height;
        }
    }
    return height;
}

void drawLine(QPainter &painter, const SetBlock &block, std::size_t index, qreal baseline)
{
    const QTextLine line = block.text.lineAt(static_cast<int>(index));
    painter.save();
    painter.setPen(block.style.grey ? blockGrey : blockBlack);
    painter.translate(QSPageLayout::margin, baseline);
    painter.scale(1.0 / unitsPerPoint, 1.0 / unitsPerPoint);
    line.draw(&painter, {0, -line.ascent()});
    painter.restore();
}

void drawLine(PagesCanvas &canvas, const SetBlock &block, std::size_t index, qreal baseline)
{
    constexpr qreal scale = 1.0 / unitsPerPoint;
    const QTextLine line = block.text.lineAt(static_cast<int>(index));
    const QTransform toPage(scale, 0, 0, scale, QSPageLayout::margin,
                            baseline - scale * line.ascent());
    QSLetters::draw(canvas, block.text, line, toPage, block.style.grey ? blockGrey : blockBlack);
}

template <typename Target>
void drawPage(Target &target, const Page &page, const SetBlock &foot)
{
    for (const PlacedLine &line : page) {
        drawLine(target, *line.block, line.line, QSPageLayout::margin + line.baseline);
    }
    drawLine(target, foot, 0, footBaseline);
}
} // namespace

static size_t qHash(const QSBlock &block, size_t seed)
{
    return qHashMulti(seed, static_cast<int>(block.kind), block.cells);
}

struct QSPageLayout::Private
{
    [[nodiscard]] SetBlockPtr setBlock(const QSBlock &block) const;
    void place(const std::vector<const SetBlock *> &blocks);
    void placeTogether(std::span<const SetBlock *const> blocks);
    void placeBlock(const SetBlock &block);
    void setFeet();
    [[nodiscard]] bool fits(qreal height) const
    {
        return bottom + height <= frameHeight + tolerance;
    }
    void beginPage();

    std::vector<Setter> setters{blockStyles.begin(), blockStyles.end()};
    Setter footSetter{footStyle};
    QHash<QSBlock, SetBlockPtr> sets; ///< the lines of every block of the document
    std::vector<Page> pages;
    std::vector<SetBlockPtr> feet; ///< of the pages
    std::vector<Place> places;     ///< of the blocks
    QString missing;
    qreal bottom = 0; ///< of what stands on the last page, space below it included
};

SetBlockPtr QSPageLayout::Private::setBlock(const QSBlock &block) const
{
    if (SetBlockPtr known = sets.value(block)) {
        return known;
    }
    return setters[static_cast<std::size_t>(block.kind)].set(blockFlow(block));
}

void QSPageLayout::Private::beginPage()
{
    pages.emplace_back();
    bottom = 0;
}

void QSPageLayout::Private::place(const std::vector<const SetBlock *> &blocks)
{
    pages.clear();
    places.clear();
    beginPage();
    const auto keepsNext = [](const SetBlock *block) { return block->style.keepWithNext; };
    for (std::span<const SetBlock *const> rest(blocks); !rest.empty();) {
        const auto last = std::ranges::find_if_not(rest, keepsNext);
        const std::size_t run = static_cast<std::size_t>(last - rest.begin()) + 1;
        const std::size_t count = std::min(run, rest.size());
        placeTogether(rest.first(count));
        rest = rest.subspan(count);
    }
}

/// Places blocks that stay together and the one after them, of which the first line stays too. On a
/// page of their own where the rest of this one is too short, unless that were too short as well.
/// Space above a block vanishes at the top of a page: the first line of every page stands at the
/// same height.
void QSPageLayout::Private::placeTogether(std::span<const SetBlock *const> blocks)
{
    const qreal height = heightTogether(blocks);
    const bool fitsHere = fits(blocks.front()->style.before + height);
    if (!pages.back().empty() && !fitsHere && height <= frameHeight + tolerance) {
        beginPage();
    }
    for (const SetBlock *block : blocks) {
        placeBlock(*block);
    }
}

/// Adds a block's lines below what stands on the last page, on as many pages as they need. A page
/// takes at least one line, however tall, so this ends.
void QSPageLayout::Private::placeBlock(const SetBlock &block)
{
    bottom = pages.back().empty() ? 0 : bottom + block.style.before;
    for (std::size_t i = 0; i < block.lines.size(); ++i) {
        const LineMetrics &line = block.lines[i];
        if (!pages.back().empty() && !fits(line.height)) {
            beginPage();
        }
        const int page = static_cast<int>(pages.size()) - 1;
        if (i == 0) {
            places.push_back({.page = page, .top = margin + bottom});
        }
        pages.back().push_back({&block, i, bottom + line.baseline});
        bottom += line.height;
        if (places.back().page == page) {
            places.back().bottom = margin + bottom;
        }
    }
    bottom += block.style.after;
}

/// Every page's foot names the count, so all stay the same while it does.
void QSPageLayout::Private::setFeet()
{
    const std::size_t count = pages.size();
    if (feet.size() == count) {
        return;
    }
    feet.clear();
    for (std::size_t page = 1; page <= count; ++page) {
        feet.push_back(footSetter.set(QStringLiteral("Page %1 of %2").arg(page).arg(count)));
    }
}

QSPageLayout::QSPageLayout() : d(std::make_unique<Private>())
{
    update({});
}

QSPageLayout::~QSPageLayout() = default;

void QSPageLayout::update(const QSRendered &rendered)
{
    QHash<QSBlock, SetBlockPtr> sets;
    sets.reserve(rendered.blocks.size());
    std::vector<const SetBlock *> inOrder;
    QStringList missing;
    for (const QSBlock &block : rendered.blocks) {
        SetBlockPtr &set = sets[block];
        if (!set) {
            set = d->setBlock(block);
            missing += set->missing;
        }
        inOrder.push_back(set.get());
    }
    d->place(inOrder);
    d->setFeet();
    d->sets.swap(sets);
    missing.removeDuplicates();
    d->missing = missing.join(QString());
}

int QSPageLayout::pageCount() const
{
    return static_cast<int>(d->pages.size());
}

QString QSPageLayout::missingCharacters() const
{
    return d->missing;
}

QSPageLayout::Place QSPageLayout::placeOfBlock(int block) const
{
    return d->places.at(static_cast<std::size_t>(block));
}

void QSPageLayout::drawPage(QPainter &painter, int page) const
{
    const auto index = static_cast<std::size_t>(page);
    ::drawPage(painter, d->pages.at(index), *d->feet.at(index));
}

void QSPageLayout::drawPage(PagesCanvas &canvas, int page) const
{
    const auto index = static_cast<std::size_t>(page);
    ::drawPage(canvas, d->pages.at(index), *d->feet.at(index));
}
