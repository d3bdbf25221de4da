#include "BackupJSON.h"

#include "BackupBase64.h"
#include "QSError.h"
#include "QSMutation.h"

#include <rapidjson/reader.h>

#include <QIODevice>
#include <QSet>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <limits>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

using namespace Qt::Literals::StringLiterals;

namespace {
QSError notABackup()
{
    return QSError::badBackup(u"it is not a Vell Quillstone backup file."_s);
}

/// A device as the JSON reader wants it, with large reads. Behind the end it goes on with NUL,
/// which ends the reader's work anywhere.
class DeviceInput final
{
public:
    using Ch = char;

    DeviceInput(QIODevice &device, const BackupJSON::Meanwhile &meanwhile)
        : m_device(device), m_meanwhile(meanwhile), m_buffer(capacity, '\0')
    {
        fill();
    }

    [[nodiscard]] char Peek() const { return *m_next; }
    char Take()
    {
        const char character = *m_next;
        if (++m_next == m_end) {
            fill();
        }
        if (character == '"' && m_decoded != nullptr) {
            decodeAhead(*std::exchange(m_decoded, nullptr));
        }
        return character;
    }
    [[nodiscard]] std::size_t Tell() const
    {
        return m_filled - static_cast<std::size_t>(m_end - m_next);
    }
    /// False at a NUL of the file's own.
    [[nodiscard]] bool isAtEnd() const { return m_isAtEnd; }

    /// Lets the reader see only the end of the next text: what stands before it is base64 without
    /// padding, whole groups of four, and goes decoded to the bytes. Letter by letter, the reader
    /// would take far longer than the disk.
    void decodeNextText(QByteArray &bytes) { m_decoded = &bytes; }

    // Only for parsing in place, but the reader's code names them.
    char *PutBegin() { return nullptr; }
    void Put(char /*character*/) {}
    std::size_t PutEnd(char * /*begin*/) { return 0; }

private:
    /// Reads on, behind as many bytes as are still to be taken.
    void fill()
    {
        if (m_meanwhile) {
            m_meanwhile();
        }
        const qsizetype kept = m_end - m_next;
        std::memmove(m_buffer.data(), m_next, static_cast<std::size_t>(kept));
        qint64 size = m_device.read(m_buffer.data() + kept, capacity - kept);
        if (size < 0) {
            throw QSError::io(u"The backup could not be read: "_s + m_device.errorString());
        }
        m_isAtEnd = size == 0;
        if (m_isAtEnd) {
            m_buffer[kept] = '\0';
            size = 1;
        }
        m_next = m_buffer.constData();
        m_end = m_next + kept + size;
        m_filled += static_cast<std::size_t>(size);
    }

    void decodeAhead(QByteArray &bytes)
    {
        constexpr qsizetype group = 4;
        while (!m_isAtEnd) {
            const QByteArrayView ahead(m_next, m_end);
            const qsizetype quote = ahead.indexOf('"');
            const qsizetype length = quote < 0 ? ahead.size() : quote;
            // The last group may have padding.
            const QByteArrayView text =
                ahead.first(std::max<qsizetype>(length - 1, 0) / group * group);
            if (text.endsWith('=') || !BackupBase64::appendDecoded(text, bytes)) {
                return;
            }
            m_next += text.size();
            if (quote >= 0) {
                return;
            }
            fill();
        }
    }

    static constexpr qsizetype capacity = 262'144;
    QIODevice &m_device;
    const BackupJSON::Meanwhile &m_meanwhile;
    QByteArray m_buffer;
    const char *m_next = m_buffer.constData();
    const char *m_end = m_next;
    std::size_t m_filled = 0;
    bool m_isAtEnd = false;
    QByteArray *m_decoded = nullptr; ///< where the next text goes
};

constexpr double infinity = std::numeric_limits<double>::infinity();

/// The number that the whole text stands for; absent when the type can't hold it. The parser's own
/// conversion is either not exact or, asked to be, undefined for some ways to write zero.
template <typename Number>
std::optional<Number> number(std::string_view text)
{
    Number number{};
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc{} && stop == end ? std::optional(number) : std::nullopt;
}

/// Where in a backup the parser is.
enum class Place { file, documents, document, values, filledPDFs, filledPDF, profile, unknown };

/// Follows the parser through the file and fills the records. Of keys that it does not know it
/// skips the values: a newer version may have more.
class Collector final : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, Collector>
{
public:
    Collector(DeviceInput &input, const BackupJSON::Sink &sink) : m_input(input), m_sink(sink) {}

