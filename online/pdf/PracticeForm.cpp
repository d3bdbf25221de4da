#include "QSPDF.h"

#include "QSPDFDocument.h"
#include "QpdfFile.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QPdfWriter>

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr QSizeF page(612, 792); // in points, like all lengths here
constexpr double margin = 54;
constexpr double fontSize = 12;
constexpr int dotsPerPoint = 10;

constexpr std::array<QStringView, 5> labels = {u"Full name", u"Street address", u"City, state, ZIP",
                                               u"Phone", u"Date"};
constexpr QStringView agreeLabel = u"I have read the practice instructions.";

/// Where a practice field stands; y from the lower edge, as files count.
constexpr QRectF placeOf(size_t number)
{
    return number < labels.size() ? QRectF(201, 631 - 50.0 * static_cast<double>(number), 328, 22)
                                  : QRectF(200, 380, 18, 18);
}

/// The page without its fields, drawn with lengths in points from the upper left corner.
class Sheet final
{
public:
    explicit Sheet(QIODevice *device) : m_writer(device)
    {
        m_writer.setResolution(72 * dotsPerPoint);
        m_writer.setPageSize(QPageSize(QPageSize::Letter));
        m_writer.setPageMargins({});
        m_writer.setTitle(u"Vell practice form"_s);
        m_painter.begin(&m_writer);
    }

    /// y: of the line that the letters stand on.
    void text(double x, double y, QStringView text, double size, bool bold)
    {
        QFont font = QGuiApplication::font();
        font.setPointSizeF(size);
        font.setBold(bold);
        m_painter.setFont(font);
        m_painter.drawText(QPointF(x, y) * dotsPerPoint, text.toString());
    }

    void outline(const QRectF &rect)
    {
        m_painter.setPen(QPen(Qt::gray, dotsPerPoint));
        m_painter.drawRect(QRectF(rect.topLeft() * dotsPerPoint, rect.size() * dotsPerPoint));
        m_painter.setPen(Qt::black);
    }

private:
    QPdfWriter m_writer;
    QPainter m_painter;
};

QByteArray drawnPage()
{
    constexpr double outlineGap = 1; // between a field and its outline
    QByteArray pdf;
    QBuffer buffer(&pdf);
    buffer.open(QIODevice::WriteOnly);
    {
        Sheet sheet(&buffer);
        sheet.text(margin, 72, u"VELL PRACTICE FORM", 18, true);
        sheet.text(margin, 98,
                   u"A sample fillable form made by Vell Quillstone for practice. It is not an "
                   u"official form",
                   fontSize, false);
        sheet.text(margin, 114,
                   u"and is not filed anywhere. Copy and share it freely. Made by Vell Quillstone.",
                   fontSize, false);
        for (size_t i = 0; i < QSPDF::practiceFields.size(); ++i) {
            const QRectF field = placeOf(i);
            const QRectF shown(field.left(), page.height() - field.bottom(), field.width(),
                               field.height());
            sheet.outline(shown.adjusted(-outlineGap, -outlineGap, outlineGap, outlineGap));
            const double line = shown.center().y() + fontSize / 3;
            if (i < labels.size()) {
                sheet.text(margin, line, labels.at(i), fontSize, true);
            } else {
                sheet.text(shown.right() + fontSize, line, agreeLabel, fontSize, false);
            }
        }
    }
    return pdf;
}

QPDFObjectHandle textString(QStringView text)
{
    return QPDFObjectHandle::newUnicodeString(text.toString().toStdString());
}

/// One of the practice fields, which is its own widget.
QPDFObjectHandle field(size_t number, const QPDFObjectHandle &sheet)
{
    const bool isText = number < labels.size();
    const QRectF place = placeOf(number);
    QPDFObjectHandle object = QPDFObjectHandle::parse(
        "<< /Type /Annot /Subtype /Widget /F 4 /MK << /BG [0.93 0.96 1] >> >>");
    object.replaceKey("/P", sheet);
    object.replaceKey("/Rect", QPDFObjectHandle::newFromRectangle(
                                   {place.left(), place.top(), place.right(), place.bottom()}));
    object.replaceKey("/FT", QPDFObjectHandle::newName(isText ? "/Tx" : "/Btn"));
    object.replaceKey("/T", textString(QSPDF::practiceFields.at(number)));
    object.replaceKey("/TU", textString(isText ? labels.at(number) : agreeLabel));
    if (isText) {
        object.replaceKey("/DA", QPDFObjectHandle::newString("/Helv 12 Tf 0 g"));
    }
    return object;
}
} // namespace

QByteArray QSPDF::practiceForm()
{
    const QpdfFile file(drawnPage());
    QPDF &pdf = file.pdf();
    QPDFObjectHandle sheet = pdf.getAllPages().at(0);
    QPDFObjectHandle fields = QPDFObjectHandle::newArray();
    for (size_t i = 0; i < practiceFields.size(); ++i) {
        fields.appendItem(pdf.makeIndirectObject(field(i, sheet)));
    }
    sheet.replaceKey("/Annots", fields);
    QPDFObjectHandle form = QPDFObjectHandle::newDictionary();
    form.replaceKey("/Fields", fields);
    pdf.getRoot().replaceKey("/AcroForm", pdf.makeIndirectObject(form));
    // Opening it draws the fields, so that every other program has something to show too.
    return QSPDFDocument::open(file.write())->bytes();
}
