#include "FormChecks.h"
#include "QSPDFDocument.h"
#include "SmallPDF.h"
#include "TestFiles.h"

#include <QDir>
#include <QElapsedTimer>
#include <QThread>

#include <atomic>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace {
using Kind = FormField::Kind;
using Outcome = PageDrawing::Outcome;
using Document = std::shared_ptr<QSPDFDocument>;

/// A value of the field's kind that no other field of the form has, as far as its length allows.
FormValue distinct(const FormField &field)
{
    FormValue value;
    switch (field.kind) {
    case Kind::text:
        value.text = QString::number(1000 + field.id);
        if (field.maxLength > 0) {
            value.text = value.text.right(field.maxLength);
        }
        if (field.multiLine) {
            value.text += u"\nñ"_s;
        }
        break;
    case Kind::checkBox:
    case Kind::radio:
        value.on = true;
        break;
    case Kind::comboBox:
    case Kind::listBox:
        value.chosen = {static_cast<int>(field.choices.size()) - 1};
        break;
    case Kind::pushButton:
    case Kind::signature:
        break;
    }
    return value;
}

QByteArray flattenedByQpdf(const QByteArray &pdf)
{
    return askOf(u"qpdf"_s, {u"--flatten-annotations=all"_s, u"FILE"_s, u"-"_s}, pdf);
}

/// Fills every field, and proves that nothing of it is lost on any way out.
void verifyAllWaysOut(const QByteArray &pdf, int settable)
{
    const Document document = QSPDFDocument::open(pdf);
    int count = 0;
    for (const FormField &field : document->fields()) {
        if (field.isSettable()) {
            const FormValue value = distinct(field);
            QVERIFY(document->setValue(field.id, value).contains(field.id));
            QCOMPARE(document->value(field.id), value);
            ++count;
        }
    }
    QCOMPARE(count, settable);
    const QByteArray saved = document->bytes();
    askOf(u"qpdf"_s, {u"--check"_s, u"FILE"_s}, saved);
    const Document again = QSPDFDocument::open(saved);
    QCOMPARE(again->fields(), document->fields());
    QCOMPARE(again->values(), document->values());
    verifyPrinted(*document, flattenedByQpdf(saved));
    const QByteArray flat = document->flattened();
    askOf(u"qpdf"_s, {u"--check"_s, u"FILE"_s}, flat);
    verifyPrinted(*document, flat);
    const Document flatDocument = QSPDFDocument::open(flat);
    QVERIFY(flatDocument->fields().isEmpty());
    for (int page = 0; page < document->pageCount(); ++page) {
        const QImage shown = again->render(page, 100).image;
        QVERIFY(!shown.isNull());
        QVERIFY2(alike(flatDocument->render(page, 100).image, shown),
                 qPrintable(QString::number(page)));
    }
}

/// "1" for each button that is on, else "0".
QString states(const QSPDFDocument &document)
{
    QString states;
    for (const FormValue &value : document.values()) {
        states += value.on ? u'1' : u'0';
    }
    return states;
}

} // namespace

class TestQSPDFDocument final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void realForms_data();
    void realForms();
    void smallForms_data();
    void smallForms();
    void refused_data();
    void refused();
    void showsWhatCannotBeWritten();
    void readsFields();
    void tabOrder_data();
    void tabOrder();
    void groups_data();
    void groups();
    void acceptsValues_data();
    void acceptsValues();
    void drawsWithinLimits();
    void cutsDrawingShort();
    void waitsForNoDrawing();
};

