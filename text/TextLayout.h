#pragma once

#include <QByteArray>
#include <QColor>
#include <QRectF>
#include <QSizeF>
#include <QString>

#include <memory>

// The libraries' own names for their types.
using PangoLayout = struct _PangoLayout; // NOLINT(bugprone-reserved-identifier)
using cairo_t = struct _cairo;           // NOLINT(bugprone-reserved-identifier)

/// How letters look. Scripts that the family lacks come from the fonts that are installed for them.
struct TextStyle
{
    enum class Family { sans, serif, mono };

    Family family = Family::sans;
    bool bold = false;
    bool italic = false;
    double size = 12; ///< in points
    QColor colour = Qt::black;

    bool operator==(const TextStyle &) const = default;
};

/// A text set in lines, in any script: its letters shaped, each run in its own direction, those
/// that the font lacks taken from another. Line ends in the text are kept; longer lines are wrapped
/// between words, or inside one that is wider than a line.
///
/// All lengths are points, with y downward from the upper left corner of the first line. Any thread
/// may use it; each function locks.
class TextLayout final
{
public:
    /// width: of the lines; below zero for lines of any width.
    TextLayout(const QString &text, const TextStyle &style, double width = -1,
               Qt::Alignment alignment = Qt::AlignLeft);
    ~TextLayout();
    TextLayout(TextLayout &&) noexcept = default;
    TextLayout &operator=(TextLayout &&) noexcept = default;

    void setSize(double points);
    /// Cuts the text where its letters leave the room, and says so with an ellipsis.
    void cutTo(const QSizeF &room);

    [[nodiscard]] const TextStyle &style() const { return m_style; }
    /// What the lines take up, their steps and leading included.
    [[nodiscard]] QSizeF size() const;
    /// What the letters cover, which can lie beyond size(); empty when they leave no ink.
    [[nodiscard]] QRectF ink() const;
    /// From the upper edge to the line that the first letters stand on.
    [[nodiscard]] double baseline() const;
    /// True when its first paragraph begins on the right.
    [[nodiscard]] bool runsToTheLeft() const;
    /// Where in the text the first letter stands that leaves ink outside the room; the text's
    /// length when none does.
    [[nodiscard]] qsizetype firstOutside(const QRectF &room) const;
    /// Letters that no installed font has, each once.
    [[nodiscard]] QString missing() const;

    /// For TextCanvas, with the lock held.
    void show(cairo_t *target) const;

private:
    struct Unref
    {
        void operator()(PangoLayout *layout) const;
    };

    void setText(const QString &text);
    void applySize();
    [[nodiscard]] qsizetype position(int byte) const;

    TextStyle m_style;
    QString m_text;
    QByteArray m_utf8;
    std::unique_ptr<PangoLayout, Unref> m_layout;
};
