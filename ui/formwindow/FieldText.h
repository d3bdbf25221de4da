#pragma once

#include <QString>
#include <QValidator>

/// What may be typed into a text field. A character outside the basic plane counts once, though it
/// takes two UTF-16 units, and is never cut in half.
namespace FieldText {
[[nodiscard]] qsizetype length(QStringView text);
/// Takes out what is beyond a limit (0 for none), before a position: of a pasted text the end is
/// dropped and nothing that stood there. The position moves along.
void cut(QString &text, int &position, int limit);

/// Keeps a line edit within a limit, and on one line.
class Limit final : public QValidator
{
    Q_OBJECT

public:
    Limit(int limit, QObject *parent) : QValidator(parent), m_limit(limit) {}
    [[nodiscard]] State validate(QString &text, int &position) const override;

Q_SIGNALS:
    /// A text with the cursor at that place is longer, and is cut now.
    void exceeded(const QString &text, int position) const;

private:
    int m_limit;
};
} // namespace FieldText
