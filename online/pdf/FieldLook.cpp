#include "FieldLook.h"

#include "FieldReader.h"
#include "QpdfFile.h"

#include <qpdf/QPDFFormFieldObjectHelper.hh>
#include <qpdf/QPDFObjectHandle.hh>

#include <algorithm>
#include <array>
#include <cmath>

namespace {
using Names = std::initializer_list<const char *>;

constexpr int fixedPitchFlag = 1;
constexpr int serifFlag = 1 << 1;
constexpr int italicFlag = 1 << 6;

double orZero(double number)
{
    return std::isfinite(number) ? number : 0;
}

bool hasOneOf(const QByteArray &name, Names parts)
{
    return std::ranges::any_of(parts, [&name](const char *part) { return name.contains(part); });
}

/// A colour of one, three or four parts; invalid for none.
QColor colourOf(const QList<double> &parts)
{
    const auto part = [&parts](qsizetype at) {
        return static_cast<float>(std::clamp(orZero(parts.at(at)), 0.0, 1.0));
    };
    switch (parts.size()) {
    case 1:
        return QColor::fromRgbF(part(0), part(0), part(0));
    case 3:
        return QColor::fromRgbF(part(0), part(1), part(2));
    case 4:
        return QColor::fromCmykF(part(0), part(1), part(2), part(3)).toRgb();
    default:
        return {};
    }
}

QColor colourOf(QPDFObjectHandle array)
{
    QList<double> parts;
    const int count = array.isArray() ? array.getArrayNItems() : 0;
    for (int i = 0; i < count; ++i) {
        QPDFObjectHandle item = array.getArrayItem(i);
        parts.append(item.isNumber() ? item.getNumericValue() : 0);
    }
    return colourOf(parts);
}

/// The colour that a default appearance sets last; black where it sets none.
QColor colourIn(const QByteArray &appearance)
{
    QColor colour = Qt::black;
    QList<double> numbers;
    for (const QByteArray &token : appearance.simplified().split(' ')) {
        bool isNumber = false;
        const double number = token.toDouble(&isNumber);
        if (isNumber) {
            numbers.append(number);
            continue;
        }
        const int parts = token == "g" ? 1 : token == "rg" ? 3 : token == "k" ? 4 : 0;
        if (parts > 0 && numbers.size() >= parts) {
            colour = colourOf(numbers.last(parts));
        }
        numbers.clear();
    }
    return colour;
}

/// The twin that a font of the form has among those that can be set in any script.
void readFont(TextStyle &style, QPDFObjectHandle font, const QByteArray &resource)
{
    QPDFObjectHandle base = entryOf(font, "/BaseFont");
    const QByteArray name =
        (base.isName() ? QByteArray::fromStdString(base.getName()) : resource).toLower();
    QPDFObjectHandle stored = entryOf(entryOf(font, "/FontDescriptor"), "/Flags");
    const int flags = stored.isInteger() ? stored.getIntValueAsInt() : 0;
    if (hasOneOf(name, {"cour", "mono", "consol", "typewriter", "ocr"}) ||
        (flags & fixedPitchFlag) != 0) {
        style.family = TextStyle::Family::mono;
    } else if (!name.contains("sans") &&
               (hasOneOf(name, {"times", "tiro", "roman", "serif", "georgia", "garamond", "minion",
                                "palat", "cambria", "bookman", "century"}) ||
                (flags & serifFlag) != 0)) {
        style.family = TextStyle::Family::serif;
    }
    style.bold = hasOneOf(name, {"bold", "black", "heavy", "hebo", "cobo", "tibo"});
    style.italic = hasOneOf(name, {"italic", "oblique"}) || (flags & italicFlag) != 0;
}

void readFrame(FieldFrame &frame, QPDFObjectHandle object)
{
    QPDFObjectHandle look = object.getKey("/MK");
    frame.background = colourOf(entryOf(look, "/BG"));
    frame.border = colourOf(entryOf(look, "/BC"));
    QPDFObjectHandle border = object.getKey("/BS");
    QPDFObjectHandle width = entryOf(border, "/W");
    QPDFObjectHandle old = object.getKey("/Border"); // horizontal and vertical radius, width
    if (!width.isNumber() && old.isArray() && old.getArrayNItems() > 2) {
        width = old.getArrayItem(2);
    }
    constexpr double widest = 12; // in points; a wider one is a slip
    frame.width = width.isNumber() ? std::clamp(orZero(width.getNumericValue()), 0.0, widest) : 1;
    if (frame.width <= 0) {
        frame.border = {};
    }
    QPDFObjectHandle line = entryOf(border, "/S");
    const std::string name = line.isName() ? line.getName() : "/S";
    frame.line = name == "/D"   ? FieldFrame::Line::dashed
                 : name == "/U" ? FieldFrame::Line::under
                                : FieldFrame::Line::solid;
}

void readBox(Widget &widget, QPDFObjectHandle object)
{
    QPDFObjectHandle rect = object.getKey("/Rect");
    if (rect.isRectangle()) {
        const auto box = rect.getArrayAsRectangle();
        widget.box = {orZero(std::abs(box.urx - box.llx)), orZero(std::abs(box.ury - box.lly))};
    }
    constexpr int full = 360;
    constexpr int quarter = 90;
    QPDFObjectHandle turn = entryOf(object.getKey("/MK"), "/R");
    const int degrees = turn.isInteger() ? turn.getIntValueAsInt() % full : 0;
    widget.turn = (degrees + full) % full / quarter * quarter;
}
} // namespace

void FieldLook::read(Widget &widget, QPDFObjectHandle object)
{
    FormField &field = widget.field;
    QPDFFormFieldObjectHelper helper(object);
    const QByteArray appearance = FieldReader::defaultAppearance(object);
    const QByteArray font = FieldReader::fontName(appearance);
    field.fontSize = std::max(0.0, orZero(FieldReader::fontSize(appearance)));
    constexpr std::array<Qt::AlignmentFlag, 3> alignments = {Qt::AlignLeft, Qt::AlignHCenter,
                                                             Qt::AlignRight};
    field.alignment = alignments.at(static_cast<size_t>(std::clamp(helper.getQuadding(), 0, 2)));
    readFont(widget.style,
             entryOf(entryOf(helper.getDefaultResources(), "/Font"), font.toStdString()), font);
    widget.style.colour = colourIn(appearance);
    readFrame(widget.frame, object);
    readBox(widget, object);
}
