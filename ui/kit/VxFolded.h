#pragma once

#include <QList>
#include <QString>

/// A text as a search sees it, without case and accents, that knows where its letters stood. A
/// value.
class VxFolded final
{
public:
    struct Span
    {
        qsizetype begin = 0;
        qsizetype end = 0; ///< behind the last character
    };

    explicit VxFolded(const QString &text);

    [[nodiscard]] const QString &text() const { return m_text; }
    /// Where a folded word occurs, in positions of the text before it was folded.
    [[nodiscard]] QList<Span> occurrences(const QString &word) const;

private:
    QString m_text;
    QList<qsizetype> m_origins; ///< of each character of the folded text
    qsizetype m_length;         ///< of the text before it was folded
};
