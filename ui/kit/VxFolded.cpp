#include "VxFolded.h"

namespace {
/// One letter, of one or two characters, without case and accents.
QString folded(QStringView letter)
{
    if (letter.front().unicode() < 0x80) { // most of what there is, and much faster
        return QString(letter.front().toLower());
    }
    QString parts = letter.toString().normalized(QString::NormalizationForm_D).toCaseFolded();
    parts.removeIf([](QChar part) { return part.category() == QChar::Mark_NonSpacing; });
    return parts;
}
} // namespace

VxFolded::VxFolded(const QString &text) : m_length(text.size())
{
    m_text.reserve(m_length);
    m_origins.reserve(m_length);
    for (qsizetype at = 0; at < m_length;) {
        const bool pair = text.at(at).isHighSurrogate() && at + 1 < m_length;
        const qsizetype size = pair ? 2 : 1;
        for (QChar part : folded(QStringView(text).sliced(at, size))) {
            m_text.append(part);
            m_origins.append(at);
        }
        at += size;
    }
}

QList<VxFolded::Span> VxFolded::occurrences(const QString &word) const
{
    QList<Span> found;
    qsizetype at = word.isEmpty() ? -1 : m_text.indexOf(word);
    while (at >= 0) {
        const qsizetype behind = at + word.size();
        found.append(
            {m_origins.at(at), behind < m_origins.size() ? m_origins.at(behind) : m_length});
        at = m_text.indexOf(word, behind);
    }
    return found;
}
