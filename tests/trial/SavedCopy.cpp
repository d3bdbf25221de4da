#include "SavedCopy.h"

#include <QHash>
#include <QLineF>
#include <QSet>

#include <qpdf/Buffer.hh>
#include <qpdf/Pl_Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFLogger.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include <cmath>
#include <set>
#include <string>

using namespace Qt::Literals::StringLiterals;

namespace {
using Handle = QPDFObjectHandle;
using Rectangle = Handle::Rectangle;

std::shared_ptr<QPDF> silentQpdf()
{
    auto pdf = QPDF::create();
    const auto logger = QPDFLogger::create();
    logger->setInfo(logger->discard());
    logger->setWarn(logger->discard());
    logger->setError(logger->discard());
    pdf->setLogger(logger);
    pdf->setSuppressWarnings(true);
    return pdf;
}

Handle entryOf(Handle dictionary, const std::string &key)
{
    return dictionary.isDictionary() ? dictionary.getKey(key) : Handle::newNull();
}

Rectangle ordered(Rectangle box)
{
    return {std::min(box.llx, box.urx), std::min(box.lly, box.ury), std::max(box.llx, box.urx),
            std::max(box.lly, box.ury)};
}

/// An entry that fields inherit from those above them.
Handle inherited(Handle field, const std::string &key)
{
    constexpr int deepest = 50;
    for (int depth = 0; depth < deepest && field.isDictionary(); ++depth) {
        if (Handle value = field.getKey(key); !value.isNull()) {
            return value;
        }
        field = field.getKey("/Parent");
    }
    return Handle::newNull();
}

QString fullName(Handle field)
{
    constexpr int deepest = 50;
    QString name;
    for (int depth = 0; depth < deepest && field.isDictionary(); ++depth) {
        if (Handle part = field.getKey("/T"); part.isString()) {
            const QString text = QString::fromStdString(part.getUTF8Value());
            name = name.isEmpty() ? text : text + u'.' + name;
        }
        field = field.getKey("/Parent");
    }
    return name;
}

QString textOf(Handle value)
{
    if (value.isArray() && value.getArrayNItems() == 1) {
        value = value.getArrayItem(0);
    }
    if (value.isString()) {
        return QString::fromStdString(value.getUTF8Value());
    }
    return value.isName() ? QString::fromStdString(value.getName()).mid(1) : QString();
}

/// Where a point stands on the page as it is shown, from its upper left corner.
QPointF shownPoint(QPointF point, const Rectangle &page, int rotation)
{
    switch (rotation) {
    case 90:
        return {point.y() - page.lly, point.x() - page.llx};
    case 180:
        return {page.urx - point.x(), point.y() - page.lly};
    case 270:
        return {page.ury - point.y(), page.urx - point.x()};
    default:
        return {point.x() - page.llx, page.ury - point.y()};
    }
}

struct Placed
{
    Handle widget;
    QPointF middle; // as it is shown
    int rotation = 0;
};

/// The drawing for the state in which the widget is.
Handle drawingOf(const Handle &widget)
{
    Handle normal = entryOf(entryOf(widget, "/AP"), "/N");
    if (normal.isStream()) {
        return normal;
    }
    Handle state = entryOf(widget, "/AS");
    return state.isName() ? entryOf(normal, state.getName()) : Handle::newNull();
}

QString onStateOf(const Handle &widget)
{
    Handle states = entryOf(entryOf(widget, "/AP"), "/N");
    if (states.isDictionary()) {
        for (const std::string &state : states.getKeys()) {
            if (state != "/Off") {
                return QString::fromStdString(state).mid(1);
            }
        }
    }
    return {};
}

/// What the field's list of export values has for the button, whose on-state is its position there.
QString exportValueOf(const Handle &widget)
{
    Handle list = inherited(widget, "/Opt");
    bool isPosition = false;
    const int position = onStateOf(widget).toInt(&isPosition);
    QStringList values;
    for (int i = 0; list.isArray() && i < list.getArrayNItems(); ++i) {
        values.append(textOf(list.getArrayItem(i)));
    }
    const QString value = isPosition ? values.value(position) : QString();
    return values.count(value) == 1 ? value : QString();
}

/// Lets texts and pictures through as they are, and of paths only what clips, or not even that.
class TextOnly final : public Handle::TokenFilter
{
public:
    explicit TextOnly(bool clips) : m_clips(clips) {}

