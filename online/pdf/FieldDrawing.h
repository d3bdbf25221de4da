#pragma once

#include "TextLayout.h"
#include "Widget.h"

#include <QSizeF>
#include <QString>
#include <QStringList>

#include <vector>

class TextCanvas;

/// How a text, a choice or a list is drawn in its field: in the form's font and size where the
/// whole text fits, else smaller, down to what can be read. Judged is the letters' ink, not the
/// boxes that a font declares for them. Whatever does not fit even so ends in an ellipsis.
///
/// Lengths are points from the upper left corner of the field as it is read, before it is turned.
/// A drawing does not change, and any thread may draw it: its texts lock themselves.
class FieldDrawing final
{
public:
    explicit FieldDrawing(const Widget &widget);

    [[nodiscard]] const QSizeF &size() const { return m_size; }
    /// True when nothing is drawn, not even a frame.
    [[nodiscard]] bool isEmpty() const;
    [[nodiscard]] bool hasText() const { return !m_lines.empty(); }
    /// What can't be seen, from the word on where it is cut; empty when all can.
    [[nodiscard]] const QString &rest() const { return m_rest; }
    /// Letters that no installed font has.
    [[nodiscard]] QString missing() const;
    void draw(TextCanvas &canvas) const;
    /// What is to be read on it, piece by piece.
    [[nodiscard]] static QStringList texts(const Widget &widget);

private:
    struct Line
    {
        TextLayout text;
        QPointF corner;
        bool chosen = false; ///< of a list: drawn on a bar
    };

    void setOneLine(const Widget &widget, const QString &text);
    void setLines(const Widget &widget, const QString &text);
    void setComb(const Widget &widget, const QString &text);
    void setList(const Widget &widget);
    void drawFrame(TextCanvas &canvas) const;

    QSizeF m_size;
    FieldFrame m_frame;
    int m_cells = 0;   ///< of a comb
    double m_step = 0; ///< from one line of a list to the next
    std::vector<Line> m_lines;
    QString m_rest;
};
