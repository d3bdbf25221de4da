#pragma once

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QTransform>

#include <memory>

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

/// Pages of a PDF. Letters are embedded, as few of each font as are used on all pages together, and
/// can be read and copied again.
class PagesCanvas final : public TextCanvas
{
public:
    PagesCanvas();
    ~PagesCanvas() override;

    /// Ends the page before and begins one of this size.
    void beginPage(const QSizeF &size);
    /// The PDF; nothing can be drawn afterwards. Throws std::runtime_error when the letters can't
    /// be written.
    [[nodiscard]] QByteArray finish();

private:
    QByteArray m_bytes;
    bool m_begun = false;
};