    void handleToken(QPDFTokenizer::Token const &token) override
    {
        static const std::set<std::string> painting{"f", "F", "f*", "B", "B*", "b", "b*", "S", "s"};
        static const std::set<std::string> clipping{"W", "W*"};
        const std::string &text = token.getValue();
        const bool isWord = token.getType() == QPDFTokenizer::tt_word;
        if (isWord && painting.contains(text)) {
            write("n");
        } else if (!isWord || m_clips || !clipping.contains(text)) {
            writeToken(token);
        }
    }

private:
    bool m_clips;
};

std::string filtered(Handle drawing, bool clips)
{
    TextOnly filter(clips);
    Pl_Buffer buffer("drawing");
    drawing.filterAsContents(&filter, &buffer);
    const auto bytes = buffer.getBufferSharedPointer();
    return {reinterpret_cast<const char *>(bytes->getBuffer()), bytes->getSize()};
}

/// What takes the drawing's box to a rectangle, as every viewer places it; nothing for a box of no
/// size.
std::optional<QPDFMatrix> placing(Handle drawing, const Rectangle &onto)
{
    Handle dictionary = drawing.getDict();
    Handle matrix = entryOf(dictionary, "/Matrix");
    Handle box = entryOf(dictionary, "/BBox");
    if (!box.isRectangle()) {
        return std::nullopt;
    }
    const QPDFMatrix own = matrix.isMatrix() ? QPDFMatrix(matrix.getArrayAsMatrix()) : QPDFMatrix();
    const Rectangle from = own.transformRectangle(ordered(box.getArrayAsRectangle()));
    const double width = from.urx - from.llx;
    const double height = from.ury - from.lly;
    if (width <= 0 || height <= 0) {
        return std::nullopt;
    }
    const double x = (onto.urx - onto.llx) / width;
    const double y = (onto.ury - onto.lly) / height;
    return QPDFMatrix(x, 0, 0, y, onto.llx - from.llx * x, onto.lly - from.lly * y);
}

/// Builds the sheet's pages.
class SheetMaker final
{
public:
    SheetMaker() : m_pdf(silentQpdf()) { m_pdf->emptyPDF(); }

    /// False for a widget that can't be drawn.
    bool add(const Placed &placed)
    {
        Handle drawing = drawingOf(placed.widget);
        Handle rect = entryOf(placed.widget, "/Rect");
        if (!drawing.isStream() || !rect.isRectangle()) {
            return false;
        }
        const Rectangle place = ordered(rect.getArrayAsRectangle());
        constexpr double margin = SavedCopy::margin;
        const Rectangle onto(margin, margin, margin + place.urx - place.llx,
                             margin + place.ury - place.lly);
        const auto matrix = placing(drawing, onto);
        if (!matrix) {
            return false;
        }
        addPage(copyOf(drawing, true), *matrix, onto, placed.rotation);
        addPage(copyOf(drawing, false), *matrix, onto, placed.rotation);
        return true;
    }

    [[nodiscard]] QByteArray write() const
    {
        QPDFWriter writer(*m_pdf);
        writer.setOutputMemory();
        writer.write();
        const auto bytes = writer.getBufferSharedPointer();
        return {reinterpret_cast<const char *>(bytes->getBuffer()),
                static_cast<qsizetype>(bytes->getSize())};
    }

private:
    Handle copyOf(const Handle &drawing, bool asItIs)
    {
        Handle dictionary = m_pdf->copyForeignObject(drawing).getDict();
        Handle copy = Handle::newStream(m_pdf.get(), filtered(drawing, asItIs));
        for (const std::string &key : dictionary.getKeys()) {
            if (key != "/Length" && key != "/Filter" && key != "/DecodeParms") {
                copy.getDict().replaceKey(key, dictionary.getKey(key));
            }
        }
        copy.getDict().replaceKey("/Subtype", Handle::newName("/Form"));
        if (!asItIs) {
            constexpr double more = 20;
            const Rectangle box = ordered(dictionary.getKey("/BBox").getArrayAsRectangle());
            copy.getDict().replaceKey(
                "/BBox", Handle::newFromRectangle(Rectangle(box.llx - more, box.lly - more,
                                                            box.urx + more, box.ury + more)));
        }
        return copy;
    }