void TestQSPDFDocument::realForms_data()
{
    QTest::addColumn<int>("settable");
    QTest::addColumn<QString>("refusal");
    constexpr const char *password =
        "This PDF is protected with a password, so it can't be opened here.";
    QTest::newRow("w-9-xfa-comb") << 22 << QString();
    QTest::newRow("i-912-encrypted-xfa") << 187 << QString();
    QTest::newRow("no-default-resources-calculated") << 2 << QString();
    QTest::newRow("no-default-resources-readonly") << 0 << QString();
    QTest::newRow("no-default-resources-password-field") << 2 << QString();
    QTest::newRow("choices") << 3 << QString();
    QTest::newRow("text-comb-multiline") << 6 << QString();
    QTest::newRow("mixed-field-kinds") << 10 << QString();
    QTest::newRow("needs-appearances") << 2 << QString();
    QTest::newRow("checkbox-without-appearance") << 2 << QString();
    QTest::newRow("hidden-and-noview") << 2 << QString();
    QTest::newRow("user-password") << 0 << QString::fromLatin1(password);
    QTest::newRow("xfa-please-wait")
        << 0
        << u"This form is made for another kind of program (XFA) and can't be shown here. The agency's page may offer another version."_s;
    QTest::newRow("damaged-340-bytes")
        << 0 << u"This PDF is damaged, so it can't be opened here."_s;
}

void TestQSPDFDocument::realForms()
{
    QFETCH(const int, settable);
    QFETCH(const QString, refusal);
    const QDir forms(QStringLiteral(QS_FORMS));
    if (!forms.exists()) {
        QSKIP("The folder with real forms is not beside the project.");
    }
    const QByteArray pdf =
        contents(forms.filePath(QString::fromLatin1(QTest::currentDataTag()) + u".pdf"_s));
    QVERIFY(!pdf.isEmpty());
    if (refusal.isEmpty()) {
        verifyAllWaysOut(pdf, settable);
    } else {
        QCOMPARE(sentence([&] { (void)QSPDFDocument::open(pdf); }), refusal);
    }
}

void TestQSPDFDocument::smallForms_data()
{
    QTest::addColumn<QByteArray>("pdf");
    QTest::addColumn<int>("settable");
    QTest::newRow("no default resources, no default appearance")
        << smallPDF({"/FT/Tx/T(a)/Rect[10 100 110 120]"}) << 1;
    QTest::newRow("a font that isn't there")
        << smallPDF({"/FT/Tx/T(a)/DA(/Gone 12 Tf 0 g)/Rect[10 100 110 120]"}) << 1;
    QTest::newRow("texts that share a field, the type inherited")
        << smallPDF({"/FT/Tx/T(a)/Kids[5 0 R 6 0 R]", "/Parent 4 0 R/Rect[10 100 110 120]",
                     "/Parent 4 0 R/Rect[10 60 110 80]"})
        << 2;
    QTest::newRow("texts of one name in fields of their own")
        << smallPDF({textField, "/FT/Tx/T(a)/Rect[10 60 110 80]"}) << 2;
    QTest::newRow("a widget that the form doesn't list")
        << smallPDF({textField + "/Parent 3 0 R"}) << 1;
    QTest::newRow("choices with export values and a several lines' text")
        << smallPDF({"/FT/Ch/Ff 131072/T(c)/Opt[[(1)(One)][(2)(Two)]]/Rect[10 100 110 120]",
                     "/FT/Tx/Ff 4096/T(m)/Rect[10 20 110 90]",
                     "/FT/Ch/Ff 2097152/T(l)/Opt[(x)(y)]/Rect[120 100 190 160]"})
        << 3;
    QTest::newRow("boxes without appearances")
        << smallPDF(
               {"/FT/Btn/T(b)/Rect[10 100 30 120]", "/FT/Btn/Ff 32768/T(r)/Rect[40 100 60 120]"})
        << 2;
}

void TestQSPDFDocument::smallForms()
{
    QFETCH(const QByteArray, pdf);
    QFETCH(const int, settable);
    verifyAllWaysOut(pdf, settable);
}

