#include "PageText.h"

#include "Programs.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {
/// The same text for the same letters, however they are coded and spaced.
QString comparable(const QString &text)
{
    QString result;
    const QString composed = text.normalized(QString::NormalizationForm_KC);
    std::ranges::copy_if(composed, std::back_inserter(result), [](QChar character) {
        return !character.isSpace() && character.category() != QChar::Other_Format;
    });
    return result;
}

bool hasOtherOrder(const QString &text)
{
    return std::ranges::any_of(text.toUcs4(), [](uint letter) {
        const QChar::Direction direction = QChar::direction(letter);
        const QChar::Script script = QChar::script(letter);
        return direction == QChar::DirR || direction == QChar::DirAL ||
               (script >= QChar::Script_Devanagari && script <= QChar::Script_Sinhala);
    });
}

bool isInOrder(const QString &text, const QString &found)
{
    qsizetype next = 0;
    return std::ranges::all_of(text, [&](QChar letter) {
        next = found.indexOf(letter, next) + 1;
        return next > 0;
    });
}

/// A sign that stands for several letters may have no letter of its own: an engine that doesn't
/// know the text that is written beside it reads U+FFFD there. Each of them is let pass for three.
bool isInAnyOrder(QString text, QString found)
{
    constexpr qsizetype most = 3;
    const qsizetype unnamed = found.count(QChar(QChar::ReplacementCharacter));
    std::ranges::sort(text);
    std::ranges::sort(found);
    QString missing;
    std::ranges::set_difference(text, found, std::back_inserter(missing));
    return missing.size() <= most * unnamed;
}

QString joined(const auto &letters)
{
    QString text;
    for (const auto &letter : letters) {
        text += letter.text;
    }
    return text;
}

double numberOf(const QXmlStreamReader &xml, const char *name)
{
    return xml.attributes().value(QLatin1String(name)).toDouble();
}

/// The box of four corners.
QRectF boxOf(QStringView quad)
{
    const QList<QStringView> numbers = quad.split(u' ', Qt::SkipEmptyParts);
    if (numbers.size() != 8) {
        return {};
    }
    double left = numbers.at(0).toDouble();
    double top = numbers.at(1).toDouble();
    double right = left;
    double bottom = top;
    for (qsizetype i = 2; i < 8; i += 2) {
        left = std::min(left, numbers.at(i).toDouble());
        right = std::max(right, numbers.at(i).toDouble());
        top = std::min(top, numbers.at(i + 1).toDouble());
        bottom = std::max(bottom, numbers.at(i + 1).toDouble());
    }
    return {QPointF(left, top), QPointF(right, bottom)};
}

/// Control characters, which no XML may have, not even by their numbers.
QByteArray withoutControls(const QByteArray &xml)
{
    static const QRegularExpression controls(
        u"&#(x0*(?:[0-8bcef]|1[0-9a-f]|fff[ef]|d[89a-f][0-9a-f]{2}));|[\\x00-\\x08\\x0b\\x0c\\x0e-\\x1f]"_s,
        QRegularExpression::CaseInsensitiveOption);
    return QString::fromUtf8(xml).replace(controls, u"?"_s).toUtf8();
}
} // namespace

std::optional<PageText> PageText::of(Engine engine, const QString &pdf)
{
    const bool isPoppler = engine == Engine::poppler;
    const Programs::Output output =
        isPoppler ? Programs::run(u"pdftotext"_s, {u"-bbox"_s, u"-cropbox"_s, pdf, u"-"_s})
                  : Programs::run(u"mutool"_s,
                                  {u"draw"_s, u"-q"_s, u"-F"_s, u"stext"_s, u"-o"_s, u"-"_s, pdf});
    if (!output.isGood()) {
        return std::nullopt;
    }
    return isPoppler ? fromPoppler(output.text) : fromMuPDF(output.text);
}

void PageText::append(const QString &text, const QRectF &box, double doubt)
{
    const QString letters = comparable(text);
    if (!letters.isEmpty() && !m_pages.isEmpty()) {
        m_pages.last().append({letters, box.center(), doubt});
    }
}

/// Its letters are taken to be of equal size.
void PageText::appendWord(const QString &word, const QRectF &box)
{
    const QList<uint> letters = word.toUcs4();
    const auto count = static_cast<double>(letters.size());
    const bool isUpright = letters.size() > 1 && box.height() > 2 * box.width();
    const QSizeF size = isUpright ? QSizeF(box.width(), box.height() / count)
                                  : QSizeF(box.width() / count, box.height());
    const QPointF step = isUpright ? QPointF(0, size.height()) : QPointF(size.width(), 0);
    const double doubt = letters.size() > 1 && !isUpright ? box.height() / 2 : 0;
    for (qsizetype i = 0; i < letters.size(); ++i) {
        const auto letter = static_cast<char32_t>(letters.at(i));
        append(QString::fromUcs4(&letter, 1),
               QRectF(box.topLeft() + step * static_cast<double>(i), size), doubt);
    }
}

PageText PageText::fromPoppler(const QByteArray &words)
{
    PageText text;
    QXmlStreamReader xml(withoutControls(words));
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == u"page") {
            text.m_pages.append(Letters());
        } else if (xml.isStartElement() && xml.name() == u"word") {
            const QRectF box(QPointF(numberOf(xml, "xMin"), numberOf(xml, "yMin")),
                             QPointF(numberOf(xml, "xMax"), numberOf(xml, "yMax")));
            text.appendWord(xml.readElementText(), box);
        }
    }
    return text;
}

PageText PageText::fromMuPDF(const QByteArray &structure)
{
    PageText text;
    QXmlStreamReader xml(withoutControls(structure));
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == u"page") {
            text.m_pages.append(Letters());
        } else if (xml.isStartElement() && xml.name() == u"char") {
            text.append(xml.attributes().value(u"c"_s).toString(),
                        boxOf(xml.attributes().value(u"quad"_s)));
        }
    }
    return text;
}

PageText::Letters PageText::lettersIn(int page, const QRectF &place) const
{
    constexpr double blur = 1; // in points
    Letters found;
    std::ranges::copy_if(m_pages.value(page), std::back_inserter(found), [&](const Letter &letter) {
        const double aside = blur + letter.doubt;
        return place.adjusted(-aside, -blur, aside, blur).contains(letter.middle);
    });
    return found;
}

QString PageText::textIn(int page, const QRectF &place) const
{
    return joined(lettersIn(page, place));
}

/// An engine may take print and answer for two columns; this is their order on paper.
QString PageText::lineByLine(Letters letters)
{
    constexpr double sameLine = 2; // in points
    std::ranges::sort(letters, {}, [](const Letter &letter) { return letter.middle.y(); });
    auto line = letters.begin();
    for (auto letter = letters.begin(); letter != letters.end(); ++letter) {
        const bool isLast = letter + 1 == letters.end();
        if (isLast || (letter + 1)->middle.y() - letter->middle.y() > sameLine) {
            std::ranges::sort(line, letter + 1, {}, [](const Letter &of) { return of.middle.x(); });
            line = letter + 1;
        }
    }
    return joined(letters);
}

bool PageText::shows(const QString &text, int page, const QRectF &place) const
{
    const QString wanted = comparable(text);
    const Letters letters = lettersIn(page, place);
    const QString found = joined(letters);
    return isInOrder(wanted, found) || isInOrder(wanted, lineByLine(letters)) ||
           (hasOtherOrder(wanted) && isInAnyOrder(wanted, found));
}
