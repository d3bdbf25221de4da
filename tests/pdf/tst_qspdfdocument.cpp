#include "QSPDFDocument.h"
#include "SmallPDF.h"
#include "TestFiles.h"

#include <QDir>
#include <QSignalSpy>
#include <QThread>

#include <atomic>
#include <numeric>

using namespace Qt::Literals::StringLiterals;

namespace {
using Kind = FormField::Kind;
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

/// What the field prints, as pdftotext reads it without spaces.
QString printed(const FormField &field, const FormValue &value)
{
    QString text = value.text;
    for (const int chosen : value.chosen) {
        text = field.choices.at(chosen).label;
    }
    text = field.password ? QString(text.size(), u'*') : text;
    return text.remove(u' ').remove(u'\n');
}

QByteArray flattenedByQpdf(const QByteArray &pdf)
{
    return askOf(u"qpdf"_s, {u"--flatten-annotations=all"_s, u"FILE"_s, u"-"_s}, pdf);
}

/// Fails for each field whose value is not to be read in its place.
void verifyPrinted(const QSPDFDocument &document, const QByteArray &pdf)
{
    const Words words(pdf);
    for (const FormField &field : document.fields()) {
        if (field.isSettable() && field.shown) {
            const QString text = printed(field, document.value(field.id));
            const QString found = words.in(field.page, field.rect);
            QVERIFY2(found.contains(text),
                     qPrintable(field.name + u": "_s + text + u" / "_s + found));
        }
    }
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
        const QImage shown = again->render(page, 50);
        QVERIFY(!shown.isNull());
        QCOMPARE(flatDocument->render(page, 50), shown);
    }
}

Document withValue(const QByteArray &widget, const QString &text)
{
    Document document = QSPDFDocument::open(smallPDF({widget}));
    document->setValue(0, {.text = text, .on = false, .chosen = {}});
    return document;
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

/// How many dots of a drawing are not white.
qsizetype ink(const QImage &image)
{
    const QImage grey = image.convertToFormat(QImage::Format_Grayscale8);
    qsizetype dots = 0;
    for (int y = 0; y < grey.height(); ++y) {
        const uchar *line = grey.constScanLine(y);
        dots += std::count_if(line, line + grey.width(), [](uchar dot) { return dot < 200; });
    }
    return dots;
}

constexpr const char *helv = "/DA(/Helv 12 Tf 0 g)/F 4";
const QByteArray textField = QByteArray("/FT/Tx/T(a)/Rect[10 100 110 120]") + helv;
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
    void readsFields();
    void tabOrder_data();
    void tabOrder();
    void groups_data();
    void groups();
    void acceptsValues_data();
    void acceptsValues();
    void readsBack_data();
    void readsBack();
    void printsWhatPrints_data();
    void printsWhatPrints();
    void drawsWithinLimits();
    void changeCutsDrawingShort();
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
        << smallPDF({}, {}, "/XFA(x)")
        << u"This form is made for another kind of program (XFA) and can't be shown here. The agency's page may offer another version."_s;
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
    QTest::newRow("boxes without names")
        << Objects{"/FT/Btn/Rect[10 10 19 19]", "/FT/Btn/Rect[30 10 39 19]"} << QList<int>{1}
        << u"01"_s;
}

