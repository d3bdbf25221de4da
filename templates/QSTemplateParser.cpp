#include "QSTemplate.h"

#include "QSError.h"

using namespace Qt::Literals::StringLiterals;

namespace {
[[noreturn]] void fail(const QString &fileName, const QString &what)
{
    throw QSError::invalid(fileName + u": "_s + what);
}

/// Line ends become "\n" and a byte order mark goes, so that a file saved by any editor reads the
/// same.
QString plainLines(QString text)
{
    if (text.startsWith(QChar::ByteOrderMark)) {
        text.remove(0, 1);
    }
    return text.replace("\r\n"_L1, "\n"_L1);
}

/// Reads "key | label | kind | profile:key | required"; absent when the first three are not there.
std::optional<QSField> readField(const QString &value)
{
    QStringList parts = value.split(u'|');
    for (QString &part : parts) {
        part = part.trimmed();
    }
    const std::optional<QSFieldKind> kind = fieldKind(parts.value(2));
    if (!kind) {
        return std::nullopt;
    }
    QSField field{parts.at(0), parts.at(1), *kind, {}, parts.value(4) == "required"_L1};
    const QString profile = parts.value(3);
    if (constexpr auto prefix = "profile:"_L1; profile.startsWith(prefix)) {
        field.profileKey = profile.sliced(prefix.size());
    }
    return field;
}

struct Header
{
    QMap<QString, QString> texts; ///< every key but "field"; of a repeated key the last line
    QList<QSField> fields;
};

Header readHeader(const QString &text, const QString &fileName)
{
    Header header;
    for (const QString &untrimmed : text.split(u'\n')) {
        const QString line = untrimmed.trimmed();
        const qsizetype colon = line.indexOf(u':');
        // Anything without a colon is a comment.
        if (colon < 0) {
            continue;
        }
        const QString key = line.first(colon).trimmed();
        const QString value = line.sliced(colon + 1).trimmed();
        if (key != "field"_L1) {
            header.texts.insert(key, value);
        } else if (const std::optional<QSField> field = readField(value)) {
            header.fields.append(*field);
        } else {
            fail(fileName, u"bad field line: "_s + line);
        }
    }
    return header;
}
} // namespace

QSTemplate QSTemplate::parse(const QString &text, const QString &fileName)
{
    constexpr auto separator = "\n===\n"_L1;
    const QString plain = plainLines(text);
    const qsizetype headerEnd = plain.indexOf(separator);
    if (headerEnd < 0) {
        fail(fileName, u"no \"===\" line between header and body"_s);
    }
    const Header header = readHeader(plain.first(headerEnd), fileName);

    QSTemplate read;
    read.id = header.texts.value(u"id"_s);
    read.title = header.texts.value(u"title"_s);
    read.version = header.texts.value(u"version"_s);
    read.date = header.texts.value(u"date"_s);
    if (read.id.isEmpty() || read.title.isEmpty() || read.version.isEmpty() ||
        read.date.isEmpty()) {
        fail(fileName, u"id, title, version and date are required"_s);
    }
    const QString category = header.texts.value(u"category"_s);
    read.category = category.isEmpty() ? u"General"_s : category;
    read.summary = header.texts.value(u"summary"_s);
    read.keywords = header.texts.value(u"keywords"_s);
    read.info = header.texts.value(u"info"_s);
    read.fields = header.fields;
    read.body = plain.sliced(headerEnd + separator.size());
    read.fileName = fileName;
    return read;
}
