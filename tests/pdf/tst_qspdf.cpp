#include "QSPDF.h"
#include "SmallPDF.h"
#include "TestFiles.h"

using namespace Qt::Literals::StringLiterals;

namespace {
using Document = std::shared_ptr<QSPDFDocument>;
using Values = QMap<QString, QString>;

Values practiceValues()
{
    return {{u"full_name"_s, u"Ana Nuñez (the elder)"_s}, {u"street_address"_s, u"12 Main St #4"_s},
            {u"city_state_zip"_s, u"Elko, NV 89801"_s},   {u"phone"_s, u"775-555-0100"_s},
            {u"signature_date"_s, u"March 3, 2026"_s},    {u"agree"_s, u"on"_s}};
}

qsizetype occurrences(const QByteArray &pdf, const QString &words)
{
    return QString::fromUtf8(askOf(u"pdftotext"_s, {u"-layout"_s, u"FILE"_s, u"-"_s}, pdf))
        .count(words);
}
} // namespace

class TestQSPDF final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void practiceForm();
    void practiceFormFilled();
    void fill_data();
    void fill();
    void lastOfOneNameCounts();
    void pages();
};

void TestQSPDF::practiceForm()
{
    const QByteArray pdf = QSPDF::practiceForm();
    askOf(u"qpdf"_s, {u"--check"_s, u"FILE"_s}, pdf);
    const Document document = QSPDFDocument::open(pdf);
    QVERIFY(QSPDF::isFillable(*document));
    QCOMPARE(document->pageCount(), 1);
    QCOMPARE(document->pageSize(0), QSizeF(612, 792));
    const QList<FormField> &widgets = QSPDF::widgets(*document);
    QCOMPARE(widgets.size(), qsizetype(QSPDF::practiceFields.size()));
    for (int i = 0; i < widgets.size(); ++i) {
        const bool isText = i < 5;
        const FormField &field = widgets.at(i);
        QCOMPARE(field.name, QSPDF::practiceFields.at(size_t(i)));
        QCOMPARE(field.kind, isText ? FormField::Kind::text : FormField::Kind::checkBox);
        QCOMPARE(field.rect, isText ? QRectF(201, 792 - 631 - 22 + 50 * i, 328, 22)
                                    : QRectF(200, 792 - 380 - 18, 18, 18));
        QVERIFY(field.isSettable() && field.shown);
        QVERIFY(occurrences(pdf, field.label) == 1);
    }
    for (const QString &words : {u"VELL PRACTICE FORM"_s, u"City, state, ZIP"_s,
                                 u"I have read the practice instructions."_s}) {
        QCOMPARE(occurrences(pdf, words), 1);
    }
    const QString body = document->text(0).normalized(QString::NormalizationForm_KC);
    QVERIFY(body.contains(u"A sample fillable form made by Vell Quillstone for practice. It is not "
                          u"an official form"));
}

void TestQSPDF::practiceFormFilled()
{
    const Document document = QSPDFDocument::open(QSPDF::practiceForm());
    QCOMPARE(QSPDF::values(*document).value(u"agree"_s), u"off"_s);
    QSPDF::fill(*document, practiceValues());
    QCOMPARE(QSPDF::values(*document), practiceValues());
    const QByteArray saved = document->bytes();
    const QByteArray flat = QSPDF::flatten(*document);
    QCOMPARE(QSPDF::values(*QSPDFDocument::open(saved)), practiceValues());
    QVERIFY(!QSPDF::isFillable(*QSPDFDocument::open(flat)));
    for (const QString &value : practiceValues()) {
        if (value != u"on") {
            QCOMPARE(occurrences(saved, value), 1);
            QCOMPARE(occurrences(flat, value), 1);
        }
    }
    QCOMPARE(QSPDF::values(*document), practiceValues());
    QCOMPARE(document->bytes().size(), saved.size());
}

void TestQSPDF::fill_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("held");
    QTest::newRow("on") << u"on"_s << u"on"_s;
    QTest::newRow("true") << u"true"_s << u"on"_s;
    QTest::newRow("yes") << u"yes"_s << u"on"_s;
    QTest::newRow("a capitalised yes") << u"Yes"_s << u"off"_s;
    QTest::newRow("a number") << u"1"_s << u"off"_s;
    QTest::newRow("nothing") << QString() << u"off"_s;
}

void TestQSPDF::fill()
{
    QFETCH(const QString, value);
    const Document document = QSPDFDocument::open(
        smallPDF({"/FT/Btn/T(b)/Rect[10 10 20 20]", "/FT/Tx/T(t)/V(kept)/Rect[10 50 90 70]",
                  "/FT/Ch/Ff 131072/T(c)/Opt[[(1)(One)][(2)(Two)]]/Rect[10 80 90 100]",
                  "/FT/Tx/Rect[10 110 90 130]"}));
    QSPDF::fill(*document, {{u"b"_s, u"on"_s}, {u"c"_s, u"Two"_s}, {QString(), u"nobody's"_s}});
    QSPDF::fill(*document, {{u"b"_s, value}});
    QFETCH(const QString, held);
    const Values expected{{u"b"_s, held}, {u"c"_s, u"Two"_s}, {u"t"_s, u"kept"_s}};
    QCOMPARE(QSPDF::values(*document), expected);
    QCOMPARE(document->value(3), FormValue());
}

void TestQSPDF::lastOfOneNameCounts()
{
    const Document document = QSPDFDocument::open(smallPDF(
        {"/FT/Tx/T(t)/V(first)/Rect[10 10 90 30]", "/FT/Tx/T(t)/V(last)/Rect[10 50 90 70]"}));
    QCOMPARE(QSPDF::values(*document), (Values{{u"t"_s, u"last"_s}}));
}

void TestQSPDF::pages()
{
    const QByteArray page = smallPDF({"/FT/Tx/T(t)/V(this page)/Rect[10 10 90 30]"});
    const QByteArray three = askOf(u"qpdf"_s,
                                   {u"--empty"_s, u"--pages"_s, u"FILE"_s, u"1"_s, u"FILE"_s,
                                    u"1"_s, u"FILE"_s, u"1"_s, u"--"_s, u"-"_s},
                                   page);
    QCOMPARE(QSPDFDocument::open(three)->pageCount(), 3);
    QCOMPARE(QSPDFDocument::open(QSPDF::pages(three, 1, 2))->pageCount(), 2);
    QCOMPARE(sentence([&] { (void)QSPDF::pages(three, 3, 4); }),
             u"There are no such pages in the PDF."_s);
    QVERIFY(sentence([] {
                (void)QSPDF::pages("<html>", 0, 0);
            }).startsWith(u"The pages could not be taken out"));
}

QTEST_MAIN(TestQSPDF)
#include "tst_qspdf.moc"