    /// The file, once all of it was parsed. Throws what is wrong with it.
    QSBackup::File file()
    {
        if (m_file.format != QSBackup::format && !QSMutation::on(u"foreign-backup-restored")) {
            throw notABackup();
        }
        if (m_file.version > QSBackup::formatVersion) {
            throw QSError::badBackup(u"it was made by a newer version of the app."_s);
        }
        if (m_failure) {
            throw *m_failure;
        }
        return std::move(m_file);
    }

    // What the parser calls, Default() for true, false and null.
    bool Default() { return take(nullptr); }
    bool RawNumber(const char *text, rapidjson::SizeType length, bool /*copy*/)
    {
        const std::string_view digits(text, length);
        const auto whole = number<qint64>(digits);
        return whole ? take(*whole) : take(number<double>(digits).value_or(infinity));
    }
    bool String(const char *text, rapidjson::SizeType length, bool /*copy*/)
    {
        return take(utf8(text, length));
    }
    bool StartObject() { return enter(true); }
    bool Key(const char *text, rapidjson::SizeType length, bool /*copy*/)
    {
        const QByteArrayView name = utf8(text, length);
        if (m_place == Place::values || m_place == Place::profile) {
            m_word = QString::fromUtf8(name);
            require(!map().contains(m_word));
        } else if (m_place != Place::unknown) {
            m_member = find(name);
            require(m_member == nullptr || !std::exchange(m_member->seen, true));
            if (m_member != nullptr && std::holds_alternative<QByteArray *>(m_member->target)) {
                m_input.decodeNextText(*std::get<QByteArray *>(m_member->target));
            }
        }
        return true;
    }
    bool EndObject(rapidjson::SizeType /*count*/)
    {
        for (const Member &member : m_members) {
            require(member.in != m_place || member.seen);
        }
        if (m_place == Place::document) {
            m_file.documents.append(std::exchange(m_document, {}));
        } else if (m_place == Place::filledPDF) {
            finishPDF();
        }
        m_place = m_outer.takeLast();
        return true;
    }
    bool StartArray() { return enter(false); }
    bool EndArray(rapidjson::SizeType /*count*/)
    {
        m_place = m_outer.takeLast();
        return true;
    }

private:
    /// A key that an object must have, and where its value goes: the type says what it may be.
    /// A place stands for an object or array that is read there.
    struct Member
    {
        Place in;
        QLatin1StringView key;
        std::variant<QString *, double *, qint64 *, QByteArray *, Place> target;
        bool seen = false;
    };

    static void require(bool holds)
    {
        if (!holds) {
            throw notABackup();
        }
    }

    static QByteArrayView utf8(const char *text, rapidjson::SizeType length)
    {
        const QByteArrayView view(text, static_cast<qsizetype>(length));
        require(view.isValidUtf8());
        return view;
    }

    [[nodiscard]] Member *find(QByteArrayView key)
    {
        const auto found = std::ranges::find_if(m_members, [&](const Member &member) {
            return member.in == m_place && member.key == QLatin1StringView(key);
        });
        return found == m_members.end() ? nullptr : &*found;
    }

    [[nodiscard]] QMap<QString, QString> &map()
    {
        return m_place == Place::profile ? m_file.profile : m_document.values;
    }

    static bool isArray(Place place)
    {
        return place == Place::documents || place == Place::filledPDFs;
    }

    /// Where an object or array that begins here leads.
    [[nodiscard]] Place inner(bool object) const
    {
        if (m_place == Place::unknown && m_outer.isEmpty()) {
            return object ? Place::file : throw notABackup();
        }
        switch (m_place) {
        case Place::documents:
            return object ? Place::document : throw notABackup();
        case Place::filledPDFs:
            return object ? Place::filledPDF : throw notABackup();
        case Place::file:
        case Place::document:
        case Place::filledPDF:
            break;
        case Place::unknown:
            return Place::unknown;
        case Place::values:
        case Place::profile:
            throw notABackup();
        }
        if (m_member == nullptr) {
            return Place::unknown;
        }
        const auto *place = std::get_if<Place>(&m_member->target);
        require(place != nullptr && isArray(*place) != object);
        return *place;
    }

    bool enter(bool object)
    {
        constexpr qsizetype deepest = 100; // the parser calls itself for each level
        require(m_outer.size() < deepest);
        const Place place = inner(object);
        m_outer.append(m_place);
        m_place = place;
        for (Member &member : m_members) {
            member.seen = member.seen && member.in != place;
        }
        return true;
    }

