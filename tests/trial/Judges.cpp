#include "Judges.h"

#include "Answered.h"
#include "FieldData.h"
#include "Programs.h"
#include "SavedCopy.h"

#include <QFile>
#include <QMap>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {
using Engine = PageText::Engine;
constexpr std::array engines{Engine::poppler, Engine::mupdf};
constexpr int pageResolution = 100;

QString nameOf(Engine engine)
{
    return engine == Engine::poppler ? u"Poppler"_s : u"MuPDF"_s;
}

QByteArray readWhole(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The status of qpdf's own check: 0 is good, 3 good with warnings; -1 that it did not end.
int checkStatus(const QString &pdf)
{
    const Programs::Output output = Programs::run(u"qpdf"_s, {u"--check"_s, pdf});
    return output.ended ? output.status : -1;
}

QString withOneLineEnd(QString text)
{
    return text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
}

QString shortened(const QString &text)
{
    constexpr qsizetype longest = 40;
    const QString line = text.simplified();
    return line.size() > longest ? line.first(longest) + u'…' : line;
}

/// Judges one pass of one form.
class PassJudge final
{
public:
    PassJudge(const QString &folder, const QString &name)
        : m_flat(folder + u"/flat.pdf"_s),
          m_saved(folder + u"/saved.pdf"_s),
          m_sheet(folder + u"/sheet.pdf"_s),
          m_name(name),
          m_answers(Answered::fromJSON(readWhole(folder + u"/answers.json"_s))),
          m_copy(readWhole(m_saved))
    {
    }

    Verdict verdict(const QHash<Engine, QList<Drawing>> &before)
    {
        readFields();
        if (QFile::exists(m_flat)) {
            const SavedCopy::Sheet sheet = makeSheet();
            for (const Engine engine : engines) {
                readFlatCopy(engine);
                compareWithUntouched(engine, before.value(engine));
                readSheet(engine, sheet.answers);
                measureSheet(engine, sheet.answers);
            }
        }
        collectNotDrawn();
        return m_verdict;
    }

private:
    [[nodiscard]] bool isPrinted(const Answered &answer) const
    {
        const auto widget = m_copy.widget(answer);
        return !widget || widget->isPrinted;
    }

    void miss(const Answered &answer, const QString &why) { m_missing[answer.id].append(why); }

    void cantRead(Engine engine, const QString &what)
    {
        m_verdict.lost.append(u"%1: %2 can't read the %3"_s.arg(m_name, nameOf(engine), what));
    }

    void collectNotDrawn()
    {
        for (const Answered &answer : m_answers) {
            if (m_missing.contains(answer.id)) {
                m_verdict.notDrawn.append(
                    u"%1: %2 \"%3\": %4"_s.arg(m_name, answer.place(), shortened(answer.text),
                                               m_missing.value(answer.id).join(u"; "_s)));
            }
        }
    }

    void readFlatCopy(Engine engine)
    {
        const auto text = PageText::of(engine, m_flat);
        if (!text) {
            cantRead(engine, u"flat copy"_s);
            return;
        }
        for (const Answered &answer : m_answers) {
            if (isPrinted(answer) && !text->shows(answer.text, answer.page, answer.rect)) {
                miss(answer,
                     u"%1 reads \"%2\" in the flat copy"_s.arg(
                         nameOf(engine), shortened(text->textIn(answer.page, answer.rect))));
            }
        }
    }

    /// An answer leaves ink: something must look different where it was given.
    void compareWithUntouched(Engine engine, const QList<Drawing> &before)
    {
        constexpr int fewest = 3; // dots
        if (before.isEmpty()) {
            return;
        }
        const auto after = Drawing::of(engine, m_flat, pageResolution);
        if (!after || after->size() != before.size()) {
            cantRead(engine, u"pages of the flat copy"_s);
            return;
        }
        for (const Answered &answer : m_answers) {
            const bool isVisible = answer.isButton() ? answer.on : !answer.text.trimmed().isEmpty();
            if (answer.changed && isVisible && isPrinted(answer) && answer.page < after->size() &&
                after->at(answer.page).otherDots(before.at(answer.page), answer.rect) < fewest) {
                miss(answer, u"%1 draws nothing in the flat copy"_s.arg(nameOf(engine)));
            }
        }
    }

    SavedCopy::Sheet makeSheet()
    {
        QList<Answered> texts;
        for (const Answered &answer : m_answers) {
            const auto widget = m_copy.widget(answer);
            if (!answer.isButton() && !answer.text.isEmpty() && widget && widget->isPrinted) {
                texts.append(answer);
            }
        }
        SavedCopy::Sheet sheet = m_copy.sheet(texts);
        for (const Answered &answer : texts) {
            if (!sheet.answers.contains(answer)) {
                miss(answer, u"no drawing in the saved copy"_s);
            }
        }
        QFile file(m_sheet);
        if (!file.open(QIODevice::WriteOnly) || file.write(sheet.pdf) != sheet.pdf.size()) {
            m_verdict.lost.append(u"%1: no room for the judges' own files"_s.arg(m_name));
        }
        return sheet;
    }

    /// Each drawing of the saved copy by itself, without the form's print.
    void readSheet(Engine engine, const QList<Answered> &answers)
    {
        if (answers.isEmpty()) {
            return;
        }
        const auto text = PageText::of(engine, m_sheet);
        if (!text) {
            cantRead(engine, u"fields of the saved copy"_s);
            return;
        }
        constexpr double margin = SavedCopy::margin;
        for (int i = 0; i < answers.size(); ++i) {
            const Answered &answer = answers.at(i);
            const QRectF place(QPointF(margin, margin), answer.rect.size());
            if (!text->shows(answer.text, 2 * i, place)) {
                miss(answer, u"%1 reads \"%2\" in the saved copy"_s.arg(
                                 nameOf(engine), shortened(text->textIn(2 * i, place))));
            }
        }
    }

    /// What appears only without clips was cut.
    void measureSheet(Engine engine, const QList<Answered> &answers)
    {
        constexpr int resolution = 144;
        constexpr qsizetype fewest = 4; // dots
        constexpr qsizetype part = 100;
        if (answers.isEmpty()) {
            return;
        }
        const auto pages = Drawing::of(engine, m_sheet, resolution);
        if (!pages || pages->size() != 2 * answers.size()) {
            cantRead(engine, u"drawings of the saved copy"_s);
            return;
        }
        for (qsizetype i = 0; i < answers.size(); ++i) {
            const Drawing &whole = pages->at(2 * i + 1);
            const qsizetype cut = whole.darkDotsBeyond(pages->at(2 * i));
            const qsizetype all = whole.darkDots();
            if (answers.at(i).kind != FormField::Kind::listBox && cut >= fewest &&
                cut * part > all) {
                miss(answers.at(i),
                     u"%1 cuts off %2 of %3 dots"_s.arg(nameOf(engine)).arg(cut).arg(all));
            }
        }
    }

    void readFields()
    {
        const auto data = FieldData::of(m_saved);
        if (!data) {
            m_verdict.notes.append(u"%1: pdftk can't read the saved copy"_s.arg(m_name));
        }
        QMap<QString, QList<Answered>> byName;
        for (const Answered &answer : m_answers) {
            byName[answer.name.isEmpty() ? u"/%1"_s.arg(answer.id) : answer.name].append(answer);
        }
        for (auto answers = byName.cbegin(); answers != byName.cend(); ++answers) {
            const QString wrong = readField(answers.value(), data);
            if (!wrong.isEmpty()) {
                m_verdict.readOtherwise.append(
                    u"%1: %2: %3"_s.arg(m_name, answers.value().first().place(), wrong));
            }
        }
    }

    /// The answers that share a name; empty when all is as typed.
    [[nodiscard]] QString readField(const QList<Answered> &answers,
                                    const std::optional<FieldData> &data) const
    {
        QStringList expected;
        for (const Answered &answer : answers) {
            const auto widget = m_copy.widget(answer);
            if (!widget) {
                return u"qpdf finds no such widget"_s;
            }
            if (answer.on && widget->state != widget->onState) {
                return u"it is on but drawn as \"%1\""_s.arg(widget->state);
            }
            expected += answer.on ? QStringList{widget->onState} : answer.stored;
            if (answer.on && !widget->exportValue.isEmpty()) {
                expected.append(widget->exportValue);
            }
        }
        const QString inFile = m_copy.widget(answers.first())->value;
        if (QString wrong = compared(u"qpdf"_s, expected, {inFile}); !wrong.isEmpty()) {
            return wrong;
        }
        const QString &name = answers.first().name;
        return data && !name.isEmpty() ? compared(u"pdftk"_s, expected, data->valuesOf(name))
                                       : QString();
    }

    [[nodiscard]] static QString compared(const QString &reader, const QStringList &expected,
                                          const QStringList &found)
    {
        if (found.isEmpty()) {
            return reader + u" finds no such field"_s;
        }
        const auto isExpected = [&](const QString &value) {
            return std::ranges::any_of(expected, [&](const QString &one) {
                return withOneLineEnd(one) == withOneLineEnd(value);
            });
        };
        const auto other = std::ranges::find_if_not(found, isExpected);
        return other == found.end() ? QString()
                                    : u"%1 reads \"%2\" for \"%3\""_s.arg(
                                          reader, shortened(*other), shortened(expected.value(0)));
    }

    QString m_flat;
    QString m_saved;
    QString m_sheet;
    QString m_name;
    QList<Answered> m_answers;
    SavedCopy m_copy;
    QMap<int, QStringList> m_missing; // by widget, why
    Verdict m_verdict;
};
} // namespace

