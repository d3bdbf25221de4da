#include "ReadBack.h"

#include <QHash>

#include <poppler-qt6.h>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
using Kind = FormField::Kind;

/// A character that can be read on a page, with its place.
struct Character
{
    QString text;
    QRectF place;
};

/// The same text for the same letters, however they are coded and spaced.
QString comparable(const QString &text)
{
    QString result;
    const QString composed = text.normalized(QString::NormalizationForm_KC);
    std::ranges::copy_if(composed, std::back_inserter(result),
                         [](QChar character) { return !character.isSpace(); });
    return result;
}

QList<Character> charactersOf(const Poppler::Page &page)
{
    QList<Character> characters;
    for (const auto &box : page.textList()) {
        const QList<uint> letters = box->text().toUcs4(); // one box for each, not for each QChar
        for (int i = 0; i < letters.size(); ++i) {
            const auto letter = static_cast<char32_t>(letters.at(i));
            characters.append({QString::fromUcs4(&letter, 1), box->charBoundingBox(i)});
        }
    }
    return characters;
}

/// True when a character is to be seen inside the place, not cut off at its edge and not drawn so
/// small that nobody reads it.
bool standsIn(const QRectF &character, const QRectF &place)
{
    constexpr double blur = 1; // in points: boxes are as wide as a letter's step, not as its ink
    constexpr double mostHidden = 0.2; // of its height, where boxes leave room for accents
    constexpr double lowest = 4;       // in points
    const QRectF seen = character & place.adjusted(-blur, 0, blur, 0);
    return character.height() >= lowest && seen.width() >= character.width() - 0.01 &&
           seen.height() >= character.height() * (1 - mostHidden);
}

/// Poppler draws every text from left to right, letter by letter.
bool runsToTheLeft(const QString &text)
{
    return std::ranges::any_of(text.toUcs4(), [](uint letter) {
        const QChar::Direction direction = QChar::direction(letter);
        return direction == QChar::DirR || direction == QChar::DirAL;
    });
}

/// What a person reads in the widget, in one piece or several.
QStringList shownTexts(const Widget &widget)
{
    const FormValue &value = widget.value;
    if (widget.field.password) {
        return {QString(value.text.size(), u'*')};
    }
    QStringList texts;
    for (const int chosen : value.chosen) {
        const FormField::Choice &choice = widget.field.choices.at(chosen);
        // Agencies have one to say that nothing is chosen, and show it or show nothing.
        const bool isNothing = choice.exportValue.isEmpty() && !widget.changed;
        texts.append(isNothing ? QString() : choice.label);
    }
    return texts.isEmpty() ? QStringList{value.text} : texts;
}

bool isChecked(const Widget &widget)
{
    const Kind kind = widget.field.kind;
    const bool hasText = kind == Kind::text || kind == Kind::comboBox || kind == Kind::listBox;
    return hasText && widget.printed && !widget.field.rect.isEmpty() &&
           (widget.changed || (widget.verbatim && !widget.field.readOnly));
}

/// The characters of each page, read once.
class Pages final
{
public:
    explicit Pages(const QByteArray &pdf) : m_document(Poppler::Document::loadFromData(pdf)) {}

    /// The text that is to be seen in a place of a page.
    [[nodiscard]] QString textIn(int page, const QRectF &place)
    {
        QString text;
        for (const Character &character : characters(page)) {
            if (standsIn(character.place, place)) {
                text += character.text;
            }
        }
        return comparable(text);
    }

private:
    const QList<Character> &characters(int page)
    {
        auto known = m_pages.find(page);
        if (known == m_pages.end()) {
            const auto source = m_document ? m_document->page(page) : nullptr;
            known = m_pages.insert(page, source ? charactersOf(*source) : QList<Character>());
        }
        return *known;
    }

    std::unique_ptr<Poppler::Document> m_document;
    QHash<int, QList<Character>> m_pages;
};

bool isReadable(Pages &pages, const Widget &widget)
{
    QString seen;
    return std::ranges::all_of(shownTexts(widget), [&](const QString &shown) {
        const QString text = comparable(shown);
        if (text.isEmpty()) {
            return true;
        }
        if (seen.isNull()) {
            seen = pages.textIn(widget.field.page, widget.field.rect) + u' ';
        }
        return seen.contains(text) && !runsToTheLeft(text);
    });
}

QString quoted(const FormField &field)
{
    constexpr qsizetype longest = 60;
    if (field.label.isEmpty()) {
        return u"a field without a name on page %1"_s.arg(field.page + 1);
    }
    const QString label =
        field.label.size() > longest ? field.label.first(longest).trimmed() + u'…' : field.label;
    return u'"' + label + u'"';
}

QString listOf(const QStringList &names)
{
    constexpr qsizetype most = 3;
    if (names.size() > most) {
        return names.first(most).join(u", "_s) + u" and %1 more"_s.arg(names.size() - most);
    }
    return names.size() == 1
               ? names.first()
               : names.first(names.size() - 1).join(u", "_s) + u" and "_s + names.last();
}
} // namespace

QList<Widget> ReadBack::unread(const QByteArray &flattened, const QList<Widget> &widgets)
{
    Pages pages(flattened);
    QList<Widget> unread;
    std::ranges::copy_if(widgets, std::back_inserter(unread), [&pages](const Widget &widget) {
        return isChecked(widget) && !isReadable(pages, widget);
    });
    return unread;
}

QSError ReadBack::refusal(const QList<Widget> &unread)
{
    QStringList names;
    for (const Widget &widget : unread) {
        names.append(quoted(widget.field));
    }
    names.removeDuplicates();
    const bool typed = std::ranges::all_of(unread, &Widget::changed);
    return QSError::invalid(
        u"What %1 %2 does not fit on the page or can't be read there, so the form can't be flattened or printed."_s
            .arg(typed ? u"was typed into"_s : u"stands in"_s, listOf(names)));
}
