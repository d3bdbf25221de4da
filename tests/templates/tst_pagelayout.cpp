#include "QSPageLayout.h"

#include <QImage>
#include <QPainter>
#include <QTest>

namespace {
using Kind = QSBlock::Kind;

/// One paragraph of a single line for each number, so that 28 of them fill a page.
QSRendered numbered(int count)
{
    QSRendered rendered;
    for (int i = 0; i < count; ++i) {
        rendered.blocks.append({Kind::paragraph, {QStringLiteral("Paragraph %1").arg(i)}});
    }
    return rendered;
}

QImage picture(const QSPageLayout &layout, int page, qreal zoom = 1)
{
    QImage image((QSPageLayout::pageSize * zoom).toSize(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.scale(zoom, zoom);
    layout.drawPage(painter, page);
    return image;
}

QString longText(int sentences)
{
    return QStringLiteral("The buyer takes the property as it is. ").repeated(sentences);
}
} // namespace

class TestPageLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyDocumentIsOnePage();
    void pagesFillLineByLine();
    void spaceAboveVanishesAtTheTopOfAPage();
    void blockSplitsBetweenLines();
    void headingStaysWithWhatFollows();
    void firstChangedPage_data();
    void firstChangedPage();
    void updateDrawsWhatAFreshLayoutDraws();
    void rightToLeftTextStartsAtTheRight();
    void colours();
    void breaksAreTheSameAtEveryZoom();
};

void TestPageLayout::emptyDocumentIsOnePage()
{
    QSPageLayout layout;
    QCOMPARE(layout.pageCount(), 1);
    layout.update({});
    QCOMPARE(layout.pageCount(), 1);
    layout.update({{}, {{Kind::paragraph, {QString()}}, {Kind::row, {}}}});
    QCOMPARE(layout.pageCount(), 1);
    QCOMPARE(layout.placeOfBlock(1).page, 0);
}

void TestPageLayout::pagesFillLineByLine()
{
    // A line of 12 points takes 12 x 1.149 x 1.08 = 14.89 and the space below it 8, so the last of
    // 28 lines ends at 27 x 22.89 + 14.89 = 633 of 648 points; the next one would end at 656.
    QSPageLayout layout;
    layout.update(numbered(28));
    QCOMPARE(layout.pageCount(), 1);
    layout.update(numbered(29));
    QCOMPARE(layout.pageCount(), 2);
    QCOMPARE(layout.placeOfBlock(27).page, 0);
    QCOMPARE(layout.placeOfBlock(28).page, 1);
    layout.update(numbered(57));
    QCOMPARE(layout.pageCount(), 3);
}

void TestPageLayout::spaceAboveVanishesAtTheTopOfAPage()
{
    const auto firstInkRow = [](const QImage &image) {
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (qGray(image.pixel(x, y)) < 128) {
                    return y;
                }
            }
        }
        return -1;
    };
    QSRendered plain = numbered(29);
    QSRendered spaced = plain;
    plain.blocks.last() = {Kind::paragraph, {QStringLiteral("Date")}};
    spaced.blocks.last() = {Kind::signature, {QStringLiteral("Date")}};
    QSPageLayout layout;
    layout.update(plain);
    const int expected = firstInkRow(picture(layout, 1));
    layout.update(spaced);
    QCOMPARE(firstInkRow(picture(layout, 1)), expected);
}

void TestPageLayout::blockSplitsBetweenLines()
{
    QSRendered rendered = numbered(26);
    rendered.blocks.append({Kind::paragraph, {longText(10)}});
    rendered.blocks.append({Kind::paragraph, {QStringLiteral("Last")}});
    QSPageLayout layout;
    layout.update(rendered);
    QCOMPARE(layout.pageCount(), 2);
    QCOMPARE(layout.placeOfBlock(26).page, 0);
    QCOMPARE(layout.placeOfBlock(27).page, 1);
}

void TestPageLayout::headingStaysWithWhatFollows()
{
    // After 27 paragraphs 30 of 648 points are left, enough for a heading of 23.5 but not for the
    // line below it.
    QSRendered rendered = numbered(27);
    rendered.blocks.append({Kind::heading, {QStringLiteral("Rent")}});
    QSPageLayout layout;
    layout.update(rendered);
    QCOMPARE(layout.placeOfBlock(27).page, 0);
    rendered.blocks.append({Kind::paragraph, {longText(4)}});
    layout.update(rendered);
    QCOMPARE(layout.placeOfBlock(27).page, 1);
    QCOMPARE(layout.placeOfBlock(28).page, 1);
}

