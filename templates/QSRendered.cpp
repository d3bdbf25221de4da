#include "QSRendered.h"

using namespace Qt::Literals::StringLiterals;

QString QSBlock::text() const
{
    return cells.join(u"    "_s);
}

QString QSRendered::plainText() const
{
    QStringList texts;
    texts.reserve(blocks.size());
    for (const QSBlock &block : blocks) {
        texts.append(block.text());
    }
    return texts.join(u"\n\n"_s);
}
