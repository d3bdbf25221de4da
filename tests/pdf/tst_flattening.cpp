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
    void keepsTheAgencysFlags();
    void othersReadTheSame();
    void leavesThePageAlone();
    void noticesWhatIsCovered_data();
    void noticesWhatIsCovered();
    void namesWhatIsCut();
    void printsWhatPrints_data();
    void printsWhatPrints();
    void doesNothingByItself();
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
    QTEST(ink(QSPDFDocument::open(document->flattened())->render(0, 72).image) > 0, "inked");
}

void TestFlattening::readsBack_data()
{
    QTest::addColumn<QByteArray>("widget");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("fault");
    const QString none;
    const QByteArray open = "/FT/Tx/T(a)/DA(/Helv 0 Tf)/Rect[10 100 110 120]";
    const auto box = [](const char *rect) { return QByteArray("/FT/Tx/T(a)/Rect") + rect + helv; };
    const QByteArray lines = box("[10 100 110 140]") + "/Ff 4096";
    QTest::newRow("accents, symbols, brackets") << textField << u"Né (\\) € ½"_s << none;
    QTest::newRow("a ligature's letters") << textField << u"ﬁne file"_s << none;
    QTest::newRow("Polish") << textField << u"Łukasz Żółć"_s << none;
    QTest::newRow("Vietnamese") << textField << u"Nguyễn Ánh"_s << none;
    QTest::newRow("Russian") << textField << u"Москва"_s << none;
    QTest::newRow("Chinese") << textField << u"北京市 東京"_s << none;
    QTest::newRow("Korean") << textField << u"김민수"_s << none;
    QTest::newRow("Hindi") << textField << u"नमस्ते शर्मा"_s << none;
    QTest::newRow("Arabic") << textField << u"محمد علي"_s << none;
    QTest::newRow("Hebrew") << textField << u"שלום"_s << none;
    QTest::newRow("a font of an encoding that lacks accents")
        << QByteArray("/FT/Tx/T(a)/DA(/Bare 12 Tf 0 g)/Rect[10 100 110 120]") << u"Núñez"_s << none;
    QTest::newRow("a character that no font has")
        << textField << u"a\U000F0000"_s << u"no font here has \U000F0000"_s;
    QTest::newRow("letters as high as the box") << box("[10 100 110 112]") << u"Ágjy"_s << none;
    QTest::newRow("letters in a lower box") << box("[10 100 110 108]") << u"Ágjy"_s << none;
    QTest::newRow("too low a box") << box("[10 100 110 103]") << u"g"_s << u"1 word too long"_s;
    QTest::newRow("as wide as the box") << textField << QString(8, u'W') << none;
    QTest::newRow("wider, to the right") << textField + "/Q 2" << QString(12, u'W') << none;
    QTest::newRow("too wide") << textField << u"WWWWWWWWW WWWWWWWWW WWWWWWWWW"_s
                              << u"2 words too long"_s;
    QTest::newRow("several lines") << lines << u"1\n2\n3"_s << none;
    QTest::newRow("too many lines") << lines << u"1\n2\n3\n4\n5\n6 7\n8"_s << u"1 word too long"_s;
    QTest::newRow("a story without end")
        << lines << u"word "_s.repeated(20'000).trimmed() << u"19963 words too long"_s;
    QTest::newRow("several lines' field that holds one")
        << box("[10 100 110 113]") + "/Ff 4096" << u"one line"_s << none;
    QTest::newRow("shrunk") << open << QString(15, u'W') << none;
    QTest::newRow("as tall as its box") << open << u"gjpqy"_s << none;
    QTest::newRow("shrunk beyond reading") << open << QString(60, u'W') << u"1 word too long"_s;
    QTest::newRow("a comb") << textField + "/Ff 16777216/MaxLen 5" << u"WgjÁ1"_s << none;
    QTest::newRow("a turned field")
        << box("[10 10 30 110]") + "/MK<</R 90>>" << u"turned gj"_s << none;
    QTest::newRow("password") << textField + "/Ff 8192" << u"secret"_s << none;
}

void TestFlattening::readsBack()
{
    QFETCH(const QByteArray, widget);
    QFETCH(const QString, value);
    QFETCH(const QString, fault);
    const QByteArray bare = "/DR<</Font<</Bare<</Type/Font/Subtype/Type1/BaseFont/Helvetica"
                            "/Encoding<</Type/Encoding/Differences[65/A]>>>>>>>>";
    const Document document = QSPDFDocument::open(smallPDF({widget}, {}, bare));
    document->setValue(0, {.text = value, .on = false, .chosen = {}});
    // It is in the saved file all the same, and is missed again when that is opened.
    const Document again = QSPDFDocument::open(document->bytes());
    QCOMPARE(again->value(0).text, value);
    for (const Document &each : {document, again}) {
        const QSPDFDocument::FlatCopy copy = each->flatCopy();
        QCOMPARE(copy.faults.isEmpty() ? QString() : copy.faults.constFirst().inShort(), fault);
        QCOMPARE(each->fault(0).has_value(), !fault.isEmpty());
        QCOMPARE(sentence([&] { (void)each->flattened(); }).isEmpty(), fault.isEmpty());
        if (fault.isEmpty()) {
            verifyPrinted(*each, copy.pdf);
        }
        QVERIFY(
            alike(QSPDFDocument::open(copy.pdf)->render(0, 144).image, each->render(0, 144).image));
    }
}

void TestFlattening::keepsTheAgencysFlags()
{
    const QByteArray field = "/FT/Tx/T(a)/Ff 4096/Rect[10 100 110 113]";
    const Document document = withValue(field + helv, u"one\nline"_s);
    QVERIFY(!document->fields().at(0).multiLine);
    QCOMPARE(document->value(0).text, u"one line"_s);
    QVERIFY(
        askOf(u"qpdf"_s, {u"--qdf"_s, u"FILE"_s, u"-"_s}, document->bytes()).contains("/Ff 4096"));
}

/// Other programs go by names and by the values that a field lists for its buttons.
void TestFlattening::othersReadTheSame()
{
    const Document doubled = QSPDFDocument::open(
        smallPDF({textField + "/Parent 3 0 R", "/FT/Tx/T(a)/V(old)", "/FT/Tx/T(b)/V(script)"}));
    doubled->setValue(0, {.text = u"new"_s, .on = false, .chosen = {}});
    const QStringList ask = {u"FILE"_s, u"dump_data_fields_utf8"_s};
    QByteArray fields = askOf(u"pdftk"_s, ask, doubled->bytes());
    QCOMPARE(fields.count("FieldName: a"), 1);
    QVERIFY(fields.contains("FieldValue: new") && fields.contains("FieldValue: script"));

    const Document orphaned = QSPDFDocument::open(
        smallPDF({"/FT/Tx/T(c)", "/Parent 4 0 R/Rect[10 100 110 120]" + QByteArray(helv)}));
    orphaned->setValue(0, {.text = u"found"_s, .on = false, .chosen = {}});
    fields = askOf(u"pdftk"_s, ask, orphaned->bytes());
    QVERIFY2(fields.contains("FieldName: c\nFieldFlags: 0\nFieldValue: found"), fields.constData());

    const QByteArray one = "/Parent 4 0 R/AP<</N<</0 9 0 R/Off 8 0 R>>>>/Rect[10 100 30 120]";
    const QByteArray other = "/Parent 4 0 R/AP<</N<</1 9 0 R/Off 8 0 R>>>>/Rect[50 100 70 120]";
    const Document alike = QSPDFDocument::open(withDrawings(
        smallPDF({"/FT/Btn/Ff 32768/T(r)/Kids[5 0 R 6 0 R]/Opt[(Yes)(Yes)]", one, other})));
    QCOMPARE(alike->fields().at(1).onValue, u"1"_s);
    alike->setValue(1, {.text = {}, .on = true, .chosen = {}});
    fields = askOf(u"pdftk"_s, ask, alike->bytes());
    QVERIFY2(fields.contains("FieldValue: 1"), fields.constData());
}

/// What is printed around and under a field is no part of its answer.
void TestFlattening::leavesThePageAlone()
{
    const QByteArray pdf = withText(smallPDF({textField, "/FT/Tx/T(b)/V(N. N.)/Rect[10 60 110 80]" +
                                                             QByteArray(helv) + "/AP<</N 8 0 R>>"},
                                             "/Contents 9 0 R"),
                                    "........,.,.,____ Name:");
    const Document untouched = QSPDFDocument::open(pdf);
    QVERIFY(untouched->flatCopy().faults.isEmpty());
    untouched->setValue(0, {.text = u"Anna Kim"_s, .on = false, .chosen = {}});
    QVERIFY(untouched->flatCopy().faults.isEmpty());
}

void TestFlattening::noticesWhatIsCovered_data()
{
    QTest::addColumn<QByteArray>("rect");
    QTest::addColumn<bool>("covers");
    QTest::newRow("the whole answer") << QByteArray("[5 95 150 125]") << true;
    QTest::newRow("its end") << QByteArray("[60 95 150 125]") << true;
    QTest::newRow("a place beside it") << QByteArray("[120 95 150 125]") << false;
}

void TestFlattening::noticesWhatIsCovered()
{
    QFETCH(const QByteArray, rect);
    QFETCH(const bool, covers);
    const Document document =
        QSPDFDocument::open(smallPDF({textField, "/FT/Tx/T(b)/MK<</BG[1]>>/Rect" + rect + helv}));
    document->setValue(0, {.text = u"Anna Maria Kim"_s, .on = false, .chosen = {}});
    QCOMPARE(sentence([&] { (void)document->flattened(); }),
             covers ? u"The form can't be flattened or printed as it is. \"A\" on page 1: what "
                      "stands there is covered and can't be seen on paper."_s
                    : QString());
}

/// The person can have the rest, knowing what is missing.
void TestFlattening::namesWhatIsCut()
{
    const QByteArray label = "/TU(" + QByteArray("Part 9. Additional Information ").repeated(4);
    const Document document = QSPDFDocument::open(
        smallPDF({textField + label + "date)",
                  "/FT/Tx/T(b)/Rect[10 60 40 70]" + QByteArray(helv) + label + "place)"}));
    document->setValue(0, {.text = u"soon"_s, .on = false, .chosen = {}});
    document->setValue(1, {.text = u"Santa Barbara, California"_s, .on = false, .chosen = {}});
    const QSPDFDocument::FlatCopy copy = document->flatCopy();
    QCOMPARE(copy.faults.size(), 1);
    QCOMPARE(copy.faults.constFirst().id, 1);
    QCOMPARE(copy.faults.constFirst().sentence(),
             u"\"Part 9. Additional Information … . Additional Information place\" on page 1: "
             u"\"Barbara, "
             "California\" does not fit."_s);
    const Words words(copy.pdf);
    QCOMPARE(words.in(0, document->fields().at(0).rect), u"soon"_s);
    QVERIFY(words.in(0, document->fields().at(1).rect).endsWith(u'…'));
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
    QTest::newRow("a notice on the screen")
        << QByteArray(textField).replace("/F 4", "/Ff 1") << true << false;
    QTest::newRow("for reading, flagged for print") << textField + "/Ff 1" << true << true;
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
    QCOMPARE(ink(document->render(0, 72).image) > 0, shown);
    const QByteArray flat = document->flattened();
    QCOMPARE(ink(QSPDFDocument::open(flat)->render(0, 72).image) > 0, printed);
    QVERIFY(!askOf(u"pdfinfo"_s, {u"FILE"_s}, flat).contains("AcroForm"));
}

void TestFlattening::doesNothingByItself()
{
    QByteArray pdf = smallPDF({textField}, "/AA<</O<</S/URI/URI(https://a.test)>>>>");
    pdf.replace("/Type/Catalog", "/Type/Catalog/OpenAction<</S/JavaScript/JS(1)>>/Names<<"
                                 "/EmbeddedFiles<</Names[(kept.txt) <</F(kept.txt)>>]>>>>");
    const QByteArray flat =
        askOf(u"qpdf"_s, {u"--qdf"_s, u"FILE"_s, u"-"_s}, QSPDFDocument::open(pdf)->flattened());
    for (const char *gone : {"/AA", "/OpenAction", "/URI", "kept.txt"}) {
        QVERIFY2(!flat.contains(gone), gone);
    }
}

QTEST_MAIN(TestFlattening)
#include "tst_flattening.moc"