void TestPageLayout::firstChangedPage_data()
{
    QTest::addColumn<QSRendered>("after");
    QTest::addColumn<int>("page");

    QSRendered before = numbered(70);
    QTest::newRow("nothing changed") << before << 3;
    QSRendered after = before;
    after.blocks[60].cells = {QStringLiteral("Other")};
    QTest::newRow("a word on the last page") << after << 2;
    after = before;
    after.blocks[30].cells = {longText(8)};
    QTest::newRow("a block that grows shifts from its page on") << after << 1;
    after = before;
    after.blocks.swapItemsAt(0, 69);
    QTest::newRow("blocks that change places") << after << 0;
    after = before;
    after.blocks[60].kind = Kind::note;
    QTest::newRow("same text of another kind") << after << 2;
    QTest::newRow("a page less: every foot changes") << numbered(50) << 0;
    QTest::newRow("a page more: every foot changes") << numbered(90) << 0;
}

void TestPageLayout::firstChangedPage()
{
    QFETCH(QSRendered, after);
    QFETCH(int, page);

    QSPageLayout layout;
    layout.update(numbered(70));
    QCOMPARE(layout.pageCount(), 3);
    layout.update(after);
    QCOMPARE(layout.firstChangedPage(), page);
}

void TestPageLayout::updateDrawsWhatAFreshLayoutDraws()
{
    QSRendered rendered = numbered(40);
    QSPageLayout updated;
    updated.update(rendered);
    for (int step = 0; step < 30; ++step) {
        const int at = step * 7 % int(rendered.blocks.size());
        if (step % 3 == 0) {
            rendered.blocks.remove(at);
        } else if (step % 3 == 1) {
            rendered.blocks.insert(at, {Kind::row, {longText(1), QString::number(step)}});
        } else {
            rendered.blocks[at] = {Kind::paragraph, {longText(step % 5)}};
        }
        updated.update(rendered);
        QSPageLayout fresh;
        fresh.update(rendered);
        QCOMPARE(updated.pageCount(), fresh.pageCount());
        for (int page = 0; page < fresh.pageCount(); ++page) {
            QCOMPARE(picture(updated, page), picture(fresh, page));
        }
    }
}

void TestPageLayout::rightToLeftTextStartsAtTheRight()
{
    QSRendered rendered{{}, {{Kind::paragraph, {QString::fromUtf8("محمد العربية")}}}};
    QSPageLayout layout;
    layout.update(rendered);
    QImage image = picture(layout, 0);
    // All ink of the text is in the right half; the foot is below.
    const QImage left = image.copy(0, 0, 306, 700);
    QImage blank(left.size(), left.format());
    blank.fill(Qt::white);
    QCOMPARE(left, blank);
    QVERIFY(image.copy(500, 0, 112, 700) != blank.copy(0, 0, 112, 700));
}

void TestPageLayout::colours()
{
    const auto darkest = [](const QImage &image) {
        int value = 255;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                value = qMin(value, qGray(image.pixel(x, y)));
            }
        }
        return value;
    };
    QSPageLayout layout;
    layout.update({{}, {{Kind::paragraph, {QStringLiteral("________")}}}});
    const QImage black = picture(layout, 0, 4);
    QCOMPARE(darkest(black.copy(0, 0, black.width(), 2400)), 0);
    QCOMPARE(darkest(black.copy(0, 2400, black.width(), black.height() - 2400)), 64);
    layout.update({{}, {{Kind::note, {QStringLiteral("________")}}}});
    QCOMPARE(darkest(picture(layout, 0, 4)), 64);
}

void TestPageLayout::breaksAreTheSameAtEveryZoom()
{
    QSPageLayout layout;
    layout.update({{}, {{Kind::paragraph, {longText(12)}}}});
    const auto inkRight = [&](qreal zoom) {
        const QImage image = picture(layout, 0, zoom);
        int right = 0;
        for (int y = 0; y < int(700 * zoom); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (qGray(image.pixel(x, y)) < 100) {
                    right = qMax(right, x);
                }
            }
        }
        return right / zoom;
    };
    const qreal reference = inkRight(4);
    QVERIFY(reference <= 540);
    for (const qreal zoom : {0.85, 1.0, 1.37, 2.0}) {
        QVERIFY2(qAbs(inkRight(zoom) - reference) < 1.5, qPrintable(QString::number(zoom)));
    }
}

QTEST_MAIN(TestPageLayout)
#include "tst_pagelayout.moc"
