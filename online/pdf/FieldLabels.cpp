#include "FieldLabels.h"

#include "Opening.h"
#include "PopplerForm.h"

#include <QHash>
#include <QMap>
#include <QRegularExpression>

#include <poppler-qt6.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr double farthest = 20; // points from a box to the first of its words
constexpr double overlap = 2;   // points that the words may reach into the box
constexpr qsizetype longest = 120;

enum class Side { right, left };

/// A word of the page; a field, where words end, has no text.
struct Word
{
    QString text;
    QRectF rect;
};

bool isShownToggle(const FormField &field)
{
    return field.shown &&
           (field.kind == FormField::Kind::checkBox || field.kind == FormField::Kind::radio);
}

/// The same for boxes that always go on and off together.
QString answerOf(const FormField &field)
{
    return field.kind == FormField::Kind::checkBox && !field.name.isEmpty()
               ? field.name + u'\n' + field.onValue
               : QString::number(field.id);
}

/// The shown toggles, by what they are called.
QHash<QString, QList<FormField *>> byLabel(QList<FormField> &fields)
{
    QHash<QString, QList<FormField *>> found;
    for (FormField &field : fields) {
        if (isShownToggle(field)) {
            found[field.label].append(&field);
        }
    }
    return found;
}

QStringList answersOf(const QList<FormField *> &toggles)
{
    QStringList answers;
    for (const FormField *toggle : toggles) {
        answers.append(answerOf(*toggle));
    }
    answers.removeDuplicates();
    return answers;
}

QString bare(QString text)
{
    static const QRegularExpression rest(u"\\[\\d+\\]|[^\\p{L}\\p{N}]"_s);
    return text.remove(rest).toCaseFolded();
}

/// The label that the agency gave, empty for one that was made of the field's name.
QString agencyLabel(const FormField &field)
{
    return bare(field.label) == bare(field.name.section(u'.', -1)) ? QString() : field.label;
}

bool saysSomething(const QString &text)
{
    return std::ranges::any_of(text, [](QChar letter) { return letter.isLetterOrNumber(); });
}

std::vector<std::unique_ptr<Poppler::TextBox>> textBoxes(const Poppler::Page &page,
                                                         const Opening &opening)
{
    std::stop_token stop = opening.stop();
    return page.textList(
        Poppler::Page::Rotate0,
        [](const QVariant &token) {
            return static_cast<std::stop_token *>(token.value<void *>())->stop_requested();
        },
        QVariant::fromValue<void *>(&stop));
}

/// Words and fields of a page. What stands inside a field is an answer and no word of the page.
QList<Word> wordsOf(const Poppler::Page &page, const QList<FormField> &fields, int number,
                    const Opening &opening)
{
    QList<Word> places;
    for (const FormField &field : fields) {
        if (field.page == number && field.shown) {
            places.append({.text = {}, .rect = field.rect});
        }
    }
    QList<Word> words = places;
    for (const auto &box : textBoxes(page, opening)) {
        opening.goOn();
        const QPointF middle = box->boundingBox().center();
        if (std::ranges::none_of(
                places, [&middle](const Word &place) { return place.rect.contains(middle); })) {
            words.append({.text = box->text(), .rect = box->boundingBox()});
        }
    }
    return words;
}

/// How far a word begins from an edge; below zero when it lies on the other side.
double gap(const QRectF &from, const QRectF &word, Side side)
{
    return side == Side::right ? word.left() - from.right() : from.left() - word.right();
}

bool onOneLine(const QRectF &one, const QRectF &other)
{
    return std::abs(one.center().y() - other.center().y()) <=
           std::max(one.height(), other.height()) / 2;
}

