#include "DocxText.h"

#include <QXmlStreamReader>
#include <QtEndian>

#include <limits>

#include <zlib.h>

using namespace Qt::Literals::StringLiterals;

namespace {
/// A little-endian number of the archive; 0 outside of it, which no check below lets pass.
template <typename Number>
qsizetype number(QByteArrayView bytes, qsizetype at)
{
    constexpr qsizetype size = sizeof(Number);
    return at >= 0 && at + size <= bytes.size()
               ? static_cast<qsizetype>(qFromLittleEndian<Number>(bytes.data() + at))
               : 0;
}

/// Unpacks what zip archives call "deflated"; null when it is damaged.
QByteArray inflated(QByteArrayView packed, qsizetype size)
{
    constexpr qsizetype largest = 67'108'864;
    if (size <= 0 || size > largest) {
        return {};
    }
    QByteArray data(size, Qt::Uninitialized);
    z_stream stream{};
    // zlib promises not to write to what it reads.
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef *>(data.data());
    stream.avail_out = static_cast<uInt>(size);
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) {
        return {};
    }
    const bool whole = inflate(&stream, Z_FINISH) == Z_STREAM_END && stream.avail_out == 0;
    inflateEnd(&stream);
    return whole ? data : QByteArray();
}

/// The file that an entry of the archive's directory speaks of.
QByteArray unpacked(QByteArrayView docx, qsizetype entry)
{
    constexpr qsizetype stored = 0;
    const qsizetype packedSize = number<quint32>(docx, entry + 20);
    const qsizetype local = number<quint32>(docx, entry + 42);
    const qsizetype begin =
        local + 30 + number<quint16>(docx, local + 26) + number<quint16>(docx, local + 28);
    if (begin + packedSize > docx.size()) {
        return {};
    }
    const QByteArrayView packed = docx.sliced(begin, packedSize);
    return number<quint16>(docx, entry + 10) == stored
               ? packed.toByteArray()
               : inflated(packed, number<quint32>(docx, entry + 24));
}
} // namespace

QByteArray DocxText::part(const QByteArray &docx, const QByteArray &name)
{
    const qsizetype end = docx.lastIndexOf("PK\x05\x06");
    if (end < 0) {
        return {};
    }
    qsizetype entry = number<quint32>(docx, end + 16);
    for (qsizetype left = number<quint16>(docx, end + 10); left > 0; --left) {
        const qsizetype length = number<quint16>(docx, entry + 28);
        if (docx.mid(entry + 46, length) == name) {
            return unpacked(docx, entry);
        }
        entry +=
            46 + length + number<quint16>(docx, entry + 30) + number<quint16>(docx, entry + 32);
    }
    return {};
}

QString DocxText::of(const QByteArray &docx)
{
    QString text;
    QXmlStreamReader xml(part(docx, "word/document.xml"));
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == "t"_L1) {
            text += xml.readElementText();
        } else if (xml.isStartElement() && xml.name() == "tab"_L1) {
            text += u'\t';
        } else if (xml.isEndElement() && xml.name() == "p"_L1) {
            text += u'\n';
        }
    }
    return xml.hasError() ? QString() : text;
}
