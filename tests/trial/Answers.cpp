#include "Answers.h"

#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace {
using Kind = FormField::Kind;

/// From the longest to the shortest. "%1" is a number that tells neighbours apart.
constexpr auto ladder = std::to_array<QStringView>({
    u"%1 North Martin Luther King Junior Boulevard, Building C, Apartment 56, Los Angeles, CA "
    u"90013",
    u"%1 North Martin Luther King Boulevard, Apartment 56",
    u"José Núñez-O'Brien & Sons, Incorporated, no. %1",
    u"Maria Alexandra Quigley %1",
    u"Smith & Sons, Inc. %1",
    u"Jane Q. Public %1",
    u"03/14/2026 %1",
    u"1,250.00 %1",
    u"Yes %1",
    u"%1",
});
constexpr auto withoutNumber =
    std::to_array<QStringView>({u"03/14/2026", u"1,250.00", u"Yes", u"12", u"X"});

constexpr auto names =
    std::to_array<QStringView>({u"Łukasz Żółć", u"Анна Ким", u"王小明", u"김민수", u"Nguyễn Ánh",
                                u"नमस्ते शर्मा", u"محمد علي", u"שרה כהן"});
constexpr int roomForName = 12; // in characters, of a field that has a limit

/// The room that an answer has in the smallest of the widgets that show it.
struct Room
{
    double width = std::numeric_limits<double>::max();
    double fontSize = 0;
    int lines = std::numeric_limits<int>::max();
    int maxLength = std::numeric_limits<int>::max();
    bool comb = false;
};

double fontSizeOf(const FormField &field)
{
    return field.fontSize > 0 ? field.fontSize : std::clamp(0.7 * field.rect.height(), 4.0, 12.0);
}

int linesOf(const FormField &field)
{
    constexpr double lineStep = 1.3; // of the font's size
    constexpr double borders = 6;
    const double lines = (field.rect.height() - borders) / (lineStep * fontSizeOf(field));
    return field.multiLine ? std::max(1, static_cast<int>(lines)) : 1;
}

Room smallest(Room room, const FormField &field)
{
    constexpr double borders = 6;
    const double forArrow = field.kind == Kind::comboBox ? 16 : 0;
    room.width = std::min(room.width, field.rect.width() - borders - forArrow);
    room.fontSize = std::max(room.fontSize, fontSizeOf(field));
    room.lines = std::min(room.lines, linesOf(field));
    room.maxLength =
        field.maxLength > 0 ? std::min(room.maxLength, field.maxLength) : room.maxLength;
    room.comb = room.comb || field.comb;
    return room;
}

/// More than most fonts take: the form's own font isn't known here.
double widthOf(const QString &text, double fontSize)
{
    static const QFontMetricsF metrics = [] {
        QFont font(u"Liberation Sans"_s);
        font.setPixelSize(100);
        return QFontMetricsF(font);
    }();
    constexpr uint firstWide = 0x1100; // from here on scripts of the Far East
    double typewriter = 0;
    for (const uint letter : text.toUcs4()) {
        typewriter += letter < firstWide || (letter >= 0x1E00 && letter < 0x2E80) ? 0.6 : 1.1;
    }
    return std::max(1.1 * metrics.horizontalAdvance(text) / 100, typewriter) * fontSize;
}

bool fits(const QString &text, const Room &room)
{
    return text.size() <= room.maxLength && widthOf(text, room.fontSize) <= room.width;
}

/// Empty when not even a letter fits.
QString fittingLine(const Room &room, int number)
{
    const auto numbered = std::ranges::find_if(
        ladder, [&](QStringView step) { return fits(step.toString().arg(number), room); });
    if (numbered != ladder.end()) {
        return numbered->toString().arg(number);
    }
    const auto plain = std::ranges::find_if(
        withoutNumber, [&](QStringView step) { return fits(step.toString(), room); });
    return plain != withoutNumber.end() ? plain->toString() : QString();
}

QString combText(const Room &room, int number)
{
    const QString letters = QString::number(number) + u"A7B2C9D4E8F1G5H3J6K0L2M9N4P8"_s.repeated(9);
    return letters.first(std::min<qsizetype>(room.maxLength, letters.size()));
}