    /// A value that is no object and no array.
    template <typename Value>
    bool take(Value value)
    {
        if (m_place == Place::unknown) {
            require(!m_outer.isEmpty());
            return true;
        }
        if constexpr (std::is_same_v<Value, QByteArrayView>) {
            if (m_place == Place::values || m_place == Place::profile) {
                map().insert(m_word, QString::fromUtf8(value));
                return true;
            }
        }
        require(m_place == Place::file || m_place == Place::document ||
                m_place == Place::filledPDF);
        if (m_member != nullptr) {
            std::visit([&](auto target) { put(value, target); }, m_member->target);
        }
        return true;
    }

    void put(QByteArrayView text, QString *target) { *target = QString::fromUtf8(text); }
    void put(QByteArrayView text, QByteArray *target)
    {
        m_isBase64 = BackupBase64::appendDecoded(text, *target);
    }
    void put(qint64 value, qint64 *target) { *target = value; }
    void put(qint64 value, double *target) { *target = static_cast<double>(value); }
    void put(double value, double *target)
    {
        require(value < infinity);
        *target = value;
    }
    template <typename Value, typename Target>
    void put(Value /*value*/, Target /*target*/)
    {
        throw notABackup();
    }

    void finishPDF()
    {
        QSBackup::PDF pdf = std::exchange(m_pdf, {});
        if (m_failure) {
            return;
        }
        try {
            if (!m_isBase64 || !BackupJSON::isPDF(pdf.data)) {
                throw QSError::badBackup(
                    u"the filled PDF \"%1\" inside it is damaged."_s.arg(pdf.title));
            }
            if (!BackupJSON::isAllowedFileName(pdf.fileName) ||
                m_fileNames.contains(pdf.fileName)) {
                throw QSError::badBackup(u"a file name inside it is not allowed."_s);
            }
            m_fileNames.insert(pdf.fileName);
            m_sink(std::move(pdf));
        } catch (const QSError &error) {
            m_failure = error; // what is wrong with the file itself comes first
        }
    }

    DeviceInput &m_input;
    const BackupJSON::Sink &m_sink;
    QSBackup::File m_file;
    QSBackup::Doc m_document;
    QSBackup::PDF m_pdf;
    bool m_isBase64 = false;
    QSet<QString> m_fileNames;
    std::optional<QSError> m_failure;

    Place m_place = Place::unknown;
    QList<Place> m_outer;       ///< the places around it, outermost first
    Member *m_member = nullptr; ///< whose value comes next; none for a key that is not known
    QString m_word;             ///< the same inside values and profile
    std::array<Member, 20> m_members{{
        {Place::file, "app"_L1, &m_file.app},
        {Place::file, "created"_L1, &m_file.created},
        {Place::file, "documents"_L1, Place::documents},
        {Place::file, "filledPDFs"_L1, Place::filledPDFs},
        {Place::file, "format"_L1, &m_file.format},
        {Place::file, "profile"_L1, Place::profile},
        {Place::file, "version"_L1, &m_file.version},
        {Place::document, "created"_L1, &m_document.created},
        {Place::document, "modified"_L1, &m_document.modified},
        {Place::document, "state"_L1, &m_document.state},
        {Place::document, "templateID"_L1, &m_document.templateID},
        {Place::document, "templateVersion"_L1, &m_document.templateVersion},
        {Place::document, "title"_L1, &m_document.title},
        {Place::document, "values"_L1, Place::values},
        {Place::filledPDF, "created"_L1, &m_pdf.created},
        {Place::filledPDF, "data"_L1, &m_pdf.data},
        {Place::filledPDF, "entryID"_L1, &m_pdf.entryID},
        {Place::filledPDF, "fileName"_L1, &m_pdf.fileName},
        {Place::filledPDF, "modified"_L1, &m_pdf.modified},
        {Place::filledPDF, "title"_L1, &m_pdf.title},
    }};
};
} // namespace

bool BackupJSON::isAllowedFileName(const QString &name)
{
    return !name.contains(u'/') && !name.contains(u".."_s) && !name.contains(QChar::Null) &&
           name.endsWith(u".pdf"_s);
}

bool BackupJSON::isPDF(QByteArrayView data)
{
    return data.startsWith("%PDF") || QSMutation::on(u"damaged-pdf-restored");
}

QSBackup::File BackupJSON::read(QIODevice &device, const Sink &sink, const Meanwhile &meanwhile)
{
    DeviceInput input(device, meanwhile);
    Collector collector(input, sink);
    rapidjson::Reader reader;
    if (reader.Parse<rapidjson::kParseNumbersAsStringsFlag>(input, collector).IsError() ||
        !input.isAtEnd()) {
        throw notABackup();
    }
    return collector.file();
}