void TestQSPDFDocument::refused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("refusal");
    const QByteArray whole = QSPDFDocument::open(smallPDF({textField}))->bytes();
    const QString noPDF = u"This file is not a PDF, so it can't be opened here."_s;
    const QString damaged = u"This PDF is damaged, so it can't be opened here."_s;
    QTest::newRow("nothing") << QByteArray() << noPDF;
    QTest::newRow("a web page") << QByteArray("<html>moved</html>") << noPDF;
    QTest::newRow("only a header") << QByteArray("%PDF-1.7\n") << damaged;
    QTest::newRow("cut off before its pages") << whole.first(60) << damaged;
    QTest::newRow("a password")
        << askOf(u"qpdf"_s,
                 {u"--encrypt"_s, u"secret"_s, u"owner"_s, u"256"_s, u"--"_s, u"FILE"_s, u"-"_s},
                 whole)
        << u"This PDF is protected with a password, so it can't be opened here."_s;
    QTest::newRow("XFA alone")
        << withText(smallPDF({}, "/Contents 9 0 R", "/XFA(x)"), "Please wait...")
        << u"This form is made for another kind of program (XFA) and can't be shown here. The agency's page may offer another version."_s;
    QTest::newRow("XFA beside pages of its own")
        << withText(smallPDF({}, "/Contents 9 0 R", "/XFA(x)"), "Fee schedule") << QString();
    QTest::newRow("XFA beside fields") << smallPDF({textField}, {}, "/XFA(x)") << QString();
    QTest::newRow("a password that only guards changes")
        << askOf(u"qpdf"_s,
                 {u"--encrypt"_s, u""_s, u"owner"_s, u"256"_s, u"--"_s, u"FILE"_s, u"-"_s}, whole)
        << QString();
    QTest::newRow("without its end") << whole.chopped(40) << QString();
}

void TestQSPDFDocument::refused()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, refusal);
    QCOMPARE(sentence([&] {
                 const QByteArray saved = QSPDFDocument::open(bytes)->bytes();
                 QVERIFY(!saved.contains("/XFA") && !saved.contains("/Encrypt"));
             }),
             refusal);
    QCOMPARE(QSPDFDocument::isPDF(bytes),
             !refusal.contains(u"not a PDF") && !refusal.contains(u"damaged"));
}

void TestQSPDFDocument::showsWhatCannotBeWritten()
{
    const QByteArray pdf = smallPDF({textField}).replace("/Kids[3 0 R]", "/Kids[3 0 R 2 0 R]");
    const Document document = QSPDFDocument::open(pdf);
    QVERIFY(document->fields().isEmpty() && !document->render(0, 20).image.isNull());
    QCOMPARE(document->bytes(), pdf);
    QCOMPARE(sentence([&] { (void)document->flattened(); }),
             u"This PDF is damaged, so no flattened copy of it can be made."_s);
}

void TestQSPDFDocument::readsFields()
{
    const Document document = QSPDFDocument::open(
        smallPDF({"/FT/Tx/T(form1[0])/MaxLen 9/Q 1/Ff 16777218/DA(/Helv 9.5 Tf)/Kids[5 0 R 6 0 R]",
                  "/Parent 4 0 R/T(family_name[0])/Rect[30 120 130 140]",
                  "/Parent 4 0 R/T(x)/TU(Your  A-Number)/MaxLen 0/Ff 4097/F 2/Rect[30 80 130 100]"},
                 "/CropBox[20 0 200 150]/Rotate 90"));
    QCOMPARE(document->pageSize(0), QSizeF(150, 180));
    QCOMPARE(document->fields().size(), 2);
    const FormField &name = document->fields().at(0);
    QCOMPARE(name.name, u"form1[0].family_name[0]"_s);
    QCOMPARE(name.label, u"Family name"_s);
    QVERIFY(name.comb && name.required && name.shown && name.isSettable() && !name.multiLine);
    QCOMPARE(name.maxLength, 9);
    QCOMPARE(name.fontSize, 9.5);
    QCOMPARE(name.alignment, Qt::AlignHCenter);
    QCOMPARE(name.rect, QRectF(120, 10, 20, 100)); // turned clockwise, without the cropped margins
    const FormField &number = document->fields().at(1);
    QCOMPARE(number.label, u"Your A-Number"_s);
    QVERIFY(number.multiLine && number.readOnly && !number.shown && number.maxLength == 0);
}

void TestQSPDFDocument::tabOrder_data()
{
    QTest::addColumn<QByteArray>("tabs");
    QTest::addColumn<QList<int>>("order");
    QTest::newRow("as they stand in the file") << QByteArray() << QList<int>{0, 1, 2, 3};
    QTest::newRow("by rows, a few points out of line or not")
        << QByteArray("/Tabs/R") << QList<int>{3, 1, 2, 0};
    QTest::newRow("by columns") << QByteArray("/Tabs/C") << QList<int>{3, 2, 1, 0};
    QTest::newRow("by structure, which leaves one out and runs in a circle")
        << QByteArray("/Tabs/S") << QList<int>{2, 0, 3, 1};
}

