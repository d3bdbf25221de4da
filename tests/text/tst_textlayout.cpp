#include "SecondReader.h"
#include "TextCanvas.h"
#include "TextLayout.h"

using namespace Qt::Literals::StringLiterals;

class TestTextLayout final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readAgain_data();
    void readAgain();
    void drawsWhatQtHasSet();
    void namesMissingLetters();
    void measuresInk();
    void cutsWhereTheRoomEnds();
    void drawsOnPictures();
};

void TestTextLayout::readAgain_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("Polish") << u"Łukasz Żółć"_s;
    QTest::newRow("Vietnamese") << u"Nguyễn Ánh"_s;
    QTest::newRow("Russian") << u"Анна Ким"_s;
    QTest::newRow("Armenian") << u"Արմեն"_s;
    QTest::newRow("Chinese") << u"王小明"_s;
    QTest::newRow("Korean") << u"김민수"_s;
    QTest::newRow("Hindi") << u"नमस्ते शर्मा"_s;
    QTest::newRow("Punjabi") << u"ਗੁਰਪ੍ਰੀਤ"_s;
    QTest::newRow("Bengali") << u"রহিম"_s;
    QTest::newRow("Tamil") << u"தமிழ்"_s;
    QTest::newRow("Thai") << u"สมชาย"_s;
    QTest::newRow("Amharic") << u"ሰላም"_s;
    QTest::newRow("Arabic") << u"محمد علي"_s;
    QTest::newRow("Hebrew") << u"שרה כהן"_s;
    QTest::newRow("symbols") << u"½ € § ☒"_s;
    QTest::newRow("letters that fonts join") << u"ffi office"_s;
}

void TestTextLayout::readAgain()
{
    QFETCH(const QString, text);
    const TextLayout layout(text, {});
    QCOMPARE(layout.missing(), QString());
    PagesCanvas canvas;
    canvas.beginPage({300, 40});
    canvas.draw(layout, {10, 10});
    QString read = SecondReader::read(canvas.finish(), u"pdftotext"_s, {u"@"_s, u"-"_s});
    read.removeIf(
        [](QChar letter) { return letter.category() == QChar::Other_Format || letter.isSpace(); });
    QCOMPARE(read, QString(text).remove(u' '));
}

void TestTextLayout::drawsWhatQtHasSet()
{
    QFont font(u"Liberation Serif"_s);
    font.setPixelSize(120);
    const QRawFont raw = QRawFont::fromFont(font);
    PagesCanvas canvas;
    canvas.beginPage({300, 40});
    canvas.draw({raw, 12, raw.glyphIndexesForString(u"ab"_s), {{10, 20}, {16, 20}}, u"as one"_s},
                Qt::black);
    canvas.draw({raw, 12, raw.glyphIndexesForString(u"c"_s), {{100, 20}}, u"c"_s}, Qt::black);
    const QByteArray pdf = canvas.finish();
    const QString read = SecondReader::read(pdf, u"pdftotext"_s, {u"-bbox"_s, u"@"_s, u"-"_s});
    QVERIFY2(read.contains(u"xMin=\"10.0"_s) && read.contains(u">as one</word>"_s) &&
                 read.contains(u">c</word>"_s),
             qPrintable(read));
    const QString fonts = SecondReader::read(pdf, u"pdffonts"_s, {u"@"_s});
    QCOMPARE(fonts.count(u"+LiberationSerif "_s), 1);
}

void TestTextLayout::namesMissingLetters()
{
    QCOMPARE(TextLayout(u"a\U000F0000b\U000F0000"_s, {}).missing(), u"\U000F0000"_s);
}

void TestTextLayout::measuresInk()
{
    const TextLayout flat(u"xxx"_s, {});
    const TextLayout deep(u"xgx"_s, {});
    QVERIFY(flat.ink().height() < 0.6 * flat.size().height());
    QVERIFY(qAbs(flat.ink().bottom() - flat.baseline()) < 0.3); // of points
    QVERIFY(deep.ink().bottom() > deep.baseline() + 2);
    const TextLayout wrapped(u"one two three"_s, {}, 40);
    QVERIFY(wrapped.size().height() > 2 * flat.size().height());
    QVERIFY(wrapped.ink().right() <= 40);
    TextLayout small(u"xxx"_s, {});
    small.setSize(6);
    QVERIFY(qAbs(2 * small.ink().width() - flat.ink().width()) < 0.1);
    QVERIFY(TextLayout(u"  "_s, {}).ink().isEmpty());
}

void TestTextLayout::cutsWhereTheRoomEnds()
{
    TextLayout line(u"one two three four"_s, {});
    const double room = TextLayout(u"one two three"_s, {}).size().width();
    QCOMPARE(line.firstOutside({0, 0, 1000, 100}), 18);
    QCOMPARE(line.firstOutside({0, 0, room, 100}), 14);
    line.cutTo({room, 100});
    QVERIFY(line.size().width() <= room);
    PagesCanvas canvas;
    canvas.beginPage({300, 40});
    canvas.draw(line, {10, 10});
    const QString read = SecondReader::read(canvas.finish(), u"pdftotext"_s, {u"@"_s, u"-"_s});
    QVERIFY2(read.trimmed() == u"one two th…" || read.trimmed() == u"one two thr…",
             qPrintable(read)); // and nothing of what is not seen
    TextLayout backwards(u"שרה כהן שרה כהן"_s, {});
    backwards.cutTo({room, 100});
    QVERIFY(backwards.size().width() <= room && backwards.size().width() > 0.6 * room);
    TextLayout lines(u"one\ntwo\nthree"_s, {}, 100);
    QCOMPARE(lines.firstOutside({0, 0, 100, lines.size().height() * 0.7}), 8);
}

void TestTextLayout::drawsOnPictures()
{
    QImage picture(60, 30, QImage::Format_RGB32);
    picture.fill(Qt::white);
    const TextLayout text(u"ll"_s, {.size = 10, .colour = Qt::blue});
    {
        PictureCanvas canvas(picture, QTransform::fromScale(2, 2), {0, 0, 30, 15});
        canvas.draw(text, {5, 0});
        canvas.fill({100, 100, 10, 10}, Qt::black); // beyond
    }
    QRect blue;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb dot = picture.pixel(x, y);
            if (qRed(dot) < 128 && qBlue(dot) > 200) {
                blue |= QRect(x, y, 1, 1);
            }
        }
    }
    const QRectF ink = text.ink().translated(5, 0);
    const QRect expected(ink.topLeft().toPoint() * 2, (ink.size() * 2).toSize());
    QVERIFY2(expected.adjusted(-2, -2, 2, 2).contains(blue) && blue.height() > 10,
             qPrintable(u"%1 %2"_s.arg(blue.left()).arg(blue.height())));
}

QTEST_MAIN(TestTextLayout)
#include "tst_textlayout.moc"
