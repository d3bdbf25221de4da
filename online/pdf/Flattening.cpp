#include "Flattening.h"

#include "QSMutation.h"
#include "QpdfFile.h"

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFFormFieldObjectHelper.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>

namespace {
/// True when the annotation is part of the printed page.
bool prints(QPDFObjectHandle annotation, int flags)
{
    if ((flags & an_hidden) != 0) {
        return false;
    }
    if ((flags & an_print) != 0) {
        return true;
    }
    if (!annotation.isDictionaryOfType("", "/Widget") || (flags & an_no_view) != 0) {
        return false;
    }
    QPDFFormFieldObjectHelper field(annotation);
    return !field.isPushbutton() && (field.getFlags() & ff_all_read_only) == 0;
}

/// The flags say of all annotations alike whether they are drawn; "invisible" speaks only of kinds
/// that a program doesn't know.
void settleFlags(QPDFObjectHandle annotation)
{
    QPDFObjectHandle stored = annotation.getKey("/F");
    const int flags = stored.isInteger() ? stored.getIntValueAsInt() : 0;
    const int kept = flags & ~(an_hidden | an_invisible);
    annotation.replaceKey(
        "/F", QPDFObjectHandle::newInteger(prints(annotation, flags) ? kept : kept | an_hidden));
}

void removeActions(QPDFObjectHandle root)
{
    root.removeKey("/OpenAction");
    root.removeKey("/AA");
    root.removeKey("/AF");
    QPDFObjectHandle names = root.getKey("/Names");
    if (names.isDictionary()) {
        names.removeKey("/JavaScript");
        names.removeKey("/EmbeddedFiles");
    }
}
} // namespace

void Flattening::apply(QPDF &pdf)
{
    QPDFPageDocumentHelper pages(pdf);
    for (QPDFPageObjectHelper &page : pages.getAllPages()) {
        page.getObjectHandle().removeKey("/AA");
        QPDFObjectHandle annotations = page.getObjectHandle().getKey("/Annots");
        if (!annotations.isArray()) {
            continue;
        }
        for (QPDFObjectHandle annotation : annotations.getArrayAsVector()) {
            if (annotation.isDictionary()) {
                settleFlags(annotation);
            }
        }
    }
    if (QSMutation::on(u"flattening-keeps-fields")) {
        return;
    }
    pages.flattenAnnotations();
    pdf.getRoot().removeKey("/AcroForm");
    removeActions(pdf.getRoot());
}