void TestQSPDFDocument::tabOrder()
{
    QFETCH(const QByteArray, tabs);
    const Document document = QSPDFDocument::open(smallPDF(
        {"/FT/Tx/T(a)/Rect[100 50 150 70]", "/FT/Tx/T(b)/Rect[100 153 150 173]",
         "/FT/Tx/T(c)/Rect[10 50 60 70]", "/FT/Btn/T(d)/Rect[10 150 60 170]",
         "/FT/Tx/Ff 1/T(readOnly)/Rect[10 180 60 190]", "/FT/Tx/F 2/T(hidden)/Rect[10 180 60 190]",
         "/Parent 1 0 R/K[<</Type/OBJR/Obj 6 0 R>><</Type/OBJR/Obj 4 0 R>>10 0 R]"},
        tabs, ">>/StructTreeRoot<</K[<</K 10 0 R>><</K[0<</Type/OBJR/Obj 7 0 R>>]>>]"));
    QTEST(document->tabOrder(), "order");
}

void TestQSPDFDocument::groups_data()
{
    QTest::addColumn<QList<QByteArray>>("objects");
    QTest::addColumn<QList<int>>("clicks"); // ids set on, or off where they are on already
    QTest::addColumn<QString>("states");
    const auto button = [](int state, int x) {
        return QByteArray("/Parent 4 0 R/AS/Off/AP<</N<</s") + QByteArray::number(state) +
               " 3 0 R>>>>/Rect[" + QByteArray::number(x) + " 10 " + QByteArray::number(x + 9) +
               " 19]";
    };
    const auto group = [&](const QByteArray &flags, const QList<int> &buttonStates) {
        QList<QByteArray> objects = {"/FT/Btn/T(g)/Ff " + flags + "/Kids["};
        for (qsizetype i = 0; i < buttonStates.size(); ++i) {
            objects[0] += QByteArray::number(5 + i) + " 0 R ";
            objects.append(button(buttonStates.at(i), 10 + 20 * static_cast<int>(i)));
        }
        objects[0] += "]";
        return objects;
    };
    const QByteArray radio = "49152"; // one of them has to be on, says the file
    const QByteArray unison = "33587200";
    using Objects = QList<QByteArray>;
    QTest::newRow("one radio button") << group(radio, {1, 2, 3}) << QList<int>{0, 2} << u"001"_s;
    QTest::newRow("no radio button again") << group(radio, {1, 2}) << QList<int>{0, 0} << u"00"_s;
    QTest::newRow("radio buttons that share a value are two")
        << group(radio, {1, 1, 2}) << QList<int>{0, 1} << u"010"_s;
    QTest::newRow("radio buttons in unison")
        << group(unison, {1, 1, 2}) << QList<int>{2, 0} << u"110"_s;
    QTest::newRow("boxes of one value") << group("0", {1, 1}) << QList<int>{0} << u"11"_s;
    QTest::newRow("boxes of one value off") << group("0", {1, 1}) << QList<int>{0, 1} << u"00"_s;
    QTest::newRow("boxes of several values")
        << group("0", {1, 2, 1}) << QList<int>{0, 1} << u"010"_s;
    QTest::newRow("boxes of one name in fields of their own")
        << Objects{"/FT/Btn/T(g)/Rect[10 10 19 19]", "/FT/Btn/T(g)/Rect[30 10 39 19]"}
        << QList<int>{1} << u"11"_s;
    QTest::newRow("radio buttons of a group without a name") << [&] {
        Objects objects = group(radio, {1, 2});
        objects[0].remove(objects[0].indexOf("/T(g)"), 5);
        return objects;
    }() << QList<int>{0, 1} << u"01"_s;
    QTest::newRow("boxes without names")
        << Objects{"/FT/Btn/Rect[10 10 19 19]", "/FT/Btn/Rect[30 10 39 19]"} << QList<int>{1}
        << u"01"_s;
    QTest::newRow("boxes whose drawings leave no ink")
        << Objects{"/FT/Btn/T(a)/AP<</N<</On 8 0 R>>>>/Rect[10 10 19 19]",
                   "/FT/Btn/T(b)/AP<</N<</On 10 0 R>>>>/Rect[30 10 39 19]"}
        << QList<int>{0, 1} << u"11"_s;
}

