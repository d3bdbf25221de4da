#include "BackupJSON.h"

#include "BackupBase64.h"
#include "QSError.h"
#include "QSFile.h"

#include <rapidjson/prettywriter.h>

#include <QIODevice>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
/// A device as the JSON writer wants it, with large writes.
class DeviceOutput final
{
public:
    using Ch = char;

    explicit DeviceOutput(QIODevice &device) : m_device(device) { m_buffer.reserve(capacity); }

    void Put(char character)
    {
        m_buffer.append(character);
        if (m_buffer.size() == capacity) {
            Flush();
        }
    }
    void append(QByteArrayView text)
    {
        Flush();
        writeOut(text);
    }
    void Flush()
    {
        writeOut(m_buffer);
        m_buffer.resize(0);
    }

private:
    void writeOut(QByteArrayView text)
    {
        if (!QSFile::writeAll(m_device, text)) {
            throw QSError::io(u"The file could not be written: "_s + m_device.errorString());
        }
    }

    static constexpr qsizetype capacity = 262'144;
    QIODevice &m_device;
    QByteArray m_buffer;
};

class Writer final
{
public:
    explicit Writer(QIODevice &device) : m_output(device), m_json(m_output) {}

    void write(const QSBackup::File &file, const BackupJSON::Source &source)
    {
        m_json.StartObject();
        text("app", file.app);
        text("created", file.created);
        m_json.Key("documents");
        m_json.StartArray();
        for (const QSBackup::Doc &document : file.documents) {
            write(document);
        }
        m_json.EndArray();
        m_json.Key("filledPDFs");
        m_json.StartArray();
        for (const QSBackup::PDF &pdf : file.filledPDFs) {
            if (const std::optional<QByteArray> bytes = source(pdf)) {
                write(pdf, *bytes);
            }
        }
        m_json.EndArray();
        text("format", file.format);
        texts("profile", file.profile);
        m_json.Key("version");
        m_json.Int64(file.version);
        m_json.EndObject();
        m_output.Flush();
    }

private:
    void write(const QSBackup::Doc &document)
    {
        m_json.StartObject();
        number("created", document.created);
        number("modified", document.modified);
        text("state", document.state);
        text("templateID", document.templateID);
        text("templateVersion", document.templateVersion);
        text("title", document.title);
        texts("values", document.values);
        m_json.EndObject();
    }

    void write(const QSBackup::PDF &pdf, const QByteArray &bytes)
    {
        m_json.StartObject();
        number("created", pdf.created);
        data("data", bytes);
        text("entryID", pdf.entryID);
        text("fileName", pdf.fileName);
        number("modified", pdf.modified);
        text("title", pdf.title);
        m_json.EndObject();
    }

    void number(const char *key, double value)
    {
        m_json.Key(key);
        m_json.Double(value);
    }

    void text(const char *key, const QString &value)
    {
        m_json.Key(key);
        string(value);
    }

    void texts(const char *key, const QMap<QString, QString> &values)
    {
        m_json.Key(key);
        m_json.StartObject();
        for (auto value = values.cbegin(); value != values.cend(); ++value) {
            string(value.key());
            string(value.value());
        }
        m_json.EndObject();
    }

    void string(const QString &value)
    {
        const QByteArray utf8 = value.toUtf8();
        m_json.String(utf8.constData(), static_cast<rapidjson::SizeType>(utf8.size()));
    }

    /// Base64 needs no escapes, so it goes past the writer, which would look at each letter.
    void data(const char *key, QByteArrayView bytes)
    {
        constexpr qsizetype piece = 196'608; // whole groups of three bytes
        m_json.Key(key);
        m_json.RawValue("\"", 1, rapidjson::kStringType);
        for (qsizetype at = 0; at < bytes.size(); at += piece) {
            m_output.append(
                BackupBase64::encoded(bytes.sliced(at, std::min(piece, bytes.size() - at))));
        }
        m_output.Put('"');
    }

    DeviceOutput m_output;
    rapidjson::PrettyWriter<DeviceOutput> m_json;
};
} // namespace

void BackupJSON::write(const QSBackup::File &file, const Source &source, QIODevice &device)
{
    Writer(device).write(file, source);
}
