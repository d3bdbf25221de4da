#include "FormChecks.h"
#include "QSPDFDocument.h"
#include "SmallPDF.h"
#include "TestFiles.h"

using namespace Qt::Literals::StringLiterals;

using Document = std::shared_ptr<QSPDFDocument>;

class TestFlattening final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneAnswer_data();
    void oneAnswer();
    void untouched_data();
    void untouched();
    void readsBack_data();
    void readsBack();
    void printsWhatPrints_data();
    void printsWhatPrints();
};

void TestFlattening::oneAnswer_data()
{
    QTest::addColumn<QByteArray>("other");
    QTest::addColumn<QString>("text");
    QTest::newRow("a shorter limit") << QByteArray("/MaxLen 3") << u"abcdef"_s;
    QTest::newRow("fewer lines") << QByteArray("/Ff 0") << u"a\nb"_s;
}

void TestFlattening::oneAnswer()
{
    QFETCH(const QByteArray, other);
    QFETCH(const QString, text);
    const Document document = QSPDFDocument::open(
        smallPDF({"/FT/Tx/T(a)/Ff 4096/Kids[5 0 R 6 0 R]", "/Parent 4 0 R/Rect[10 100 110 140]",
                  "/Parent 4 0 R/Rect[10 50 110 90]" + other}));
    document->setValue(0, {.text = text, .on = false, .chosen = {}});
    QCOMPARE(document->value(1).text, text);
    QCOMPARE(QSPDFDocument::open(document->bytes())->values(), document->values());
    verifyPrinted(*document, document->flattened());
}

void TestFlattening::untouched_data()
{
    QTest::addColumn<QByteArray>("form");
    QTest::addColumn<QList<QByteArray>>("objects");
    QTest::addColumn<QList<int>>("chosen");
    QTest::addColumn<bool>("inked");
    using Objects = QList<QByteArray>;
    const QList<int> none;
    const QByteArray asDrawn;
    const QByteArray list = "/FT/Ch/T(c)/Opt[[()(None)][(2)(Two)]]/Rect[10 100 110 140]";
    const QByteArray combo = list + "/Ff 131072/AP<</N 8 0 R>>";
    QTest::newRow("nothing chosen") << asDrawn << Objects{combo} << none << false;
    QTest::newRow("the choice that stands for nothing")
        << asDrawn << Objects{combo + "/V()"} << QList<int>{0} << false;
    QTest::newRow("a choice by its position alone")
        << asDrawn << Objects{combo + "/I[1]"} << QList<int>{1} << true;
    QTest::newRow("a list scrolled away from its choice")
        << asDrawn << Objects{list + "/AP<</N 8 0 R>>/V(2)"} << QList<int>{1} << true;
    QTest::newRow("a value that is none of the choices")
        << QByteArray("/NeedAppearances true") << Objects{list + "/Ff 131072/AP<</N 9 0 R>>/V(z)"}
        << none << true;
    QTest::newRow("a second place of no size")
        << asDrawn << Objects{textField + "/V(x)", "/FT/Tx/T(a)/V(x)/Rect[0 0 0 0]"} << none
        << true;
}

void TestFlattening::untouched()
{
    QFETCH(const QByteArray, form);
    QFETCH(const QList<QByteArray>, objects);
    const Document document = QSPDFDocument::open(withDrawings(smallPDF(objects, {}, form)));
    QTEST(document->value(0).chosen, "chosen");
    QTEST(ink(QSPDFDocument::open(document->flattened())->render(0, 72)) > 0, "inked");
}

void TestFlattening::readsBack_data()
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

void TestFlattening::readsBack()
{
    QFETCH(const QByteArray, widget);
    QFETCH(const QString, value);
    QFETCH(const bool, readable);
    const QString rest =
        u" \"A\" does not fit on the page or can't be read there, so the form can't be flattened or printed."_s;
    const Document document = withValue(widget, value);
    QCOMPARE(sentence([&] { (void)document->flattened(); }),
             readable ? QString() : u"What was typed into"_s + rest);
    // It is in the saved file all the same, and is missed again when that is opened.
    const Document again = QSPDFDocument::open(document->bytes());
    QCOMPARE(again->value(0).text, value);
    QCOMPARE(sentence([&] { (void)again->flattened(); }),
             readable ? QString() : u"What stands in"_s + rest);
}

void TestFlattening::printsWhatPrints_data()
{
    QTest::addColumn<QByteArray>("entries");
    QTest::addColumn<bool>("shown");
    QTest::addColumn<bool>("printed");
    const QByteArray button =
        "/FT/Btn/Ff 65536/T(p)/Rect[10 100 110 120]/MK<</BG[0]>>/AP<</N 9 0 R>>";
    QTest::newRow("flagged for print") << textField << true << true;
    QTest::newRow("typed, and not flagged for print") << textField + "/F 0" << true << true;
    QTest::newRow("\"invisible\" speaks of other kinds") << textField + "/F 1" << true << true;
    QTest::newRow("hidden") << textField + "/F 6" << false << false;
    QTest::newRow("not for the screen") << textField + "/F 32" << false << false;
    QTest::newRow("only for print") << textField + "/F 36" << false << true;
    QTest::newRow("a button to press") << button << true << false;
    QTest::newRow("a button to press that is to be printed") << button + "/F 4" << true << true;
}

void TestFlattening::printsWhatPrints()
{
    QFETCH(const QByteArray, entries);
    QFETCH(const bool, shown);
    QFETCH(const bool, printed);
    QByteArray pdf = smallPDF({entries});
    pdf.replace("/F 4/F ", "/F "); // a dictionary says it once
    const Document document = QSPDFDocument::open(withDrawings(pdf));
    document->setValue(0, {.text = u"MMM"_s, .on = false, .chosen = {}});
    QCOMPARE(document->fields().at(0).shown, shown);
    QCOMPARE(ink(document->render(0, 72)) > 0, shown);
    const QByteArray flat = document->flattened();
    QCOMPARE(ink(QSPDFDocument::open(flat)->render(0, 72)) > 0, printed);
    QVERIFY(!askOf(u"pdfinfo"_s, {u"FILE"_s}, flat).contains("AcroForm"));
}

QTEST_MAIN(TestFlattening)
#include "tst_flattening.moc"
