#include "QSDrafts.h"

#include "QSError.h"
#include "QSFile.h"
#include "QSInfo.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString documentFile = u"document.json"_s;
const QString formFile = u"form.json"_s;
const QString profileFile = u"profile.json"_s;

QString path(const QString &name)
{
    return QSInfo::draftsFolder().filePath(name);
}

void keep(const QString &name, const QJsonObject &draft)
{
    QSFile::write(path(name), QJsonDocument(draft).toJson(), QSFile::Readers::owner);
}

std::optional<QJsonObject> kept(const QString &name)
{
    if (!QFile::exists(path(name))) {
        return std::nullopt;
    }
    QJsonParseError problem;
    const QJsonDocument json = QJsonDocument::fromJson(QSFile::read(path(name)), &problem);
    if (!json.isObject()) {
        throw QSError::invalid(u"The draft is damaged (%1)."_s.arg(problem.errorString()));
    }
    return json.object();
}

QString baseName(QSDrafts::Kind kind)
{
    switch (kind) {
    case QSDrafts::Kind::document:
        return u"document"_s;
    case QSDrafts::Kind::form:
        return u"form"_s;
    case QSDrafts::Kind::profile:
        break;
    }
    return u"profile"_s;
}

/// A name of which no file is there, for a draft that is set aside.
QString freeName(const QString &base)
{
    int number = 1;
    const auto name = [&] { return u"%1 set aside %2"_s.arg(base).arg(number); };
    while (QFile::exists(path(name() + u".json"_s)) || QFile::exists(path(name() + u".pdf"_s))) {
        ++number;
    }
    return name();
}

void move(const QString &from, const QString &to)
{
    QFile file(path(from));
    if (file.exists() && !file.rename(path(to))) {
        throw QSError::io(file.errorString());
    }
}

void drop(const QString &name)
{
    QFile::remove(path(name));
}

QJsonObject toJSON(const QMap<QString, QString> &texts)
{
    QJsonObject object;
    for (auto text = texts.cbegin(); text != texts.cend(); ++text) {
        object.insert(text.key(), text.value());
    }
    return object;
}

QMap<QString, QString> texts(const QJsonObject &object)
{
    QMap<QString, QString> texts;
    for (auto text = object.constBegin(); text != object.constEnd(); ++text) {
        texts.insert(text.key(), text.value().toString());
    }
    return texts;
}

QJsonValue toJSON(const std::optional<qint64> &id)
{
    return id ? QJsonValue(*id) : QJsonValue();
}

std::optional<qint64> idFrom(const QJsonValue &id)
{
    return id.isDouble() ? std::optional(id.toInteger()) : std::nullopt;
}

QJsonObject toJSON(const FormValue &value)
{
    QJsonArray chosen;
    for (const int choice : value.chosen) {
        chosen.append(choice);
    }
    return {{u"text"_s, value.text}, {u"on"_s, value.on}, {u"chosen"_s, chosen}};
}

FormValue valueFrom(const QJsonObject &object)
{
    FormValue value{.text = object[u"text"].toString(), .on = object[u"on"].toBool(), .chosen = {}};
    for (const auto &choice : object[u"chosen"].toArray()) {
        value.chosen.append(choice.toInt());
    }
    return value;
}
} // namespace

namespace QSDrafts {
QString setAside(Kind kind)
{
    const QString base = baseName(kind);
    const QString aside = freeName(base);
    // What was typed moves first: without it the PDF says nothing.
    move(base + u".json"_s, aside + u".json"_s);
    try {
        move(base + u".pdf"_s, aside + u".pdf"_s);
    } catch (const QSError &) {
        move(aside + u".json"_s, base + u".json"_s);
        throw;
    }
    return path(aside + u".json"_s);
}

void keepDocument(const QSDocument &document)
{
    keep(documentFile, {{u"id"_s, toJSON(document.id)},
                        {u"templateID"_s, document.templateID},
                        {u"templateVersion"_s, document.templateVersion},
                        {u"title"_s, document.title},
                        {u"values"_s, toJSON(document.values)},
                        {u"state"_s, document.state},
                        {u"created"_s, document.created.toMSecsSinceEpoch()},
                        {u"modified"_s, document.modified.toMSecsSinceEpoch()}});
}

std::optional<QSDocument> document()
{
    const std::optional<QJsonObject> draft = kept(documentFile);
    if (!draft) {
        return std::nullopt;
    }
    const auto time = [&](QStringView key) {
        return QDateTime::fromMSecsSinceEpoch(draft->value(key).toInteger(), Qt::UTC);
    };
    return QSDocument{.id = idFrom(draft->value(u"id")),
                      .templateID = draft->value(u"templateID").toString(),
                      .templateVersion = draft->value(u"templateVersion").toString(),
                      .title = draft->value(u"title").toString(),
                      .values = texts(draft->value(u"values").toObject()),
                      .state = draft->value(u"state").toString(),
                      .created = time(u"created"),
                      .modified = time(u"modified")};
}

void dropDocument()
{
    drop(documentFile);
}

void keepFormPDF(const QByteArray &pdf)
{
    QSFile::write(formPDF(), pdf, QSFile::Readers::owner);
}

QString formPDF()
{
    return path(u"form.pdf"_s);
}

void keepForm(const FormDraft &form)
{
    QJsonArray values;
    for (const FormValue &value : form.values) {
        values.append(toJSON(value));
    }
    keep(formFile, {{u"entryID"_s, form.entryID},
                    {u"title"_s, form.title},
                    {u"savedID"_s, toJSON(form.savedID)},
                    {u"values"_s, values}});
}

std::optional<FormDraft> form()
{
    const std::optional<QJsonObject> draft = kept(formFile);
    if (!draft) {
        return std::nullopt;
    }
    if (!QFile::exists(formPDF())) {
        throw QSError::invalid(u"The draft's PDF is missing."_s);
    }
    FormDraft form{.entryID = draft->value(u"entryID").toString(),
                   .title = draft->value(u"title").toString(),
                   .savedID = idFrom(draft->value(u"savedID")),
                   .values = {}};
    for (const auto &value : draft->value(u"values").toArray()) {
        form.values.append(valueFrom(value.toObject()));
    }
    return form;
}

void dropForm()
{
    drop(formFile);
    QFile::remove(formPDF());
}

void keepProfile(const QMap<QString, QString> &profile)
{
    keep(profileFile, toJSON(profile));
}

std::optional<QMap<QString, QString>> profile()
{
    const std::optional<QJsonObject> draft = kept(profileFile);
    return draft ? std::optional(texts(*draft)) : std::nullopt;
}

void dropProfile()
{
    drop(profileFile);
}
} // namespace QSDrafts
