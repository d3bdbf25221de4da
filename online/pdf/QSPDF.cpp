#include "QSPDF.h"

#include "QSError.h"
#include "QSMutation.h"
#include "QpdfFile.h"

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>

using namespace Qt::Literals::StringLiterals;

namespace {
using Kind = FormField::Kind;

bool isButton(const FormField &field)
{
    return field.kind == Kind::checkBox || field.kind == Kind::radio ||
           field.kind == Kind::pushButton;
}

QString textOf(const FormField &field, const FormValue &value)
{
    if (isButton(field)) {
        return value.on ? u"on"_s : u"off"_s;
    }
    QStringList texts;
    for (const int chosen : value.chosen) {
        texts.append(field.choices.at(chosen).label);
    }
    return texts.isEmpty() ? value.text : texts.join(u'\n');
}

FormValue valueOf(const FormField &field, const QString &text)
{
    FormValue value;
    value.on = text == u"on" || text == u"true" || text == u"yes" ||
               (QSMutation::on(u"any-yes-ticks") && text == u"Yes");
    value.text = text;
    const QStringList labels = text.split(u'\n');
    for (int i = 0; i < field.choices.size(); ++i) {
        if (labels.contains(field.choices.at(i).label)) {
            value.chosen.append(i);
        }
    }
    return value;
}
} // namespace

const QList<FormField> &QSPDF::widgets(const QSPDFDocument &document)
{
    return document.fields();
}

bool QSPDF::isFillable(const QSPDFDocument &document)
{
    return !document.fields().isEmpty();
}

QMap<QString, QString> QSPDF::values(const QSPDFDocument &document)
{
    QMap<QString, QString> values;
    const QList<FormValue> held = document.values();
    for (const FormField &field : document.fields()) {
        if (!field.name.isEmpty()) {
            values.insert(field.name, textOf(field, held.at(field.id)));
        }
    }
    return values;
}

void QSPDF::fill(QSPDFDocument &document, const QMap<QString, QString> &values)
{
    for (const FormField &field : document.fields()) {
        const auto value = values.constFind(field.name);
        if (!field.name.isEmpty() && value != values.constEnd()) {
            document.setValue(field.id, valueOf(field, *value));
        }
    }
}

QByteArray QSPDF::flatten(const QSPDFDocument &document)
{
    return document.flattened();
}

QByteArray QSPDF::pages(const QByteArray &pdf, int first, int last)
{
    try {
        const QpdfFile file(pdf);
        QPDFPageDocumentHelper pages(file.pdf());
        int number = 0;
        int kept = 0;
        for (const QPDFPageObjectHelper &page : pages.getAllPages()) {
            if (number >= first && number <= last) {
                ++kept;
            } else {
                pages.removePage(page);
            }
            ++number;
        }
        if (kept == 0) {
            throw QSError::invalid(u"There are no such pages in the PDF."_s);
        }
        return file.write();
    } catch (const QSError &) {
        throw;
    } catch (const std::exception &error) {
        throw QSError::invalid(u"The pages could not be taken out of the PDF: %1"_s.arg(
            QString::fromLocal8Bit(error.what())));
    }
}
