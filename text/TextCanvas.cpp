#include "TextCanvas.h"

#include "QtFaces.h"
#include "TextEngine.h"
#include "TextLayout.h"

#include <QPainterPath>

#include <pango/pangocairo.h>

#include <cairo-pdf.h>

#include <array>
#include <stdexcept>
#include <vector>

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

/// The shape of a glyph, where that is all that can be had of a font.
static void addOutline(cairo_t *canvas, const QPainterPath &outline, const QTransform &toPage)
{
    const QPainterPath path = toPage.map(outline);
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element &at = path.elementAt(i);
        if (at.isMoveTo()) {
            cairo_move_to(canvas, at.x, at.y);
        } else if (at.isLineTo()) {
            cairo_line_to(canvas, at.x, at.y);
        } else {
            const QPainterPath::Element &second = path.elementAt(++i);
            const QPainterPath::Element &end = path.elementAt(++i);
            cairo_curve_to(canvas, at.x, at.y, second.x, second.y, end.x, end.y);
        }
    }
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

PagesCanvas::PagesCanvas() : m_faces(std::make_unique<QtFaces>())
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
    const auto lock = TextEngine::lock();
    m_faces.reset();
}

void PagesCanvas::setTitle(const QString &title, const QString &creator)
{
    const auto lock = TextEngine::lock();
    cairo_surface_t *surface = cairo_get_target(canvas());
    cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_TITLE, title.toUtf8().constData());
    cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_CREATOR,
                                   creator.toUtf8().constData());
}

void PagesCanvas::draw(const SetGlyphs &set, const QColor &colour)
{
    const auto lock = TextEngine::lock();
    cairo_set_source_rgb(canvas(), colour.redF(), colour.greenF(), colour.blueF());
    cairo_font_face_t *face = m_faces->face(set.font);
    if (!face) {
        const double scale = set.size / set.font.pixelSize();
        for (qsizetype i = 0; i < set.glyphs.size(); ++i) {
            const QPointF &place = set.places.at(i);
            addOutline(canvas(), set.font.pathForGlyph(set.glyphs.at(i)),
                       {scale, 0, 0, scale, place.x(), place.y()});
        }
        cairo_fill(canvas());
        return;
    }
    std::vector<cairo_glyph_t> glyphs;
    for (qsizetype i = 0; i < set.glyphs.size(); ++i) {
        glyphs.push_back({set.glyphs.at(i), set.places.at(i).x(), set.places.at(i).y()});
    }
    const auto count = static_cast<int>(glyphs.size());
    const QByteArray text = set.text.toUtf8();
    const auto length = static_cast<int>(text.size());
    const cairo_text_cluster_t together = {length, count};
    cairo_set_font_face(canvas(), face);
    // A PDF has the widths of letters in whole thousandths, which adds up along a line. Where the
    // size changes by a hair Cairo says anew where the letters stand: with every word.
    constexpr double hair = 1e-6;
    if (set.text == u' ') {
        m_sizeDiffers = !m_sizeDiffers;
    }
    cairo_set_font_size(canvas(), m_sizeDiffers ? set.size * (1 + hair) : set.size);
    cairo_show_text_glyphs(canvas(), text.constData(), length, glyphs.data(), count, &together, 1,
                           {});
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
