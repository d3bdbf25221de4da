#include "TextCanvas.h"

#include "TextEngine.h"
#include "TextLayout.h"

#include <pango/pangocairo.h>

#include <cairo-pdf.h>

#include <array>
#include <stdexcept>

void TextCanvas::Destroy::operator()(cairo_t *canvas) const
{
    const auto lock = TextEngine::lock();
    cairo_destroy(canvas);
}

TextCanvas::~TextCanvas() = default;

void TextCanvas::fill(const QRectF &rect, const QColor &colour)
{
    cairo_set_source_rgb(canvas(), colour.redF(), colour.greenF(), colour.blueF());
    cairo_rectangle(canvas(), rect.x(), rect.y(), rect.width(), rect.height());
    cairo_fill(canvas());
}

void TextCanvas::stroke(double width, const QColor &colour)
{
    cairo_set_source_rgb(canvas(), colour.redF(), colour.greenF(), colour.blueF());
    cairo_set_line_width(canvas(), width);
    cairo_stroke(canvas());
}

void TextCanvas::line(const QPointF &from, const QPointF &to, double width, const QColor &colour)
{
    cairo_move_to(canvas(), from.x(), from.y());
    cairo_line_to(canvas(), to.x(), to.y());
    stroke(width, colour);
}

void TextCanvas::outline(const QRectF &rect, double width, const QColor &colour, bool dashed)
{
    constexpr std::array<double, 1> dash = {3};
    cairo_save(canvas());
    cairo_set_dash(canvas(), dash.data(), dashed ? 1 : 0, 0);
    cairo_rectangle(canvas(), rect.x(), rect.y(), rect.width(), rect.height());
    stroke(width, colour);
    cairo_restore(canvas());
}

void TextCanvas::draw(const TextLayout &text, const QPointF &corner)
{
    const auto lock = TextEngine::lock();
    cairo_move_to(canvas(), corner.x(), corner.y());
    text.show(canvas());
}

PictureCanvas::PictureCanvas(QImage &picture, const QTransform &pointsToDots, const QRectF &clip)
{
    const auto format =
        picture.format() == QImage::Format_RGB32 ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32;
    cairo_surface_t *surface = cairo_image_surface_create_for_data(
        picture.bits(), format, picture.width(), picture.height(),
        static_cast<int>(picture.bytesPerLine()));
    setCanvas(Canvas(cairo_create(surface)));
    cairo_surface_destroy(surface); // the canvas keeps it
    const cairo_matrix_t matrix = {pointsToDots.m11(), pointsToDots.m12(), pointsToDots.m21(),
                                   pointsToDots.m22(), pointsToDots.dx(),  pointsToDots.dy()};
    cairo_set_matrix(canvas(), &matrix);
    cairo_rectangle(canvas(), clip.x(), clip.y(), clip.width(), clip.height());
    cairo_clip(canvas());
}

PictureCanvas::~PictureCanvas()
{
    cairo_surface_flush(cairo_get_target(canvas()));
}

PagesCanvas::PagesCanvas()
{
    const auto write = [](void *bytes, const unsigned char *data, unsigned int length) {
        static_cast<QByteArray *>(bytes)->append(reinterpret_cast<const char *>(data), length);
        return CAIRO_STATUS_SUCCESS;
    };
    cairo_surface_t *surface = cairo_pdf_surface_create_for_stream(write, &m_bytes, 1, 1);
    setCanvas(Canvas(cairo_create(surface)));
    cairo_surface_destroy(surface);
}

PagesCanvas::~PagesCanvas()
{
    setCanvas(nullptr); // writes its last bytes while there is room for them
}

void PagesCanvas::beginPage(const QSizeF &size)
{
    const auto lock = TextEngine::lock();
    if (m_begun) {
        cairo_show_page(canvas());
    }
    m_begun = true;
    cairo_pdf_surface_set_size(cairo_get_target(canvas()), size.width(), size.height());
}

QByteArray PagesCanvas::finish()
{
    const auto lock = TextEngine::lock();
    cairo_show_page(canvas());
    cairo_surface_t *surface = cairo_get_target(canvas());
    cairo_surface_finish(surface);
    if (const cairo_status_t status = cairo_surface_status(surface);
        status != CAIRO_STATUS_SUCCESS) {
        throw std::runtime_error(cairo_status_to_string(status));
    }
    return m_bytes;
}
