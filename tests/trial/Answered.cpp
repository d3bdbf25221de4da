#include "Answered.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::Literals::StringLiterals;

namespace {
using Kind = FormField::Kind;

QStringList labelsOf(const FormField &field, const FormValue &value)
{
    QStringList labels;
    for (const int chosen : value.chosen) {
        labels.append(field.choices.at(chosen).label);
    }
    return labels;
}

QStringList storedTexts(const FormField &field, const FormValue &value)
{
    if (value.chosen.isEmpty()) {
        return {value.text};
    }
    QStringList texts = labelsOf(field, value);
    for (const int chosen : value.chosen) {
        texts.append(field.choices.at(chosen).exportValue);
    }
    return texts;
}

QString readText(const FormField &field, const FormValue &value)
{
    if (field.password) {
        return QString(value.text.size(), u'*');
    }
    return value.chosen.isEmpty() ? value.text : labelsOf(field, value).join(u'\n');
}

QJsonObject objectOf(const Answered &answer)
{
    const QRectF &rect = answer.rect;
    return {{u"id"_s, answer.id},
            {u"kind"_s, static_cast<int>(answer.kind)},
            {u"name"_s, answer.name},
            {u"label"_s, answer.label},
            {u"page"_s, answer.page},
            {u"rect"_s, QJsonArray{rect.x(), rect.y(), rect.width(), rect.height()}},
            {u"text"_s, answer.text},
            {u"stored"_s, QJsonArray::fromStringList(answer.stored)},
            {u"on"_s, answer.on},
            {u"changed"_s, answer.changed}};
}

Answered answerOf(const QJsonObject &object)
{
    Answered answer;
    const QJsonArray rect = object[u"rect"_s].toArray();
    answer.id = object[u"id"_s].toInt();
    answer.kind = static_cast<Kind>(object[u"kind"_s].toInt());
    answer.name = object[u"name"_s].toString();
    answer.label = object[u"label"_s].toString();
    answer.page = object[u"page"_s].toInt();
    answer.rect = QRectF(rect.at(0).toDouble(), rect.at(1).toDouble(), rect.at(2).toDouble(),
                         rect.at(3).toDouble());
    answer.text = object[u"text"_s].toString();
    for (const auto &text : object[u"stored"_s].toArray()) {
        answer.stored.append(text.toString());
    }
    answer.on = object[u"on"_s].toBool();
    answer.changed = object[u"changed"_s].toBool();
    return answer;
}
} // namespace

QString Answered::place() const
{
    constexpr qsizetype longest = 40;
    const QString &called = label.isEmpty() ? name : label;
    const QString most = called.size() > longest ? called.first(longest).trimmed() + u'…' : called;
    return u"\"%1\" (page %2, widget %3)"_s.arg(most.simplified()).arg(page + 1).arg(id);
}

Answered Answered::of(const FormField &field, const FormValue &value, const FormValue &before)
{
    Answered answer;
    answer.id = field.id;
    answer.kind = field.kind;
    answer.name = field.name;
    answer.label = field.label;
    answer.page = field.page;
    answer.rect = field.rect;
    answer.changed = value != before;
    if (answer.isButton()) {
        answer.on = value.on;
    } else {
        answer.text = readText(field, value);
        answer.stored = storedTexts(field, value);
    }
    return answer;
}

QByteArray Answered::toJSON(const QList<Answered> &answers)
{
    QJsonArray array;
    for (const Answered &answer : answers) {
        array.append(objectOf(answer));
    }
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

QList<Answered> Answered::fromJSON(const QByteArray &json)
{
    QList<Answered> answers;
    for (const auto &value : QJsonDocument::fromJson(json).array()) {
        answers.append(answerOf(value.toObject()));
    }
    return answers;
}
