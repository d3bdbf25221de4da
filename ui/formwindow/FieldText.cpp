#include "FieldText.h"

#include <algorithm>

namespace FieldText {
qsizetype length(QStringView text)
{
    return text.size() -
           std::ranges::count_if(text, [](QChar unit) { return unit.isLowSurrogate(); });
}

void cut(QString &text, int &position, int limit)
{
    qsizetype over = limit > 0 ? length(text) - limit : 0;
    while (over > 0) {
        const qsizetype end = position > 0 ? position : text.size();
        const bool pair = end > 1 && text.at(end - 1).isLowSurrogate();
        const qsizetype units = pair ? 2 : 1;
        text.remove(end - units, units);
        position = static_cast<int>(qMax<qsizetype>(0, position - units));
        --over;
    }
}

QValidator::State Limit::validate(QString &text, int &position) const
{
    for (const QChar &breaking : {QChar(u'\n'), QChar(u'\r'), QChar(QChar::LineSeparator),
                                  QChar(QChar::ParagraphSeparator)}) {
        text.replace(breaking, u' ');
    }
    if (m_limit > 0 && length(text) > m_limit) {
        Q_EMIT exceeded(text, position);
        cut(text, position, m_limit);
    }
    return Acceptable;
}
} // namespace FieldText
