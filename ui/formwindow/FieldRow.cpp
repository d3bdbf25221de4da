#include "FieldRow.h"

#include "FieldText.h"
#include "QSPDFDocument.h"

#include <algorithm>

namespace {
bool isBox(const FormField &field)
{
    return field.kind == FormField::Kind::text && field.comb && field.maxLength > 0 &&
           field.shown && field.isSettable();
}

double cell(const FormField &field)
{
    return field.rect.width() / field.maxLength;
}

/// Whether the second box goes on where the first one ends: on its line, and no farther from it
/// than the sign between them takes.
bool goesOn(const FormField &from, const FormField &to)
{
    if (!isBox(from) || !isBox(to) || from.page != to.page) {
        return false;
    }
    const double gap = to.rect.left() - from.rect.right();
    const double shared =
        qMin(from.rect.bottom(), to.rect.bottom()) - qMax(from.rect.top(), to.rect.top());
    return gap > -1 && gap < qMax(cell(from), cell(to)) * 1.25 &&
           shared > qMin(from.rect.height(), to.rect.height()) / 2;
}

/// The field and those that it goes on in.
QList<int> rowFrom(const QSPDFDocument &document, int field)
{
    const QList<int> &order = document.tabOrder();
    QList<int> row = {field};
    const qsizetype place = order.indexOf(field);
    for (qsizetype i = place + 1; place >= 0 && i < order.size(); ++i) {
        if (!goesOn(document.fields().at(row.last()), document.fields().at(order.at(i)))) {
            break;
        }
        row.append(order.at(i));
    }
    return row;
}

bool isSign(QChar unit)
{
    return !unit.isDigit();
}

/// Digits, perhaps with signs between them.
bool isNumber(const QString &text)
{
    return std::ranges::none_of(
        text, [](QChar unit) { return unit.isLetter() || unit.isSurrogate() || unit.isMark(); });
}

/// Takes so many characters from the beginning of a text.
QString take(QString &text, int characters)
{
    QString taken = text;
    int end = 0;
    for (; characters > 0 && end < text.size(); --characters) {
        end += text.at(end).isHighSurrogate() && end + 1 < text.size() ? 2 : 1;
    }
    taken.truncate(end);
    text.remove(0, end);
    return taken;
}

FieldRow::Filled spread(const QSPDFDocument &document, const QList<int> &row, QString text)
{
    FieldRow::Filled filled;
    const bool isPlainNumber = isNumber(text);
    for (const int field : row) {
        while (isPlainNumber && field != row.first() && !text.isEmpty() && isSign(text.front())) {
            text.remove(0, 1);
        }
        const int limit = document.fields().at(field).maxLength;
        filled.values.append({field, {.text = take(text, limit), .on = false, .chosen = {}}});
        filled.end = field;
        if (text.isEmpty()) {
            break;
        }
    }
    filled.leftOut = FieldText::length(text);
    return filled;
}
} // namespace

namespace FieldRow {
Filled fill(const QSPDFDocument &document, int field, const QString &text, int cursor)
{
    QList<int> row = rowFrom(document, field);
    int room = 0;
    for (const int each : row) {
        room += document.fields().at(each).maxLength;
    }
    QString digits = text;
    digits.removeIf(isSign);
    if (row.size() > 1 && isNumber(text) && digits.size() == room) {
        return spread(document, row, digits);
    }
    if (cursor < text.size()) {
        QString cut = text;
        FieldText::cut(cut, cursor, document.fields().at(field).maxLength);
        return {.values = {{field, {.text = cut, .on = false, .chosen = {}}}},
                .end = field,
                .leftOut = FieldText::length(text) - FieldText::length(cut)};
    }
    const auto taken = std::find_if(row.cbegin() + 1, row.cend(), [&document](int each) {
        return !document.value(each).text.isEmpty();
    });
    row.erase(taken, row.cend());
    return spread(document, row, text);
}

int before(const QSPDFDocument &document, int field)
{
    const QList<int> &order = document.tabOrder();
    const int place = static_cast<int>(order.indexOf(field));
    return place > 0 && rowFrom(document, order.at(place - 1)).contains(field) ? order.at(place - 1)
                                                                               : -1;
}
} // namespace FieldRow