void Verdict::add(const Verdict &other)
{
    lost += other.lost;
    notDrawn += other.notDrawn;
    readOtherwise += other.readOtherwise;
    notes += other.notes;
}

Judges::Judges(const QString &original, const QString &untouched)
    : m_untouched(untouched), m_checkOfOriginal(checkStatus(original))
{
    if (QFile::exists(untouched)) {
        for (const Engine engine : engines) {
            m_before[engine] =
                Drawing::of(engine, untouched, pageResolution).value_or(QList<Drawing>());
        }
    }
}

/// Empty when the copy is as sound as the file that it was made from.
QString Judges::checked(const QString &pdf) const
{
    constexpr int good = 0;
    constexpr int warnings = 3;
    const int status = QFile::exists(pdf) ? checkStatus(pdf) : good;
    const bool isSound = status == good || (status == warnings && m_checkOfOriginal != good);
    return isSound ? QString() : u"qpdf --check says %1"_s.arg(status);
}

Verdict Judges::untouched() const
{
    Verdict verdict;
    if (const QString wrong = checked(m_untouched); !wrong.isEmpty()) {
        verdict.lost.append(u"the untouched copy: "_s + wrong);
    } else if (QFile::exists(m_untouched)) {
        for (const Engine engine : engines) {
            if (m_before.value(engine).isEmpty()) {
                verdict.lost.append(u"%1 can't draw the untouched copy"_s.arg(nameOf(engine)));
            }
        }
    }
    return verdict;
}

Verdict Judges::pass(const QString &folder, const QString &name) const
{
    Verdict verdict;
    for (const QString &file : {u"saved.pdf"_s, u"flat.pdf"_s}) {
        if (const QString wrong = checked(folder + u'/' + file); !wrong.isEmpty()) {
            verdict.lost.append(u"%1: %2: %3"_s.arg(name, file, wrong));
        }
    }
    try {
        if (QFile::exists(folder + u"/saved.pdf"_s)) {
            verdict.add(PassJudge(folder, name).verdict(m_before));
        }
    } catch (const std::exception &error) {
        verdict.lost.append(u"%1: the saved copy: %2"_s.arg(name, QString::fromUtf8(error.what())));
    }
    return verdict;
}
