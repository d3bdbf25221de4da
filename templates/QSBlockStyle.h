#pragma once

#include "QSRendered.h"

#include <QColor>
#include <QStringView>

#include <array>

/// How each kind of block looks, once for the pages that are drawn and for the files that word
/// processors open. Lengths and sizes are points.
struct QSBlockStyle
{
    QStringView name; ///< the paragraph style's name; Word's own where it has one
    bool bold = false;
    bool italic = false;
    qreal size = 12;
    bool centred = false;
    qreal before = 0; ///< space above; adds to the space below the block before
    qreal after = 0;
    bool keepWithNext = false; ///< never the last on a page when a block follows
    bool tabStops = false;     ///< left tab stops at blockTabStops
    bool grey = false;         ///< dark grey instead of black
};

/// In the order of QSBlock::Kind.
inline constexpr std::array<QSBlockStyle, 6> blockStyles = {{
    {.name = u"Title", .bold = true, .size = 16, .centred = true, .after = 6},
    {.name = u"Heading 1",
     .bold = true,
     .size = 12.5,
     .before = 8,
     .after = 4,
     .keepWithNext = true},
    {.name = u"Text body", .after = 8},
    {.name = u"Row", .after = 3, .tabStops = true},
    {.name = u"Signature", .before = 14, .keepWithNext = true}, // whose name stands below it
    {.name = u"Note", .italic = true, .size = 9, .before = 18, .grey = true},
}};

inline constexpr qreal blockLineHeight = 1.08; ///< times the font's own line height
inline constexpr std::array<qreal, 2> blockTabStops = {180, 340};
inline constexpr qreal blockTabDistance = 36; ///< between the stops that follow those
inline constexpr QColor blockBlack{0, 0, 0};
inline constexpr QColor blockGrey{64, 64, 64}; ///< 25 % white

[[nodiscard]] const QSBlockStyle &blockStyle(QSBlock::Kind kind);

/// The text of a block as it is set: cells are joined by tabs, every kind of line end is
/// U+2028, and what is not a character (control characters, halves of a surrogate pair) is U+FFFD.
[[nodiscard]] QString blockFlow(const QSBlock &block);
/// The same for a text of one line, such as a document's title: a line end is a space.
[[nodiscard]] QString lineFlow(const QString &text);
