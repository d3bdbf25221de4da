#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QProcess>
#include <QRectF>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

/// A PDF of one page, 200 by 200 points. Its objects from number 4 on are dictionaries with these
/// entries: those with "/Rect" are widgets, those without "/Parent" are fields of the form.
inline QByteArray smallPDF(const QList<QByteArray> &objects, const QByteArray &page = {},
                           const QByteArray &form = {})
{
    QByteArray fields;
    QByteArray widgets;
    QByteArray body;
    for (qsizetype i = 0; i < objects.size(); ++i) {
        const QByteArray number = QByteArray::number(4 + i);
        const bool isWidget = objects.at(i).contains("/Rect");
        fields += objects.at(i).contains("/Parent") ? QByteArray() : number + " 0 R ";
        widgets += isWidget ? number + " 0 R " : QByteArray();
        body += number + " 0 obj <<" + (isWidget ? "/Type/Annot/Subtype/Widget" : "") +
                objects.at(i) + ">> endobj\n";
    }
    return "%PDF-1.7\n1 0 obj <</Type/Catalog/Pages 2 0 R/AcroForm<</Fields[" + fields + "]" +
           form +
           ">>>> endobj\n2 0 obj <</Type/Pages/Kids[3 0 R]/Count 1>> endobj\n"
           "3 0 obj <</Type/Page/Parent 2 0 R/MediaBox[0 0 200 200]/Annots[" +
           widgets + "]" + page + ">> endobj\n" + body + "trailer <</Root 1 0 R>>\n";
}

/// Adds drawings: number 8 leaves no ink, 9 is a square, and 10 is one of no size.
inline QByteArray withDrawings(QByteArray pdf)
{
    const auto drawing = [](int number, const QByteArray &box, const QByteArray &content) {
        return QByteArray::number(number) + " 0 obj <</BBox[" + box + "]/Subtype/Form/Length " +
               QByteArray::number(content.size()) + ">> stream\n" + content +
               "\nendstream endobj\n";
    };
    const QByteArray square = "0 0 9 9 re f";
    return pdf.replace("trailer", drawing(8, "0 0 9 9", "/Tx BMC q 0 0 9 9 re W n Q EMC") +
                                      drawing(9, "0 0 9 9", square) +
                                      drawing(10, "0 0 0 0", square) + "trailer");
}

/// Adds number 9, the content of a page that names it: a text in 12-point letters, at so many
/// points from the lower left corner.
inline QByteArray withText(QByteArray pdf, const QByteArray &text, const QByteArray &at = "12 105")
{
    const QByteArray content = "BT /F 12 Tf " + at + " Td (" + text + ") Tj ET";
    pdf.replace("/Contents 9 0 R",
                "/Contents 9 0 R/Resources<</Font<</F<</Type/Font/Subtype/Type1/BaseFont"
                "/Helvetica>>>>>>");
    return pdf.replace("trailer", "9 0 obj <</Length " + QByteArray::number(content.size()) +
                                      ">> stream\n" + content + "\nendstream endobj\ntrailer");
}

constexpr const char *helv = "/DA(/Helv 12 Tf 0 g)/F 4";
inline const QByteArray textField = QByteArray("/FT/Tx/T(a)/Rect[10 100 110 120]") + helv;

/// What another program says of a PDF on its standard output; fails the test when it objects.
inline QByteArray askOf(const QString &program, const QStringList &arguments, const QByteArray &pdf)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("form.pdf")));
    if (!file.open(QIODevice::WriteOnly) || file.write(pdf) != pdf.size() || !file.flush()) {
        qFatal("The PDF could not be written");
    }
    QProcess process;
    process.start(program,
                  QStringList(arguments).replaceInStrings(QStringLiteral("FILE"), file.fileName()));
    if (!process.waitForFinished() || process.exitCode() != 0) {
        qWarning("%s: %s%s", qPrintable(program), process.readAllStandardOutput().constData(),
                 process.readAllStandardError().constData());
        QTest::qFail("another program objects to the PDF", __FILE__, __LINE__);
    }
    return process.readAllStandardOutput();
}

/// The words of a PDF's pages with their places, as pdftotext finds them.
class Words final
{
public:
    explicit Words(const QByteArray &pdf)
    {
        QXmlStreamReader xml(
            askOf(QStringLiteral("pdftotext"),
                  {QStringLiteral("-bbox"), QStringLiteral("FILE"), QStringLiteral("-")}, pdf));
        int page = -1;
        while (!xml.atEnd()) {
            xml.readNext();
            if (!xml.isStartElement()) {
                continue;
            }
            if (xml.name() == u"page") {
                ++page;
            } else if (xml.name() == u"word") {
                const auto value = [&](const char *name) {
                    return xml.attributes().value(QLatin1String(name)).toDouble();
                };
                const QPointF middle((value("xMin") + value("xMax")) / 2,
                                     (value("yMin") + value("yMax")) / 2);
                m_words.append({page, middle, xml.readElementText()});
            }
        }
    }

    /// The words in a place of a page, without spaces.
    [[nodiscard]] QString in(int page, const QRectF &place) const
    {
        QString text;
        for (const Word &word : m_words) {
            if (word.page == page && place.contains(word.middle)) {
                text += word.text;
            }
        }
        return text;
    }

private:
    struct Word
    {
        int page;
        QPointF middle;
        QString text;
    };
    QList<Word> m_words;
};
