#include "QSDirectory.h"

#include "QSError.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::Literals::StringLiterals;

namespace {
/// One JSON object of the file, with the place it stands at for messages.
class Reader
{
public:
    Reader(const QJsonValue &value, const QString &place) : m_place(place)
    {
        if (!value.isObject()) {
            fail(u"is not an object"_s);
        }
        m_object = value.toObject();
    }

    [[nodiscard]] QString text(const QString &key) const
    {
        const QJsonValue value = m_object.value(key);
        if (!value.isString()) {
            fail(missing(key, u"a text"_s));
        }
        return value.toString();
    }

    [[nodiscard]] bool has(const QString &key) const
    {
        return m_object.contains(key) && !m_object.value(key).isNull();
    }

    [[nodiscard]] std::optional<QString> optionalText(const QString &key) const
    {
        return has(key) ? std::optional(text(key)) : std::nullopt;
    }

    [[nodiscard]] bool flag(const QString &key) const
    {
        const QJsonValue value = m_object.value(key);
        if (!value.isBool()) {
            fail(missing(key, u"true or false"_s));
        }
        return value.toBool();
    }

    [[nodiscard]] qint64 integer(const QString &key) const
    {
        const QJsonValue value = m_object.value(key);
        const qint64 number = value.toInteger(0);
        if (number != value.toInteger(1)) { // it gives back what stands in for a missing number
            fail(missing(key, u"a whole number"_s));
        }
        return number;
    }

    [[nodiscard]] QMap<QString, QString> texts(const QString &key) const
    {
        const Reader inner(m_object.value(key), m_place + u'.' + key);
        QMap<QString, QString> found;
        for (const QString &name : inner.m_object.keys()) {
            found.insert(name, inner.text(name));
        }
        return found;
    }

    [[nodiscard]] Reader object(const QString &key) const
    {
        return {m_object.value(key), m_place + u'.' + key};
    }

    /// Reads every element of an array with the function given.
    template <typename T>
    [[nodiscard]] QList<T> list(const QString &key, T (*read)(const Reader &)) const
    {
        const QJsonValue value = m_object.value(key);
        if (!value.isArray()) {
            fail(missing(key, u"a list"_s));
        }
        QList<T> found;
        const QJsonArray array = value.toArray();
        found.reserve(array.size());
        for (qsizetype i = 0; i < array.size(); ++i) {
            found.append(
                read(Reader(array.at(i), u"%1.%2[%3]"_s.arg(m_place, key, QString::number(i)))));
        }
        return found;
    }

    [[noreturn]] void fail(const QString &what) const
    {
        throw QSError::invalid(m_place + u' ' + what);
    }

private:
    static QString missing(const QString &key, const QString &wanted)
    {
        return u"has no \"%1\" that is %2"_s.arg(key, wanted);
    }

    QString m_place;
    QJsonObject m_object;
};

QSLegalAid readLegalAid(const Reader &reader)
{
    return {reader.text(u"title"_s), reader.text(u"url"_s), reader.text(u"kind"_s)};
}

QSJurisdiction readJurisdiction(const Reader &reader)
{
    QSJurisdiction place;
    place.code = reader.text(u"code"_s);
    place.name = reader.text(u"name"_s);
    place.selfHelp = reader.text(u"selfHelp"_s);
    place.courtForms = reader.text(u"courtForms"_s);
    place.courtFees = reader.text(u"courtFees"_s);
    place.business = reader.text(u"business"_s);
    place.businessFees = reader.text(u"businessFees"_s);
    place.offices = reader.texts(u"offices"_s);
    if (reader.has(u"poa"_s)) {
        const Reader poa = reader.object(u"poa"_s);
        place.poa = QSPOA{poa.text(u"title"_s), poa.text(u"url"_s), poa.text(u"note"_s)};
    }
    place.legalAid = reader.list<QSLegalAid>(u"legalAid"_s, readLegalAid);
    return place;
}

QSEntry readEntry(const Reader &reader)
{
    const QString cat = reader.text(u"cat"_s);
    const std::optional<QSCategory> category = QSCategories::named(cat);
    if (!category) {
        reader.fail(u"has the unknown category \"%1\""_s.arg(cat));
    }
    const QString word = reader.text(u"kind"_s);
    const std::optional<QSKind> kind = QSKinds::named(word);
    if (!kind) {
        reader.fail(u"has the unknown kind \"%1\""_s.arg(word));
    }
    QSEntry entry;
    entry.id = reader.text(u"id"_s);
    entry.j = reader.text(u"j"_s);
    entry.cat = *category;
    entry.title = reader.text(u"title"_s);
    entry.number = reader.text(u"number"_s);
    entry.agency = reader.text(u"agency"_s);
    entry.kind = *kind;
    entry.fillable = reader.flag(u"fillable"_s);
    entry.url = reader.text(u"url"_s);
    entry.info = reader.text(u"info"_s);
    entry.rev = reader.text(u"rev"_s);
    entry.note = reader.text(u"note"_s);
    entry.checked = reader.optionalText(u"checked"_s);
    entry.browserOnly = reader.has(u"browserOnly"_s) && reader.flag(u"browserOnly"_s);
    return entry;
}
} // namespace

QSDirectory QSDirectory::decode(const QByteArray &json)
{
    QJsonParseError problem;
    const QJsonDocument document = QJsonDocument::fromJson(json, &problem);
    if (document.isNull()) {
        throw QSError::invalid(
            u"%1 at byte %2"_s.arg(problem.errorString(), QString::number(problem.offset)));
    }
    const Reader reader(document.isObject() ? QJsonValue(document.object()) : QJsonValue(),
                        u"directory"_s);
    QSDirectory directory;
    directory.format = reader.text(u"format"_s);
    directory.version = reader.integer(u"version"_s);
    directory.checked = reader.text(u"checked"_s);
    directory.note = reader.text(u"note"_s);
    directory.jurisdictions = reader.list<QSJurisdiction>(u"jurisdictions"_s, readJurisdiction);
    directory.entries = reader.list<QSEntry>(u"entries"_s, readEntry);
    return directory;
}