void TestQSPDFDocument::groups()
{
    QFETCH(const QList<QByteArray>, objects);
    QFETCH(const QList<int>, clicks);
    QFETCH(const QString, states);
    const Document document = QSPDFDocument::open(withDrawings(smallPDF(objects)));
    for (const int id : clicks) {
        const QString before = ::states(*document);
        document->setValue(id, {.text = {}, .on = before.at(id) == u'0', .chosen = {}});
    }
    QCOMPARE(::states(*document), states);
    const Document again = QSPDFDocument::open(document->bytes());
    QCOMPARE(::states(*again), states);
    const QImage flat = QSPDFDocument::open(document->flattened())->render(0, 72).image;
    for (const FormField &field : document->fields()) {
        const QRect place = field.rect.toRect();
        const bool on = states.at(field.id) == u'1';
        QCOMPARE(ink(flat.copy(place)) > 0, on);
        QCOMPARE(ink(document->render(0, 72, place).image) > 0, on);
    }
}

void TestQSPDFDocument::acceptsValues_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<int>>("chosen");
    QTest::addColumn<QString>("heldText");
    QTest::addColumn<QList<int>>("heldChosen");
    const QList<int> none;
    const QByteArray editable = "/FT/Ch/Ff 393216/T(c)/Opt[(one)(two)]/Rect[10 100 110 120]";
    const QByteArray lines = QByteArray("/FT/Tx/Ff 4096/T(a)/Rect[10 100 110 160]") + helv;
    const QByteArray listBox = "/FT/Ch/T(c)/Opt[(one)(two)]/Rect[10 100 110 140]";
    QTest::newRow("a text of the longest length")
        << textField + "/MaxLen 3" << u"abc"_s << none << u"abc"_s << none;
    QTest::newRow("a longer one is cut")
        << textField + "/MaxLen 3" << u"abcd"_s << none << u"abc"_s << none;
    QTest::newRow("no character is cut in half")
        << textField + "/MaxLen 2" << u"a𝒜𝒜"_s << none << u"a𝒜"_s << none;
    QTest::newRow("a single line")
        << textField << u"a\r\nb\rc\nd"_s << none << u"a b c d"_s << none;
    QTest::newRow("several lines") << lines << u"a\r\nb\rc"_s << none << u"a\nb\nc"_s << none;
    QTest::newRow("tabs and separators in a single line")
        << textField << u"a\tb\u2028c"_s << none << u"a b c"_s << none;
    QTest::newRow("tabs and separators in several lines")
        << lines << u"a\v\fb\u2029c"_s << none << u"a  b\nc"_s << none;
    QTest::newRow("a text of one's own")
        << editable << u"(my\\own) 東"_s << none << u"(my\\own) 東"_s << none;
    QTest::newRow("a choice before a text")
        << editable << u"own"_s << QList<int>{1} << QString() << QList<int>{1};
    QTest::newRow("a text that is what a choice stores")
        << QByteArray(editable).replace("(one)", "[(1)(one)]") << u"1"_s << none << u"1"_s << none;
    QTest::newRow("no text of one's own") << listBox << u"own"_s << none << QString() << none;
    QTest::newRow("one of a list")
        << listBox << QString() << QList<int>{1, 0} << QString() << QList<int>{0};
    QTest::newRow("several of a list")
        << listBox + "/Ff 2097152" << QString() << QList<int>{1, 7, 0, 1, -1} << QString()
        << QList<int>{0, 1};
    QTest::newRow("choices that store the same")
        << QByteArray(listBox).replace("(two)", "[(one)(uno)](two)") + "/Ff 2097152" << QString()
        << QList<int>{1, 2} << QString() << QList<int>{1, 2};
}

