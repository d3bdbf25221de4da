#include "QSBlockStyle.h"

namespace {
bool isLineEnd(QChar c)
{
    // Word processors paste their own line break as a vertical tab, their page break as a form
    // feed.
    return c == u'\n' || c == u'\r' || c == u'\v' || c == u'\f' || c == QChar(0x85) ||
           c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

bool isCharacter(QStringView text, qsizetype i)
{
    const QChar c = text[i];
    if (c.isHighSurrogate()) {
        return i + 1 < text.size() && text[i + 1].isLowSurrogate();
    }
    if (c.isLowSurrogate()) {
        return i > 0 && text[i - 1].isHighSurrogate();
    }
    return c == u'\t' || (c.category() != QChar::Other_Control && c.unicode() < 0xFFFE);
}

QString cleaned(QStringView text, QChar lineEnd)
{
    QString clean;
    clean.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') {
            continue;
        }
        if (isLineEnd(text[i])) {
            clean += lineEnd;
        } else {
            clean += isCharacter(text, i) ? text[i] : QChar(QChar::ReplacementCharacter);
        }
    }
    return clean;
}
} // namespace

const QSBlockStyle &blockStyle(QSBlock::Kind kind)
{
    return blockStyles[static_cast<std::size_t>(kind)];
}

QString blockFlow(const QSBlock &block)
{
    return cleaned(block.cells.join(u'\t'), QChar::LineSeparator);
}

QString lineFlow(const QString &text)
{
    return cleaned(text, u' ');
}
