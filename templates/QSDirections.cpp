#include "QSDirections.h"

#include <algorithm>

namespace {
constexpr QChar leftToRightMark(0x200E);
constexpr QChar rightToLeftMark(0x200F);
constexpr QChar firstEmbedding(0x202A);
constexpr QChar popEmbedding(0x202C);
constexpr QChar lastOverride(0x202E);
constexpr QChar firstIsolate(0x2066);
constexpr QChar firstStrongIsolate(0x2068);
constexpr QChar popIsolate(0x2069);

/// What ends a control; none for other characters.
QChar endOf(QChar character)
{
    if (character >= firstIsolate && character <= firstStrongIsolate) {
        return popIsolate;
    }
    const bool embeds = character >= firstEmbedding && character <= lastOverride;
    return embeds && character != popEmbedding ? popEmbedding : QChar();
}

bool runsToTheLeft(char32_t character)
{
    const QChar::Direction direction = QChar::direction(character);
    return direction == QChar::DirR || direction == QChar::DirAL || direction == QChar::DirAN;
}

/// The same controls, each with its end, and no end without its control.
QString closed(const QString &text)
{
    QString result;
    QString open; // the ends that are still due, the next one last
    for (const QChar character : text) {
        if (character != popEmbedding && character != popIsolate) {
            if (const QChar end = endOf(character); !end.isNull()) {
                open.append(end);
            }
            result.append(character);
        } else if (open.endsWith(character)) {
            open.chop(1);
            result.append(character);
        } else if (character == popIsolate && open.contains(popIsolate)) {
            while (!open.endsWith(popIsolate)) { // it ends what was left open inside as well
                result.append(open.back());
                open.chop(1);
            }
            open.chop(1);
            result.append(popIsolate);
        }
    }
    std::ranges::reverse(open);
    return result + open;
}
} // namespace

bool QSDirections::isIsolate(QChar character)
{
    return character >= firstIsolate && character <= popIsolate;
}

bool QSDirections::isControl(QChar character)
{
    return character == leftToRightMark || character == rightToLeftMark || isIsolate(character) ||
           (character >= firstEmbedding && character <= lastOverride);
}

QString QSDirections::isolated(const QString &text)
{
    if (std::ranges::none_of(text, isControl) &&
        std::ranges::none_of(text.toStdU32String(), runsToTheLeft)) {
        return text;
    }
    return firstStrongIsolate + closed(text) + popIsolate;
}

bool QSDirections::beginsOnTheRight(const QString &text)
{
    int depth = 0;
    bool hasOwnLetters = false;
    for (const char32_t character : text.toStdU32String()) {
        const QChar::Direction direction = QChar::direction(character);
        depth +=
            direction == QChar::DirLRI || direction == QChar::DirRLI || direction == QChar::DirFSI;
        depth -= direction == QChar::DirPDI && depth > 0;
        hasOwnLetters |= depth == 0 && (direction == QChar::DirL || runsToTheLeft(character));
    }
    return hasOwnLetters ? text.isRightToLeft() : QString(text).removeIf(isIsolate).isRightToLeft();
}

QString QSDirections::withMarks(QString text)
{
    const QChar mark = beginsOnTheRight(text) ? rightToLeftMark : leftToRightMark;
    std::ranges::replace_if(text, isIsolate, mark);
    return text;
}
