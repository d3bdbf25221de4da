#include "ButtonAppearance.h"

#include "QpdfFile.h"

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>

#include <QByteArray>
#include <QList>

#include <algorithm>
#include <array>
#include <set>

namespace {
/// What draws a mark in a square from (-1, -1) to (1, 1).
constexpr const char *checkMark = "0 G 0.24 w 1 J 1 j -0.55 0.05 m -0.15 -0.5 l 0.6 0.6 l S\n";
constexpr const char *dot =
    "0 g 0.5 0 m 0.5 0.276 0.276 0.5 0 0.5 c -0.276 0.5 -0.5 0.276 -0.5 0 c "
    "-0.5 -0.276 -0.276 -0.5 0 -0.5 c 0.276 -0.5 0.5 -0.276 0.5 0 c f\n";
constexpr const char *circle = "0.9 0 m 0.9 0.497 0.497 0.9 0 0.9 c -0.497 0.9 -0.9 0.497 -0.9 0 c "
                               "-0.9 -0.497 -0.497 -0.9 0 -0.9 c 0.497 -0.9 0.9 -0.497 0.9 0 c h ";
constexpr const char *square = "-0.94 -0.94 1.88 1.88 re ";

QByteArray number(double value)
{
    return QByteArray::number(value, 'f', 3);
}

/// A colour of one, three or four parts and its operator; empty for none.
QByteArray colour(QPDFObjectHandle parts, const std::array<const char *, 3> &operators)
{
    if (!parts.isArray()) {
        return {};
    }
    QByteArray words;
    for (QPDFObjectHandle part : parts.getArrayAsVector()) {
        if (!part.isNumber()) {
            return {};
        }
        words += number(std::clamp(part.getNumericValue(), 0.0, 1.0)) + ' ';
    }
    switch (parts.getArrayNItems()) {
    case 1:
        return words + operators[0] + ' ';
    case 3:
        return words + operators[1] + ' ';
    case 4:
        return words + operators[2] + ' ';
    default:
        return {};
    }
}

/// The button's background and border as its makers chose them.
QByteArray frame(QPDFObjectHandle widget, bool round)
{
    QPDFObjectHandle look = widget.getKey("/MK");
    const QByteArray fill = colour(entryOf(look, "/BG"), {"g", "rg", "k"});
    const QByteArray line = colour(entryOf(look, "/BC"), {"G", "RG", "K"});
    const QByteArray shape = round ? circle : square;
    QByteArray content;
    if (!fill.isEmpty()) {
        content += fill + shape + "f\n";
    }
    if (!line.isEmpty()) {
        content += line + "0.1 w " + shape + "S\n";
    }
    return content;
}

QPDFObjectHandle drawing(QPDF &pdf, QPDFObjectHandle widget, bool round, bool on)
{
    const auto rect = widget.getKey("/Rect").getArrayAsRectangle();
    const double width = std::abs(rect.urx - rect.llx);
    const double height = std::abs(rect.ury - rect.lly);
    const double half = std::min(width, height) / 2;
    const QByteArray content = "q " + number(half) + " 0 0 " + number(half) + ' ' +
                               number(width / 2) + ' ' + number(height / 2) + " cm\n" +
                               frame(widget, round) + (on ? (round ? dot : checkMark) : "") + "Q\n";
    QPDFObjectHandle stream = QPDFObjectHandle::newStream(&pdf, content.toStdString());
    QPDFObjectHandle dictionary = stream.getDict();
    dictionary.replaceKey("/Type", QPDFObjectHandle::newName("/XObject"));
    dictionary.replaceKey("/Subtype", QPDFObjectHandle::newName("/Form"));
    dictionary.replaceKey("/BBox", QPDFObjectHandle::newFromRectangle({0, 0, width, height}));
    return stream;
}

/// Looks through a drawing for what leaves ink.
class InkFinder final : public QPDFObjectHandle::ParserCallbacks
{
public:
    using ParserCallbacks::handleObject;

    void handleObject(QPDFObjectHandle object) override
    {
        static const std::set<std::string> painting = {
            "f", "F", "f*", "B", "B*", "b", "b*", "s", "S", "sh", "Do", "Tj", "TJ", "'", "\"",
        };
        m_found = m_found || object.isInlineImage() ||
                  (object.isOperator() && painting.count(object.getOperatorValue()) > 0);
    }
    void handleEOF() override {}

    [[nodiscard]] bool found() const { return m_found; }

private:
    bool m_found = false;
};

/// Only a short stream can be one without ink; the others need no look inside.
bool drawsSomething(QPDFObjectHandle stream)
{
    if (!stream.isStream()) {
        return false;
    }
    const auto box = stream.getDict().getKey("/BBox").getArrayAsRectangle();
    if (box.llx == box.urx || box.lly == box.ury) {
        return false;
    }
    constexpr int longEnough = 128;
    QPDFObjectHandle length = stream.getDict().getKey("/Length");
    constexpr size_t longUnpacked = 10'000;
    if ((length.isInteger() && length.getIntValue() > longEnough) ||
        !dataOf(stream, longUnpacked)) {
        return true;
    }
    InkFinder finder;
    stream.parseAsContents(&finder);
    return finder.found();
}
} // namespace

bool ButtonAppearance::complete(QPDF &pdf, QPDFObjectHandle widget, const std::string &state,
                                bool round)
{
    QPDFObjectHandle normal = entryOf(widget.getKey("/AP"), "/N");
    if (normal.isDictionary() && drawsSomething(normal.getKey(state))) {
        return false;
    }
    if (!widget.getKey("/Rect").isRectangle()) {
        return false;
    }
    QPDFObjectHandle drawn = QPDFObjectHandle::newDictionary();
    drawn.replaceKey(state, drawing(pdf, widget, round, true));
    drawn.replaceKey("/Off", drawing(pdf, widget, round, false));
    QPDFObjectHandle appearance = QPDFObjectHandle::newDictionary();
    appearance.replaceKey("/N", drawn);
    widget.replaceKey("/AP", appearance);
    return true;
}
