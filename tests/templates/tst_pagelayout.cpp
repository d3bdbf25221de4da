#include "QSPageLayout.h"

#include <QFontDatabase>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
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
    void keptBlocksStayWithWhatFollows_data();
    void keptBlocksStayWithWhatFollows();
    void missingCharacters_data();
    void missingCharacters();
    void missingWhereNoFontIsInstalled();
    void updateDrawsWhatAFreshLayoutDraws();
    void rightToLeftTextStartsAtTheRight();
    void isolatedTextTurnsNothingElse();
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

void TestPageLayout::keptBlocksStayWithWhatFollows_data()
{
    QTest::addColumn<int>("before"); // paragraphs of one line, 28 of which fill a page
    QTest::addColumn<QList<Kind>>("kinds");
    QTest::addColumn<QList<int>>("pages");
    using Kinds = QList<Kind>;
    using Pages = QList<int>;

    // After 27 paragraphs 30 of 648 points are left, enough for a heading of 23.5 but not for the
    // line below it; after 25 and a row 57.9, enough for a heading and a signature line of 56.4 but
    // not for a third.
    QTest::newRow("a heading with nothing below") << 27 << Kinds{Kind::heading} << Pages{0};
    QTest::newRow("a heading and its text")
        << 27 << Kinds{Kind::heading, Kind::paragraph} << Pages{1, 1};
    QTest::newRow("heading, signature line and its row")
        << 25 << Kinds{Kind::row, Kind::heading, Kind::signature, Kind::row} << Pages{0, 1, 1, 1};
    QTest::newRow("where they fit")
        << 25 << Kinds{Kind::heading, Kind::signature, Kind::row} << Pages{0, 0, 0};
    QTest::newRow("the text before a signature line stays")
        << 27 << Kinds{Kind::paragraph, Kind::signature, Kind::row} << Pages{0, 1, 1};
    // 22 lines of 14.89 and the 14 above each but the first take 621.5: with a row above 648.
    QTest::newRow("almost a page") << 1 << Kinds(Kinds(22, Kind::signature)) << Pages(Pages(22, 1));
    QTest::newRow("more than a page")
        << 1 << Kinds(Kinds(24, Kind::signature) << Kind::row) << (Pages(21, 0) << Pages(4, 1));
}

void TestPageLayout::keptBlocksStayWithWhatFollows()
{
    QFETCH(int, before);
    QFETCH(QList<Kind>, kinds);
    QFETCH(QList<int>, pages);
    QSRendered rendered = numbered(before);
    for (const Kind kind : kinds) {
        rendered.blocks.append({kind, {kind == Kind::paragraph ? longText(4) : QString(u'_')}});
    }
    QSPageLayout layout;
    layout.update(rendered);
    QList<int> found;
    for (int i = 0; i < kinds.size(); ++i) {
        found.append(layout.placeOfBlock(before + i).page);
    }
    QCOMPARE(found, pages);
}

void TestPageLayout::missingCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("missing");
    QTest::newRow("names") << QStringLiteral("Nguyễn Thị Ánh 宋文靖 José “x” – € ½") << QString();
    QTest::newRow("what is not printed")
        << QStringLiteral("a\tb\nc zwj\u200d vs\ufe0f soft\u00ad bom\ufeff \u202f\u2028 \u3000")
        << QString();
    QTest::newRow("each once, in order")
        << QStringLiteral("x\u0380y\u0378\u0380 \u0378z") << QStringLiteral("\u0380\u0378");
    QTest::newRow("private use, which a font may fill with anything")
        << QStringLiteral("\uf0b7 x\ue000") << QStringLiteral("\uf0b7\ue000");
    QTest::newRow("whole pairs") << QStringLiteral("x\U00050000e\U00050001")
                                 << QStringLiteral("\U00050000\U00050001");
}

void TestPageLayout::missingCharacters()
{
    QFETCH(QString, text);
    QFETCH(QString, missing);
    if (missing.isEmpty() && !QFontDatabase::hasFamily(QStringLiteral("Droid Sans Fallback"))) {
        QSKIP("The font for Chinese letters is not installed");
    }
    QSPageLayout layout;
    QSRendered rendered{{}, {{Kind::paragraph, {text}}, {Kind::heading, {text}}}};
    layout.update(rendered);
    QCOMPARE(layout.missingCharacters(), missing);
    layout.update(rendered); // with the lines set before
    QCOMPARE(layout.missingCharacters(), missing);
    layout.update(numbered(1));
    QCOMPARE(layout.missingCharacters(), QString());
}

/// In a process of its own, which is shown one family of fonts.
void TestPageLayout::missingWhereNoFontIsInstalled()
{
    static constexpr const char *child = "QS_FEW_FONTS";
    const QString letters = QString::fromUtf8("सक宋김สአԱខ");
    if (!qEnvironmentVariableIsSet(child)) {
        const QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("fonts.conf")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<fontconfig><dir>/usr/share/fonts/truetype/liberation2</dir><cachedir>" +
                   folder.path().toUtf8() + "</cachedir></fontconfig>");
        file.close();
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(child), QStringLiteral("1"));
        environment.insert(QStringLiteral("FONTCONFIG_FILE"), file.fileName());
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(),
                      {QString::fromLatin1(QTest::currentTestFunction())});
        QVERIFY(process.waitForFinished());
        QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
                 process.readAllStandardOutput().constData());
        return;
    }
    QSPageLayout layout;
    layout.update({{}, {{Kind::paragraph, {QStringLiteral("Ann ") + letters}}}});
    QCOMPARE(layout.missingCharacters(), letters);
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

void TestPageLayout::isolatedTextTurnsNothingElse()
{
    QSPageLayout layout;
    const auto pageOf = [&layout](const char *text) {
        layout.update({{}, {{Kind::paragraph, {QString::fromUtf8(text)}}}});
        return picture(layout, 0);
    };
    const QImage plain = pageOf("Buyer: \u2068\u202aBob\u202c\u2069, 5.\nSeller: Bob (12 May)");
    QCOMPARE(pageOf("\u2068 \u2069"), pageOf("")); // no boxes
    const QImage turned = pageOf("Buyer: \u2068\u202eBob\u202c\u2069, 5.\nSeller: Bob (12 May)");
    constexpr int secondLine = 72 + 15;
    QVERIFY(turned.copy(0, 0, 612, secondLine) != plain.copy(0, 0, 612, secondLine));
    QCOMPARE(turned.copy(0, secondLine, 612, 700), plain.copy(0, secondLine, 612, 700));
    QCOMPARE(layout.missingCharacters(), QString());

    // alone it decides where the line begins, beside other words it doesn't
    const QImage empty = pageOf("");
    const QRect left(0, 0, 306, 700);
    const QRect right(306, 0, 306, 700);
    QVERIFY(pageOf("\u2068דוד כהן\u2069").copy(right) != empty.copy(right));
    QCOMPARE(pageOf("\u2068דוד כהן\u2069").copy(left), empty.copy(left));
    QCOMPARE(pageOf("\u2068דוד\u2069 and Ann").copy(right), empty.copy(right));
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
