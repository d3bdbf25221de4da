#include "QSLetters.h"

#include <QGlyphRun>
#include <QSet>
#include <QTextLayout>

#include <algorithm>

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
