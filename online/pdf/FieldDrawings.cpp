#include "FieldDrawings.h"

#include "FieldDrawing.h"
#include "FieldReader.h"
#include "QpdfFile.h"
#include "TextCanvas.h"

#include <qpdf/Constants.h>
#include <qpdf/Pl_String.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

#include <array>
#include <cmath>

namespace {
/// Cairo cuts letters off at the last whole point of a page, and the drawing at its own edge.
QSizeF pageFor(const QSizeF &drawing)
{
    return {std::ceil(drawing.width()) + 1, std::ceil(drawing.height()) + 1};
}

/// box: from the lower left corner, as files count.
QPDFObjectHandle formXObject(QPDF &pdf, const std::string &content, const QRectF &box)
{
    QPDFObjectHandle drawing = QPDFObjectHandle::newStream(&pdf, content);
    QPDFObjectHandle dictionary = drawing.getDict();
    dictionary.replaceKey("/Type", QPDFObjectHandle::newName("/XObject"));
    dictionary.replaceKey("/Subtype", QPDFObjectHandle::newName("/Form"));
    dictionary.replaceKey("/BBox", QPDFObjectHandle::newFromRectangle(
                                       {box.left(), box.top(), box.right(), box.bottom()}));
    dictionary.replaceKey(FieldReader::ownDrawing, QPDFObjectHandle::newBool(true));
    return drawing;
}

/// Between the marks that tell other programs which part of a drawing is the field's text.
std::string marked(QPDFObjectHandle page)
{
    std::string content;
    Pl_String collector("content", nullptr, content);
    page.getKey("/Contents").pipeStreamData(&collector, 0, qpdf_dl_generalized);
    return "/Tx BMC\nq\n" + content + "\nQ\nEMC\n";
}
} // namespace

FieldDrawings::FieldDrawings(const QList<Widget> &widgets)
{
    PagesCanvas canvas;
    QHash<const FieldDrawing *, int> drawn;
    for (const Widget &widget : widgets) {
        const FieldDrawing *drawing = widget.drawing.get();
        if (!drawing || drawing->isEmpty()) {
            continue;
        }
        const auto page = static_cast<int>(drawn.size());
        m_pages.insert(widget.field.id, drawn.value(drawing, page));
        if (!drawn.contains(drawing)) {
            drawn.insert(drawing, page);
            canvas.beginPage(pageFor(drawing->size()));
            drawing->draw(canvas);
        }
    }
    if (m_pages.isEmpty()) {
        return;
    }
    m_pdf = canvas.finish();
    m_file = std::make_unique<QpdfFile>(m_pdf);
    m_objects = m_file->pdf().getAllPages();
}

FieldDrawings::~FieldDrawings() = default;

QPDFObjectHandle FieldDrawings::appearance(QPDF &form, const Widget &widget) const
{
    const int page = pageOf(widget.field.id);
    if (page < 0) {
        return QPDFObjectHandle::newNull();
    }
    QPDFObjectHandle source = m_objects.at(static_cast<size_t>(page));
    const QSizeF size = widget.drawing->size();
    const QRectF box({0, pageFor(size).height() - size.height()}, size);
    QPDFObjectHandle drawing = formXObject(form, marked(source), box);
    QPDFObjectHandle resources = QPDFPageObjectHelper(source).getAttribute("/Resources", false);
    if (!resources.isIndirect()) {
        resources = m_file->pdf().makeIndirectObject(resources);
    }
    drawing.getDict().replaceKey("/Resources", form.copyForeignObject(resources));
    if (widget.turn != 0) {
        static constexpr std::array<const char *, 3> matrices = {
            "[0 1 -1 0 0 0]", "[-1 0 0 -1 0 0]", "[0 -1 1 0 0 0]"};
        constexpr int quarter = 90;
        drawing.getDict().replaceKey(
            "/Matrix",
            QPDFObjectHandle::parse(matrices.at(static_cast<size_t>(widget.turn / quarter - 1))));
    }
    return drawing;
}

QPDFObjectHandle FieldDrawings::nothing(QPDF &form)
{
    return formXObject(form, {}, {0, 0, 1, 1});
}