QString fittingText(const Room &room, int number)
{
    constexpr int roomy = 3;
    if (room.comb) {
        return combText(room, number);
    }
    const QString line = fittingLine(room, number);
    const QString both = line + u'\n' + fittingLine(room, number + 1);
    return room.lines >= roomy && both.size() <= room.maxLength ? both : line;
}

QString tooLongText(const Room &room, int number)
{
    constexpr double narrow = 0.45; // of the font's size, for a letter
    constexpr qsizetype most = 20'000;
    const double perLine = std::max(1.0, room.width / (narrow * room.fontSize));
    const auto wanted = std::min(most, static_cast<qsizetype>(10 * perLine * room.lines));
    const QString sentence =
        u"On day %1 the landlord came to the house and asked for the rent of the whole year."_s.arg(
            number) +
        (room.lines > 1 ? u'\n' : u' ');
    const QString text = sentence.repeated(static_cast<int>(wanted / sentence.size()) + 1);
    return text.first(std::min<qsizetype>(wanted, room.maxLength)).trimmed();
}

int firstNamed(const QList<FormField::Choice> &choices)
{
    const auto named = std::ranges::find_if(choices, [](const FormField::Choice &choice) {
        return !choice.label.trimmed().isEmpty() && !choice.exportValue.isEmpty();
    });
    return named != choices.end() ? static_cast<int>(named - choices.begin()) : -1;
}

FormValue chosenOf(const FormField &field)
{
    const int first = firstNamed(field.choices);
    return {.text = {}, .on = false, .chosen = first < 0 ? QList<int>() : QList<int>{first}};
}

/// Makes the answers of one pass.
class Answering final
{
public:
    Answering(Answers::Pass pass, const QList<FormField> &fields) : m_pass(pass), m_fields(fields)
    {
        for (const FormField &field : fields) {
            Room &room = m_rooms[keyOf(field)];
            room = smallest(room, field);
        }
    }

    QList<std::pair<int, FormValue>> answers()
    {
        QList<std::pair<int, FormValue>> answers;
        for (const FormField &field : m_fields) {
            bool &done = m_done[keyOf(field)];
            if (field.isSettable() && field.shown && !field.rect.isEmpty() && !done) {
                done = true;
                const FormValue value = valueOf(field);
                if (value != FormValue()) {
                    answers.append({field.id, value});
                }
            }
        }
        return answers;
    }

private:
    static QString keyOf(const FormField &field)
    {
        return field.name.isEmpty() ? u"/%1"_s.arg(field.id) : field.name;
    }

    FormValue valueOf(const FormField &field)
    {
        switch (field.kind) {
        case Kind::checkBox:
        case Kind::radio:
            return {.text = {}, .on = true, .chosen = {}};
        case Kind::comboBox:
        case Kind::listBox:
            if (!field.editable || firstNamed(field.choices) >= 0) {
                return chosenOf(field);
            }
            return {.text = textOf(field), .on = false, .chosen = {}};
        case Kind::text:
            return {.text = textOf(field), .on = false, .chosen = {}};
        default:
            return {};
        }
    }

    QString textOf(const FormField &field)
    {
        const Room &room = m_rooms[keyOf(field)];
        if (m_pass == Answers::Pass::tooLong && !room.comb) {
            return tooLongText(room, field.id + 1);
        }
        if (m_pass == Answers::Pass::scripts && !room.comb && room.maxLength >= roomForName) {
            const QString name = names.at(m_nextName).toString();
            if (fits(name, room)) {
                m_nextName = (m_nextName + 1) % names.size();
                return name;
            }
        }
        return fittingText(room, field.id + 1);
    }

    Answers::Pass m_pass;
    const QList<FormField> &m_fields;
    QHash<QString, Room> m_rooms;
    QHash<QString, bool> m_done;
    size_t m_nextName = 0;
};
} // namespace

QList<std::pair<int, FormValue>> Answers::of(Pass pass, const QList<FormField> &fields)
{
    return Answering(pass, fields).answers();
}