void TestQSPDFDocument::acceptsValues()
{
    QFETCH(const QByteArray, field);
    QFETCH(const QString, text);
    QFETCH(const QList<int>, chosen);
    QFETCH(const QString, heldText);
    QFETCH(const QList<int>, heldChosen);
    const Document document = QSPDFDocument::open(smallPDF({field}));
    const FormValue held{.text = heldText, .on = false, .chosen = heldChosen};
    QCOMPARE(document->setValue(0, {.text = text, .on = true, .chosen = chosen}), QList<int>{0});
    QCOMPARE(document->value(0), held);
    QCOMPARE(QSPDFDocument::open(document->bytes())->value(0), held);
    document->setValue(0, {});
    QCOMPARE(QSPDFDocument::open(document->bytes())->value(0), FormValue());
    QVERIFY(document->setValue(1, held).isEmpty());
}

void TestQSPDFDocument::drawsWithinLimits()
{
    const Document document = withValue(textField, u"MMM"_s);
    const QImage page = document->render(0, 72).image;
    QCOMPARE(page.size(), QSize(200, 200));
    QCOMPARE(page.pixelColor(1, 1), QColor(Qt::white));
    const QRect part(10, 80, 30, 20);
    QCOMPARE(document->render(0, 72, part).image, page.copy(part));
    QCOMPARE(document->render(1, 72).outcome, Outcome::failed);
    QCOMPARE(document->render(0, 72, {}, [] { return true; }).outcome, Outcome::madeWay);
    for (const double dotsPerInch :
         {0.0, -72.0, 5000.0, 1e6, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
        QCOMPARE(document->render(0, dotsPerInch).outcome, Outcome::failed);
    }
    // a part of it is small
    QCOMPARE(document->render(0, 5000, QRect(0, 0, 100, 100)).outcome, Outcome::drawn);
}

void TestQSPDFDocument::cutsDrawingShort()
{
    QByteArray pdf = smallPDF({textField}, "/Contents 5 0 R");
    const QByteArray lines = QByteArray("0 0 m 200 200 l S ").repeated(200000);
    pdf.replace("trailer", "5 0 obj <</Length " + QByteArray::number(lines.size()) + ">> stream\n" +
                               lines + "\nendstream endobj\ntrailer");
    const Document document = QSPDFDocument::open(pdf);
    std::atomic<bool> begun = false;
    PageDrawing drawing;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        drawing = document->render(0, 300, {}, [&begun] {
            begun = true;
            return false;
        });
    }));
    thread->start();
    QTRY_VERIFY(begun);
    document->setValue(0, {.text = u"now"_s, .on = false, .chosen = {}});
    QCOMPARE(document->value(0).text, u"now"_s);
    QVERIFY(thread->wait());
    QCOMPARE(drawing.outcome, Outcome::madeWay);
    QVERIFY(drawing.image.isNull());
    QCOMPARE(document->render(0, 20).outcome, Outcome::drawn);
}

void TestQSPDFDocument::waitsForNoDrawing()
{
    // So many spaces are one step to whoever draws the page: no question in between is answered.
    const QByteArray spaces = qCompress(QByteArray(50'000'000, ' ')).sliced(4);
    QByteArray pdf = smallPDF({textField}, "/Contents 5 0 R");
    pdf.replace("trailer", "5 0 obj <</Filter/FlateDecode/Length " +
                               QByteArray::number(spaces.size()) + ">> stream\n" + spaces +
                               "\nendstream endobj\ntrailer");
    const Document document = QSPDFDocument::open(pdf);
    std::atomic<bool> begun = false;
    PageDrawing drawing;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        drawing = document->render(0, 20, {}, [&begun] {
            begun = true;
            return false;
        });
    }));
    thread->start();
    QTRY_VERIFY(begun);
    QElapsedTimer time;
    time.start();
    document->setValue(0, {.text = u"now"_s, .on = false, .chosen = {}});
    QCOMPARE(document->values().constFirst().text, u"now"_s);
    QVERIFY(!document->fault(0));
    const qint64 waited = time.nsecsElapsed();
    QVERIFY(thread->wait());
    QVERIFY(waited < time.nsecsElapsed() / 2);
    QCOMPARE(drawing.outcome, Outcome::madeWay);
    QVERIFY(ink(document->render(0, 20).image) > 0);
}

QTEST_MAIN(TestQSPDFDocument)
#include "tst_qspdfdocument.moc"
