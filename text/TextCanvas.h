#pragma once

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QList>
#include <QPointF>
#include <QRawFont>
#include <QRectF>
#include <QString>
#include <QTransform>

#include <memory>

class QtFaces;
class TextLayout;
// The library's own name for its type.
using cairo_t = struct _cairo; // NOLINT(bugprone-reserved-identifier)

/// What texts are drawn on, in points with y downward; one thread at a time.
class TextCanvas
{
public:
    virtual ~TextCanvas();
    TextCanvas(const TextCanvas &) = delete;
    TextCanvas &operator=(const TextCanvas &) = delete;

    void fill(const QRectF &rect, const QColor &colour);
    void line(const QPointF &from, const QPointF &to, double width, const QColor &colour);
    void outline(const QRectF &rect, double width, const QColor &colour, bool dashed);
    /// The text with its upper left corner there.
    void draw(const TextLayout &text, const QPointF &corner);

protected:
    struct Destroy
    {
        void operator()(cairo_t *canvas) const;
    };
    using Canvas = std::unique_ptr<cairo_t, Destroy>;

    TextCanvas() = default;
    [[nodiscard]] cairo_t *canvas() const { return m_canvas.get(); }
    void setCanvas(Canvas canvas) { m_canvas = std::move(canvas); }

private:
    void stroke(double width, const QColor &colour);

    Canvas m_canvas;
};

/// A picture to draw on, which has to outlive the canvas and must be of Format_RGB32 or
/// Format_ARGB32_Premultiplied.
class PictureCanvas final : public TextCanvas
{
public:
    /// clip: in points; what lies outside is not drawn.
    PictureCanvas(QImage &picture, const QTransform &pointsToDots, const QRectF &clip);
    ~PictureCanvas() override;
};

/// Glyphs of one font that Qt has set, and what they are read as: a letter, one with its marks, or
/// several that have grown together.
struct SetGlyphs
{
    QRawFont font;
    double size = 12; ///< of the font on the page, in points
    QList<quint32> glyphs;
    QList<QPointF> places; ///< of each glyph on the page
    QString text;          ///< empty for glyphs that are read together with others
};

/// Pages of a PDF. Letters are embedded, as few of each font as are used on all pages together, and
/// can be read and copied again.
class PagesCanvas final : public TextCanvas
{
public:
    PagesCanvas();
    ~PagesCanvas() override;

    /// Ends the page before and begins one of this size.
    void beginPage(const QSizeF &size);
    /// What a PDF says of itself.
    void setTitle(const QString &title, const QString &creator);
    using TextCanvas::draw;
    void draw(const SetGlyphs &set, const QColor &colour);
    /// The PDF; nothing can be drawn afterwards. Throws std::runtime_error when the letters can't
    /// be written.
    [[nodiscard]] QByteArray finish();

private:
    QByteArray m_bytes;
    std::unique_ptr<QtFaces> m_faces;
    bool m_begun = false;
    bool m_sizeDiffers = false; ///< by a hair from the one that was asked for
};
