#pragma once

#include <QByteArray>
#include <QHash>
#include <QRawFont>

#include <memory>

// The library's own name for its type.
using cairo_font_face_t = struct _cairo_font_face; // NOLINT(bugprone-reserved-identifier)

/// Qt's fonts as Cairo's, made of the very tables that Qt reads: a glyph has the same number and
/// the same shape in both. To be used with the engine's lock held.
class QtFaces final
{
public:
    /// The same face for every size of a font; belongs to this object. Null for a font that is not
    /// kept in tables.
    [[nodiscard]] cairo_font_face_t *face(const QRawFont &font);

private:
    using Face = std::shared_ptr<cairo_font_face_t>;

    [[nodiscard]] static Face make(const QRawFont &font);

    QHash<QByteArray, Face> m_faces; ///< by what tells one font from another
    QHash<QRawFont, Face> m_sizes;
};