    void addPage(const Handle &drawing, const QPDFMatrix &matrix, const Rectangle &onto,
                 int rotation)
    {
        const Rectangle size(0, 0, onto.urx + SavedCopy::margin, onto.ury + SavedCopy::margin);
        Handle page = Handle::parse("<</Type/Page/Resources<</XObject<<>>>>>>");
        page.getKey("/Resources").getKey("/XObject").replaceKey("/A", drawing);
        page.replaceKey("/MediaBox", Handle::newFromRectangle(size));
        page.replaceKey("/Rotate", Handle::newInteger(rotation));
        page.replaceKey("/Contents",
                        Handle::newStream(m_pdf.get(), "q " + matrix.unparse() + " cm /A Do Q"));
        m_pdf->addPage(m_pdf->makeIndirectObject(page), false);
    }

    std::shared_ptr<QPDF> m_pdf;
};
} // namespace

class SavedCopy::Private
{
public:
    explicit Private(QByteArray bytes) : m_bytes(std::move(bytes)), m_pdf(silentQpdf())
    {
        m_pdf->processMemoryFile("saved copy", m_bytes.constData(),
                                 static_cast<size_t>(m_bytes.size()));
        int number = 0;
        for (auto &page : QPDFPageDocumentHelper(*m_pdf).getAllPages()) {
            addWidgets(page, number);
            ++number;
        }
    }

    /// The nearest of the same name on the same page.
    [[nodiscard]] std::optional<Placed> find(const Answered &answer) const
    {
        constexpr double nearest = 3; // in points
        std::optional<Placed> found;
        double best = nearest;
        for (const Placed &placed : m_widgets.value({answer.name, answer.page})) {
            const double distance = QLineF(placed.middle, answer.rect.center()).length();
            if (distance < best) {
                best = distance;
                found = placed;
            }
        }
        return found;
    }

private:
    void addWidgets(QPDFPageObjectHelper &page, int number)
    {
        Handle crop = page.getCropBox();
        Handle turn = page.getAttribute("/Rotate", false);
        const Rectangle box = ordered(crop.getArrayAsRectangle());
        const int rotation = turn.isInteger() ? ((turn.getIntValueAsInt() % 360) + 360) % 360 : 0;
        for (auto &annotation : page.getAnnotations("/Widget")) {
            Handle widget = annotation.getObjectHandle();
            const Rectangle rect = ordered(annotation.getRect());
            const QPointF middle((rect.llx + rect.urx) / 2, (rect.lly + rect.ury) / 2);
            m_widgets[{fullName(widget), number}].append(
                {widget, shownPoint(middle, box, rotation), rotation});
        }
    }

    QByteArray m_bytes; // qpdf reads from them as long as it lives
    std::shared_ptr<QPDF> m_pdf;
    QHash<std::pair<QString, int>, QList<Placed>> m_widgets;
};

SavedCopy::SavedCopy(QByteArray pdf) : d(std::make_unique<Private>(std::move(pdf))) {}

SavedCopy::~SavedCopy() = default;

std::optional<SavedCopy::Widget> SavedCopy::widget(const Answered &answer) const
{
    constexpr int hidden = 2;
    constexpr int print = 4;
    const auto placed = d->find(answer);
    if (!placed) {
        return std::nullopt;
    }
    Handle flags = entryOf(placed->widget, "/F");
    const int bits = flags.isInteger() ? flags.getIntValueAsInt() : 0;
    return Widget{.isPrinted = (bits & (print | hidden)) == print,
                  .isDrawn = drawingOf(placed->widget).isStream(),
                  .onState = onStateOf(placed->widget),
                  .state = textOf(entryOf(placed->widget, "/AS")),
                  .exportValue = exportValueOf(placed->widget),
                  .value = textOf(inherited(placed->widget, "/V"))};
}

SavedCopy::Sheet SavedCopy::sheet(const QList<Answered> &answers) const
{
    Sheet sheet;
    SheetMaker maker;
    for (const Answered &answer : answers) {
        const auto placed = answer.isButton() ? std::nullopt : d->find(answer);
        if (placed && maker.add(*placed)) {
            sheet.answers.append(answer);
        }
    }
    sheet.pdf = maker.write();
    return sheet;
}