/// The words of one line beside a box, up to a field or a wider space.
QString beside(const QRectF &box, const QList<Word> &words, Side side)
{
    const auto isFarther = [&](const Word *one, const Word *other) {
        return gap(box, one->rect, side) > gap(box, other->rect, side);
    };
    std::vector<const Word *> line;
    for (const Word &word : words) {
        if (onOneLine(box, word.rect) && gap(box, word.rect, side) >= -overlap) {
            line.push_back(&word);
        }
    }
    std::ranges::make_heap(line, isFarther); // only the nearest few are looked at
    QStringList found;
    qsizetype length = 0;
    QRectF last = box;
    for (; !line.empty(); line.pop_back()) {
        std::ranges::pop_heap(line, isFarther);
        const Word &word = *line.back();
        const double room = found.isEmpty() ? farthest : word.rect.height();
        if (word.text.isEmpty() || gap(last, word.rect, side) > room || length > longest) {
            break;
        }
        if (found.isEmpty() || std::abs(last.center().y() - word.rect.center().y()) <
                                   last.height() / 2) { // of a tall box's lines the first
            found.insert(side == Side::right ? found.size() : 0, word.text);
            length += word.text.size() + 1;
            last = word.rect;
        }
    }
    static const QRegularExpression leader(u"[\\s.:_\\p{So}]+$"_s);
    const QString text = found.join(u' ').remove(leader);
    return saysSomething(text) ? text : QString();
}

QString beside(const QRectF &box, const QList<Word> &words)
{
    const QString right = beside(box, words, Side::right);
    return right.isEmpty() ? beside(box, words, Side::left) : right;
}

/// The value that a toggle stores, where it is a word and not any toggle's.
QString tellingValue(const FormField &field)
{
    const QString value = field.onValue.simplified();
    const bool isWord = std::ranges::any_of(value, [](QChar letter) { return letter.isLetter(); });
    return isWord && value != u"Yes" && value != u"On" ? value : QString();
}

void addDetail(FormField &field, const QString &detail)
{
    const QString own = agencyLabel(field);
    if (!detail.isEmpty() && !own.contains(detail, Qt::CaseInsensitive)) {
        field.label = own.isEmpty() ? detail : own + u": "_s + detail;
    }
}

struct Unclear
{
    FormField *toggle;
    bool shared; ///< with another answer's toggle
};

/// The toggles in need of a label, by page.
QMap<int, QList<Unclear>> unclearToggles(QList<FormField> &fields)
{
    QMap<int, QList<Unclear>> found;
    for (const QList<FormField *> &toggles : byLabel(fields)) {
        const bool shared = answersOf(toggles).size() > 1;
        for (FormField *toggle : toggles) {
            if (shared || agencyLabel(*toggle).isEmpty()) {
                found[toggle->page].append({toggle, shared});
            }
        }
    }
    return found;
}

/// "Yes, 2 of 3"
void count(QList<FormField> &fields)
{
    for (const auto &[label, toggles] : byLabel(fields).asKeyValueRange()) {
        const QStringList answers = answersOf(toggles);
        QHash<QString, qsizetype> numbers;
        for (const QString &answer : answers) {
            numbers.insert(answer, numbers.size() + 1);
        }
        for (FormField *toggle : toggles) {
            if (answers.size() > 1) {
                toggle->label =
                    u"%1, %2 of %3"_s.arg(label.isEmpty() ? u"Choice"_s : label,
                                          QString::number(numbers.value(answerOf(*toggle))),
                                          QString::number(answers.size()));
            }
        }
    }
}
} // namespace

void FieldLabels::tellApart(QList<FormField> &fields, const QByteArray &pdf, const Opening &opening)
{
    const QMap<int, QList<Unclear>> unclear = unclearToggles(fields);
    if (unclear.isEmpty()) {
        return;
    }
    const auto document = PopplerForm::load(pdf);
    for (const auto &[number, toggles] : unclear.asKeyValueRange()) {
        const auto page = document ? document->page(number) : nullptr;
        const QList<Word> words = page ? wordsOf(*page, fields, number, opening) : QList<Word>();
        for (const auto &[toggle, shared] : toggles) {
            opening.goOn();
            const QString found = beside(toggle->rect, words);
            addDetail(*toggle, found.isEmpty() && shared ? tellingValue(*toggle) : found);
        }
    }
    count(fields);
}