void TestQSPDFDocument::groups()
{
    QFETCH(const QList<QByteArray>, objects);
    QFETCH(const QList<int>, clicks);
    QFETCH(const QString, states);
    const Document document = QSPDFDocument::open(smallPDF(objects));
    const Document empty = QSPDFDocument::open(smallPDF(objects));
    for (const int id : clicks) {
        const QString before = ::states(*document);
        document->setValue(id, {.text = {}, .on = before.at(id) == u'0', .chosen = {}});
    }
    QCOMPARE(::states(*document), states);
    const Document again = QSPDFDocument::open(document->bytes());
    QCOMPARE(::states(*again), states);
    const QImage flat = QSPDFDocument::open(document->flattened())->render(0, 72);
    for (const FormField &field : document->fields()) {
        const QRect place = field.rect.toRect();
        const bool on = states.at(field.id) == u'1';
        QCOMPARE(ink(flat.copy(place)) > 0, on);
        QCOMPARE(ink(document->render(0, 72, place)) > 0, on);
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
    const QByteArray listBox = "/FT/Ch/T(c)/Opt[(one)(two)]/Rect[10 100 110 140]";
    QTest::newRow("a text of the longest length")
        << textField + "/MaxLen 3" << u"abc"_s << none << u"abc"_s << none;
    QTest::newRow("a longer one is cut")
        << textField + "/MaxLen 3" << u"abcd"_s << none << u"abc"_s << none;
    QTest::newRow("no character is cut in half")
        << textField + "/MaxLen 2" << u"a𝒜𝒜"_s << none << u"a𝒜"_s << none;
    QTest::newRow("a single line")
        << textField << u"a\r\nb\rc\nd"_s << none << u"a b c d"_s << none;
    QTest::newRow("several lines")
        << textField + "/Ff 4096" << u"a\r\nb\rc"_s << none << u"a\nb\nc"_s << none;
    QTest::newRow("a text of one's own")
        << editable << u"(my\\own) 東"_s << none << u"(my\\own) 東"_s << none;
    QTest::newRow("a choice before a text")
        << editable << u"own"_s << QList<int>{1} << QString() << QList<int>{1};
    QTest::newRow("no text of one's own") << listBox << u"own"_s << none << QString() << none;
    QTest::newRow("one of a list")
        << listBox << QString() << QList<int>{1, 0} << QString() << QList<int>{0};
    QTest::newRow("several of a list")
        << listBox + "/Ff 2097152" << QString() << QList<int>{1, 7, 0, 1, -1} << QString()
        << QList<int>{0, 1};
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

void TestQSPDFDocument::readsBack_data()
{
    QTest::addColumn<QByteArray>("widget");
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("readable");
    QTest::newRow("accents, symbols, brackets") << textField << u"Né (\\) € ½"_s << true;
    QTest::newRow("Vietnamese") << textField << u"Nguyễn Ánh"_s << true;
    QTest::newRow("Russian") << textField << u"Москва"_s << true;
    QTest::newRow("Chinese") << textField << u"北京市 東京"_s << true;
    QTest::newRow("a ligature's letters") << textField << u"ﬁne file"_s << true;
    QTest::newRow("a script from right to left, which would print backwards")
        << textField << u"שלום"_s << false;
    QTest::newRow("a character that no font has") << textField << u"a\U000F0000"_s << false;
    QTest::newRow("just as wide as its box") << textField << u"WWWWWWWW"_s << true;
    QTest::newRow("too wide") << textField << u"WWWWWWWWW"_s << false;
    QTest::newRow("too wide, to the right") << textField + "/Q 2" << u"WWWWWWWWW"_s << false;
    QTest::newRow("too many lines") << textField + "/Ff 4096" << u"1\n2\n3"_s << false;
    QTest::newRow("too low a box")
        << QByteArray("/FT/Tx/T(a)/Rect[10 100 110 105]") + helv << u"g"_s << false;
    QTest::newRow("shrunk") << QByteArray("/FT/Tx/T(a)/DA(/Helv 0 Tf)/Rect[10 100 110 120]")
                            << QString(15, u'W') << true;
    QTest::newRow("shrunk beyond reading")
        << QByteArray("/FT/Tx/T(a)/DA(/Helv 0 Tf)/Rect[10 100 110 120]") << QString(60, u'W')
        << false;
    QTest::newRow("password") << textField + "/Ff 8192" << u"secret"_s << true;
    QTest::newRow("password too long for its box")
        << textField + "/Ff 8192" << QString(40, u'x') << false;
}

void TestQSPDFDocument::readsBack()
{
    QFETCH(const QByteArray, widget);
    QFETCH(const QString, value);
    QFETCH(const bool, readable);
    const QString refusal =
        u"What was typed into \"A\" does not fit on the page or can't be read there, so the flattened copy was not made."_s;
    const Document document = withValue(widget, value);
    QCOMPARE(sentence([&] { (void)document->flattened(); }), readable ? QString() : refusal);
    // It is in the saved file all the same, and is missed again when that is opened.
    const Document again = QSPDFDocument::open(document->bytes());
    QCOMPARE(again->value(0).text, value);
    QCOMPARE(sentence([&] { (void)again->flattened(); }), readable ? QString() : refusal);
}

void TestQSPDFDocument::printsWhatPrints_data()
{
    QTest::addColumn<QByteArray>("entries");
    QTest::addColumn<bool>("shown");
    QTest::addColumn<bool>("printed");
    const QByteArray button =
        "/FT/Btn/Ff 65536/T(p)/Rect[10 100 110 120]/MK<</BG[0]>>/AP<</N 5 0 R>>";
    QTest::newRow("flagged for print") << textField << true << true;
    QTest::newRow("typed, and not flagged for print") << textField + "/F 0" << true << true;
    QTest::newRow("\"invisible\" speaks of other kinds") << textField + "/F 1" << true << true;
    QTest::newRow("hidden") << textField + "/F 6" << false << false;
    QTest::newRow("not for the screen") << textField + "/F 32" << false << false;
    QTest::newRow("only for print") << textField + "/F 36" << false << true;
    QTest::newRow("a button to press") << button << true << false;
    QTest::newRow("a button to press that is to be printed") << button + "/F 4" << true << true;
}

void TestQSPDFDocument::printsWhatPrints()
{
    QFETCH(const QByteArray, entries);
    QFETCH(const bool, shown);
    QFETCH(const bool, printed);
    QByteArray pdf = smallPDF({entries});
    pdf.replace("/F 4/F ", "/F "); // a dictionary says it once
    pdf.replace("trailer", "5 0 obj <</BBox[0 0 9 9]/Subtype/Form/Length 11>> stream\n0 0 9 9 re "
                           "f\nendstream endobj\ntrailer");
    const Document document = QSPDFDocument::open(pdf);
    document->setValue(0, {.text = u"MMM"_s, .on = false, .chosen = {}});
    QCOMPARE(document->fields().at(0).shown, shown);
    QCOMPARE(ink(document->render(0, 72)) > 0, shown);
    const QByteArray flat = document->flattened();
    QCOMPARE(ink(QSPDFDocument::open(flat)->render(0, 72)) > 0, printed);
    QVERIFY(!askOf(u"pdfinfo"_s, {u"FILE"_s}, flat).contains("AcroForm"));
}

void TestQSPDFDocument::drawsWithinLimits()
{
    const Document document = withValue(textField, u"MMM"_s);
    const QImage page = document->render(0, 72);
    QCOMPARE(page.size(), QSize(200, 200));
    QCOMPARE(page.pixelColor(1, 1), QColor(Qt::white));
    const QRect part(10, 80, 30, 20);
    QCOMPARE(document->render(0, 72, part), page.copy(part));
    QVERIFY(document->render(1, 72).isNull());
    QVERIFY(document->render(0, 72, {}, [] { return true; }).isNull());
    for (const double dotsPerInch :
         {0.0, -72.0, 5000.0, 1e6, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
        QVERIFY(document->render(0, dotsPerInch).isNull());
    }
    QVERIFY(!document->render(0, 5000, QRect(0, 0, 100, 100)).isNull()); // a part of it is small
}

void TestQSPDFDocument::changeCutsDrawingShort()
{
    QByteArray pdf = smallPDF({textField}, "/Contents 5 0 R");
    const QByteArray lines = QByteArray("0 0 m 200 200 l S ").repeated(200000);
    pdf.replace("trailer", "5 0 obj <</Length " + QByteArray::number(lines.size()) + ">> stream\n" +
                               lines + "\nendstream endobj\ntrailer");
    const Document document = QSPDFDocument::open(pdf);
    std::atomic<bool> begun = false;
    QImage image(1, 1, QImage::Format_RGB32);
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        image = document->render(0, 300, {}, [&begun] {
            begun = true;
            return false;
        });
    }));
    thread->start();
    QTRY_VERIFY(begun);
    document->setValue(0, {.text = u"now"_s, .on = false, .chosen = {}});
    QVERIFY(thread->wait());
    QVERIFY(image.isNull());
    QCOMPARE(document->value(0).text, u"now"_s);
    QVERIFY(!document->render(0, 20).isNull());
}

QTEST_MAIN(TestQSPDFDocument)
#include "tst_qspdfdocument.moc"
