#include "QtFaces.h"

#include <QtEndian>

#include <cairo-ft.h>

#include <array>

namespace {
/// What a font needs for its letters to be drawn and embedded, in the order of a font file.
constexpr std::array<const char *, 14> tableNames = {"CFF ", "OS/2", "cmap", "cvt ", "fpgm",
                                                     "glyf", "head", "hhea", "hmtx", "loca",
                                                     "maxp", "name", "post", "prep"};

template <typename Number>
void append(QByteArray &bytes, Number number)
{
    const Number big = qToBigEndian(number);
    bytes.append(reinterpret_cast<const char *>(&big), sizeof big);
}

/// A font file with the tables that are there; empty when there are none.
QByteArray fontFile(const QRawFont &font)
{
    constexpr qsizetype headSize = 12;
    constexpr qsizetype entrySize = 16;
    QList<std::pair<QByteArray, QByteArray>> tables;
    for (const char *name : tableNames) {
        if (const QByteArray table = font.fontTable(name); !table.isEmpty()) {
            tables.append({name, table});
        }
    }
    if (tables.isEmpty()) {
        return {};
    }
    QByteArray file;
    file.append(tables.constFirst().first == "CFF " ? QByteArray("OTTO")
                                                    : QByteArray("\0\1\0\0", 4));
    append(file, static_cast<quint16>(tables.size()));
    file.append(6, '\0'); // what speeds up a search through the tables; readers do without
    QByteArray content;
    const qsizetype begin = headSize + entrySize * tables.size();
    for (const auto &[name, table] : tables) {
        file.append(name);
        append(file, quint32{0}); // a sum that readers do without as well
        append(file, static_cast<quint32>(begin + content.size()));
        append(file, static_cast<quint32>(table.size()));
        content.append(table);
        content.append(-content.size() & 3, '\0');
    }
    return file + content;
}

/// A face and the file that it reads from. It has a library of its own, which is then no other
/// thread's either.
struct OpenFont
{
    explicit OpenFont(QByteArray bytes) : file(std::move(bytes))
    {
        if (FT_Init_FreeType(&library) == 0) {
            FT_New_Memory_Face(library, reinterpret_cast<const FT_Byte *>(file.constData()),
                               static_cast<FT_Long>(file.size()), 0, &face);
        }
    }
    ~OpenFont() { FT_Done_FreeType(library); } // and the face with it
    OpenFont(const OpenFont &) = delete;
    OpenFont &operator=(const OpenFont &) = delete;

    QByteArray file;
    FT_Library library = nullptr;
    FT_Face face = nullptr;
};
} // namespace

QtFaces::Face QtFaces::make(const QRawFont &font)
{
    auto open = std::make_unique<OpenFont>(fontFile(font));
    if (!open->face) {
        return nullptr;
    }
    const Face face(cairo_ft_font_face_create_for_ft_face(open->face, FT_LOAD_NO_HINTING),
                    &cairo_font_face_destroy);
    // Cairo may keep the face for longer than this object is there.
    static const cairo_user_data_key_t key = {};
    const auto close = [](void *opened) {
        std::unique_ptr<OpenFont>(static_cast<OpenFont *>(opened));
    };
    if (cairo_font_face_set_user_data(face.get(), &key, open.get(), close) ==
        CAIRO_STATUS_SUCCESS) {
        (void)open.release();
        return face;
    }
    return nullptr;
}

cairo_font_face_t *QtFaces::face(const QRawFont &font)
{
    if (const auto known = m_sizes.constFind(font); known != m_sizes.cend()) {
        return known->get();
    }
    // Not even a name can be asked of what Qt puts in place of a letter that no font has.
    const QByteArray head = font.fontTable("head");
    Face found;
    if (!head.isEmpty()) {
        const QString name = font.familyName() + u'\n' + font.styleName();
        Face &known = m_faces[head + name.toUtf8()];
        known = known ? known : make(font);
        found = known;
    }
    return m_sizes.insert(font, found)->get();
}
