#include "QSError.h"
#include "QSExport.h"
#include "QSFlatODF.h"
#include "QSInfo.h"
#include "QSPageLayout.h"
#include "SecondReader.h"

#include <QBuffer>
#include <QFontDatabase>
#include <QPageRanges>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTest>
#include <QThread>

#include <map>
#include <memory>

using Kind = QSBlock::Kind;

namespace {
/// A document with every kind of block, and texts that are hard to carry over.
QSRendered sample()
{
    return {QStringLiteral("Bill of Sale – “Doña María”"),
            {{Kind::title, {QStringLiteral("Bill of Sale")}},
             {Kind::heading, {QStringLiteral("1. Parties")}},
             {Kind::paragraph,
              {QString::fromUtf8(
                  "José Núñez-Ibáñez sells to Nguyễn Thị Ánh, 宋文靖 and 李小龙: “it’s “as "
                  "is”, ¿verdad?” — for $4,500.00 & <no> less")}},
             {Kind::row, {QStringLiteral("Make"), QStringLiteral("Model"), QStringLiteral("Year")}},
             {Kind::paragraph, {QStringLiteral("123 Main Street\nApt.   4")}},
             {Kind::paragraph, {QString::fromUtf8("محمد العربية")}},
             {Kind::signature, {QStringLiteral("____________________")}},
             {Kind::note, {QSInfo::templateNote}}}};
}

QSRendered numbered(int count)
{
    QSRendered rendered;
    for (int i = 1; i <= count; ++i) {
        rendered.blocks.append({Kind::paragraph, {QStringLiteral("Number%1").arg(i)}});
    }
    return rendered;
}

/// The texts of blocks as words, free of what only directs their display.
QStringList words(const QString &text)
{
    static const QRegularExpression directions(
        QStringLiteral("[\\x{200E}\\x{200F}\\x{202A}-\\x{202E}]"));
    // Arabic letters come back from a PDF in the forms they have in a word; the normal form has
    // none.
    return QString(text)
        .remove(directions)
        .normalized(QString::NormalizationForm_KC)
        .simplified()
        .split(u' ');
}

/// Where the words of a page stand, in points from its top left corner.
std::map<QString, QRectF> wordBoxes(const QByteArray &pdf)
{
    std::map<QString, QRectF> boxes;
    static const QRegularExpression word(
        QStringLiteral("<word xMin=\"([0-9.]+)\" yMin=\"([0-9.]+)\" xMax=\"([0-9.]+)\" "
                       "yMax=\"([0-9.]+)\">(.*)</word>"));
    const QString output =
        SecondReader::read(pdf, QStringLiteral("pdftotext"),
                           {QStringLiteral("-bbox"), QStringLiteral("@"), QStringLiteral("-")});
    for (const auto &match : word.globalMatch(output)) {
        boxes[match.captured(5)] =
            QRectF(QPointF(match.captured(1).toDouble(), match.captured(2).toDouble()),
                   QPointF(match.captured(3).toDouble(), match.captured(4).toDouble()));
    }
    return boxes;
}

/// A word's baseline: its box reaches from the font's ascent to its descent.
qreal baseline(const QRectF &box)
{
    constexpr qreal ascent = 0.891;
    constexpr qreal descent = 0.216;
    return box.top() + box.height() * ascent / (ascent + descent);
}

QString pdfText(const QByteArray &pdf, int page = 0)
{
    QStringList arguments = {QStringLiteral("@"), QStringLiteral("-")};
    if (page > 0) {
        arguments = QStringList{QStringLiteral("-f"), QString::number(page), QStringLiteral("-l"),
                                QString::number(page)} +
                    arguments;
    }
    return SecondReader::read(pdf, QStringLiteral("pdftotext"), arguments);
}

QString pdfInfo(const QByteArray &pdf, const QString &key)
{
    const QString output =
        SecondReader::read(pdf, QStringLiteral("pdfinfo"), {QStringLiteral("@")});
    const QRegularExpression line(key + QStringLiteral(": +(.*)\\n"));
    return line.match(output).captured(1);
}
} // namespace

class TestExport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pdfGivesBackEveryWord();
    void pdfSaysWhatItIs();
    void everyScriptIsReadAgain_data();
    void everyScriptIsReadAgain();
    void pdfIsSound_data();
    void pdfIsSound();
    void pagesAreNumbered();
    void blocksStandWhereTheyShould();
    void lettersWithoutAFontDoNoHarm();
    void isolatesStayOutOfFiles();
    void pdfOnAnotherThread();
    void printFitsThePaper_data();
    void printFitsThePaper();
    void printTakesTheWantedPages();
    void printFailures();
    void safeFileName_data();
    void safeFileName();
    void longFileNameStaysWhole();
};

void TestExport::pdfGivesBackEveryWord()
{
    QS_NEEDS("pdftotext");
    QString expected;
    for (const QSBlock &block : sample().blocks) {
        expected += block.cells.join(u' ') + u' ';
    }
    const QStringList found = words(pdfText(QSExport::pdf(sample())));
    for (const QString &word : words(expected)) {
        QVERIFY2(found.contains(word),
                 qPrintable(word + QStringLiteral(" is not in ") + found.join(u' ')));
    }
}

void TestExport::pdfSaysWhatItIs()
{
    QS_NEEDS("pdfinfo");
    QS_NEEDS("pdffonts");
    const QByteArray pdf = QSExport::pdf(sample());
    QCOMPARE(pdfInfo(pdf, QStringLiteral("Title")), sample().title);
    QCOMPARE(pdfInfo(pdf, QStringLiteral("Creator")), QSInfo::appName);
    QCOMPARE(pdfInfo(pdf, QStringLiteral("Page size")), QStringLiteral("612 x 792 pts (letter)"));

    const QString fonts =
        SecondReader::read(pdf, QStringLiteral("pdffonts"), {QStringLiteral("@")});
    const QStringList lines = fonts.split(u'\n', Qt::SkipEmptyParts).mid(2);
    static const QRegularExpression embeddedWithText(
        QStringLiteral(" yes +(yes|no) +yes +\\d+ +\\d+$"));
    for (const QString &line : lines) {
        QVERIFY2(embeddedWithText.match(line).hasMatch(), qPrintable(line));
    }
    if (QFontDatabase::hasFamily(QStringLiteral("Times New Roman"))) {
        return;
    }
    for (const auto &face :
         {QStringLiteral("LiberationSerif "), QStringLiteral("LiberationSerif-Bold "),
          QStringLiteral("LiberationSerif-Italic ")}) {
        QVERIFY2(!lines.filter(face).isEmpty(), qPrintable(fonts));
    }
}

void TestExport::everyScriptIsReadAgain_data()
{
    QTest::addColumn<QString>("name");
    const auto row = [](const char *script, const char *name) {
        QTest::newRow(script) << QString::fromUtf8(name);
    };
    row("Spanish", "José Núñez Ibáñez");
    row("Vietnamese", "Nguyễn Thị Ánh Đặng");
    row("Chinese", "宋文靖 廣東省 户口 立");
    row("Korean", "김민준 서울특별시");
    row("Arabic", "محمد عبد الله علاء");
    row("Hebrew", "דוד כהן שלום");
    row("Russian", "Иван Петрович Щукин");
    row("Hindi", "राजेश कुमार श्रीवास्तव");
    row("Punjabi", "ਗੁਰਪ੍ਰੀਤ ਸਿੰਘ");
    row("Bengali", "মোহাম্মদ রহমান ক্ষমা");
    row("Tamil", "முருகன் லக்ஷ்மி");
    row("Thai", "สมชาย ใจดี น้ำ");
    row("Amharic", "አበበ በቀለ");
    row("Armenian", "Արմեն Պետրոսյան");
    row("Khmer", "សុខ ស្រីមុំ ភ្នំពេញ");
    row("Gujarati", "રાજેશ પટેલ શ્રી");
    row("Burmese", "အောင်ဆန်း ကြည်");
    row("beyond the first plane", "𠮷野 😀");
    row("letters that grow together", "office ffl");
}

void TestExport::everyScriptIsReadAgain()
{
    QS_NEEDS("pdftotext");
    QFETCH(QString, name);
    if (!QFontDatabase::hasFamily(QStringLiteral("Noto Serif Khmer")) ||
        !QFontDatabase::hasFamily(QStringLiteral("Noto Serif CJK KR"))) {
        QSKIP("The fonts for these scripts are not installed");
    }
    const QString line = QStringLiteral("Between ") + name + QStringLiteral(" and others");
    const QSRendered rendered{{}, {{Kind::paragraph, {line}}, {Kind::heading, {line}}}};
    QSPageLayout layout;
    layout.update(rendered);
    QCOMPARE(layout.missingCharacters(), QString());
    QStringList found = words(pdfText(QSExport::pdf(rendered)));
    QStringList expected = words(line + u' ' + line + QStringLiteral(" Page 1 of 1"));
    if (name.isRightToLeft()) { // readers give such letters back, but not always in their order
        for (QStringList *both : {&found, &expected}) {
            *both = both->join(QString()).split(QString());
            both->sort();
        }
    }
    QCOMPARE(found, expected);
}

void TestExport::pdfIsSound_data()
{
    QTest::addColumn<QSRendered>("rendered");
    QTest::addColumn<QString>("pages");
    QTest::newRow("nothing") << QSRendered{} << QStringLiteral("1");
    QTest::newRow("every kind of block") << sample() << QStringLiteral("1");
    QTest::newRow("ten pages") << numbered(270) << QStringLiteral("10");
    QTest::newRow("one word longer than a page")
        << QSRendered{{}, {{Kind::paragraph, {QString(5000, u'W')}}}} << QStringLiteral("3");
}

void TestExport::pdfIsSound()
{
    QS_NEEDS("pdfinfo");
    QS_NEEDS("qpdf");
    QFETCH(QSRendered, rendered);
    QFETCH(QString, pages);
    const QByteArray pdf = QSExport::pdf(rendered);
    QCOMPARE(pdfInfo(pdf, QStringLiteral("Pages")), pages);
    const QString check = SecondReader::read(pdf, QStringLiteral("qpdf"),
                                             {QStringLiteral("--check"), QStringLiteral("@")});
    QVERIFY2(check.contains(QStringLiteral("No syntax or stream encoding errors found")),
             qPrintable(check));
}

void TestExport::pagesAreNumbered()
{
    QS_NEEDS("pdftotext");
    constexpr int count = 60;
    const QByteArray pdf = QSExport::pdf(numbered(count));
    QStringList found;
    for (int page = 1; page <= 3; ++page) {
        QStringList lines = pdfText(pdf, page).remove(u'\f').split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.takeLast(), QStringLiteral("Page %1 of 3").arg(page));
        found += lines;
    }
    QStringList expected;
    for (int i = 1; i <= count; ++i) {
        expected.append(QStringLiteral("Number%1").arg(i));
    }
    QCOMPARE(found, expected);
}

void TestExport::blocksStandWhereTheyShould()
{
    QS_NEEDS("pdftotext");
    const QSRendered rendered{
        {},
        {{Kind::title, {QStringLiteral("Title")}},
         {Kind::heading, {QStringLiteral("Heading")}},
         {Kind::paragraph, {QStringLiteral("First\nSecond")}},
         {Kind::row, {QStringLiteral("CellA"), QStringLiteral("CellB"), QStringLiteral("CellC")}},
         {Kind::signature, {QStringLiteral("Signed")}},
         {Kind::note, {QStringLiteral("Note")}}}};
    std::map<QString, QRectF> at = wordBoxes(QSExport::pdf(rendered));
    const auto near = [](qreal actual, qreal expected) {
        const bool close = qAbs(actual - expected) < 0.1;
        if (!close) {
            qWarning("%f, not %f", actual, expected);
        }
        return close;
    };
    const auto line = [](qreal size) { return 1.08 * size * (0.891 + 0.216 + 0.042); };
    const auto base = [&](const char *word) { return baseline(at.at(QString::fromLatin1(word))); };
    const auto left = [&](const char *word) { return at.at(QString::fromLatin1(word)).left(); };

    QVERIFY(near(at.at(QStringLiteral("Title")).center().x(), 306));
    for (const char *word : {"Heading", "First", "CellA", "Signed", "Note"}) {
        QVERIFY(near(left(word), 72));
    }
    QVERIFY(near(left("CellB"), 72 + 180));
    QVERIFY(near(left("CellC"), 72 + 340));

    // A line's extra height is above it: it ends at its descent, 0.216 of its size below the
    // baseline, and spaces of blocks add up.
    const auto next = [&](const char *above, qreal aboveSize, qreal space, qreal size) {
        return base(above) + 0.216 * aboveSize + space + line(size) - 0.216 * size;
    };
    QVERIFY(near(base("Title"), 72 + line(16) - 0.216 * 16));
    QVERIFY(near(base("Heading"), next("Title", 16, 6 + 8, 12.5)));
    QVERIFY(near(base("First"), next("Heading", 12.5, 4, 12)));
    QVERIFY(near(base("Second") - base("First"), line(12)));
    QVERIFY(near(base("CellA"), next("Second", 12, 8, 12)));
    QVERIFY(near(base("CellC"), base("CellA")));
    QVERIFY(near(base("Signed"), next("CellA", 12, 3 + 14, 12)));
    QVERIFY(near(base("Note"), next("Signed", 12, 0 + 18, 9)));

    QVERIFY(near(base("Page"), 792 - 40));
    QVERIFY(near(at.at(QStringLiteral("Page")).left() + at.at(QStringLiteral("1")).right(), 612));
    QVERIFY(near(at.at(QStringLiteral("Page")).height(), 9 * (0.891 + 0.216)));
    QVERIFY(near(at.at(QStringLiteral("Heading")).height(), 12.5 * (0.891 + 0.216)));
}

void TestExport::lettersWithoutAFontDoNoHarm()
{
    QS_NEEDS("pdftotext");
    const QSRendered rendered{
        {},
        {{Kind::paragraph, {QString::fromUtf8("before 한국어 हिन्दी ไทย 😀 𠮷 \u200d after")}},
         {Kind::paragraph,
          {QStringLiteral("half ") + QChar(0xD83D) + QStringLiteral(" bell \a nul ") + QChar(0) +
           QStringLiteral(" end")}}}};
    const QStringList found = words(pdfText(QSExport::pdf(rendered)));
    for (const char *word : {"before", "after", "half", "bell", "nul", "end"}) {
        QVERIFY2(found.contains(QString::fromLatin1(word)), word);
    }
}

void TestExport::isolatesStayOutOfFiles()
{
    QS_NEEDS("pdftotext");
    static const QRegularExpression isolates(QStringLiteral("[\\x{2066}-\\x{2069}]"));
    const QString text = QString::fromUtf8("To \u2068राजेश כהן\u2069, 5. \u2068AB\u2069");
    const QSRendered rendered{{}, {{Kind::paragraph, {text}}}};
    const QString pdf = pdfText(QSExport::pdf(rendered));
    QVERIFY2(!pdf.contains(isolates) && pdf.contains(QString::fromUtf8("राजेश")) &&
                 pdf.contains(QStringLiteral("AB")),
             qPrintable(pdf));
    const QString word = QString::fromUtf8(QSFlatODF::write(rendered));
    QVERIFY(!word.contains(isolates));
    QVERIFY(word.contains(QString::fromUtf8("To \u200eराजेश כהן\u200e, 5. \u200eAB\u200e")));
}

void TestExport::pdfOnAnotherThread()
{
    QS_NEEDS("pdftotext");
    QByteArray pdf;
    const std::unique_ptr<QThread> thread(
        QThread::create([&pdf] { pdf = QSExport::pdf(sample()); }));
    thread->start();
    QVERIFY(thread->wait(30'000));
    QCOMPARE(pdfText(pdf), pdfText(QSExport::pdf(sample())));
}

void TestExport::printFitsThePaper_data()
{
    QTest::addColumn<QPageLayout>("paper");
    QTest::addColumn<QPointF>("origin"); // of the printed page on the paper, in points
    QTest::addColumn<qreal>("scale");

    const QMarginsF margins(18, 24, 36, 48);
    const QPageSize letter(QPageSize::Letter);
    QTest::newRow("Letter with a border that can't be printed on")
        << QPageLayout(letter, QPageLayout::Portrait, margins) << QPointF(0, 0) << 1.0;
    QTest::newRow("narrower paper")
        << QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, margins)
        << QPointF(0, (842 - 792 * 595.0 / 612) / 2) << 595.0 / 612;
    QTest::newRow("larger paper") << QPageLayout(QPageSize(QPageSize::Legal), QPageLayout::Portrait,
                                                 margins)
                                  << QPointF(0, (1008 - 792.0) / 2) << 1.0;
    QTest::newRow("landscape") << QPageLayout(letter, QPageLayout::Landscape, margins)
                               << QPointF((792 - 612 * 612.0 / 792) / 2, 0) << 612.0 / 792;
}

void TestExport::printFitsThePaper()
{
    QS_NEEDS("pdftotext");
    QFETCH(QPageLayout, paper);
    QFETCH(QPointF, origin);
    QFETCH(qreal, scale);
    QByteArray printed;
    QBuffer buffer(&printed);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter printer(&buffer);
        printer.setPageLayout(paper);
        printer.setResolution(600);
        QSExport::print(numbered(1), printer);
    }
    const std::map<QString, QRectF> expected = wordBoxes(QSExport::pdf(numbered(1)));
    const std::map<QString, QRectF> actual = wordBoxes(printed);
    QCOMPARE(expected.size(), 4U); // "Number1", and the foot with "1" twice
    QCOMPARE(actual.size(), expected.size());
    for (const auto &[word, box] : expected) {
        const QPointF should = origin + box.topLeft() * scale;
        const QPointF is = actual.at(word).topLeft();
        QVERIFY2((should - is).manhattanLength() < 0.5,
                 qPrintable(QStringLiteral("%1: %2 %3, not %4 %5")
                                .arg(word)
                                .arg(is.x())
                                .arg(is.y())
                                .arg(should.x())
                                .arg(should.y())));
    }
}

void TestExport::printTakesTheWantedPages()
{
    QS_NEEDS("pdfinfo");
    QS_NEEDS("pdftotext");
    QByteArray printed;
    QBuffer buffer(&printed);
    buffer.open(QIODevice::WriteOnly);
    {
        QPdfWriter printer(&buffer);
        printer.setPageRanges(QPageRanges::fromString(QStringLiteral("2,4-9")));
        QSExport::print(numbered(130), printer);
    }
    QCOMPARE(pdfInfo(printed, QStringLiteral("Pages")), QStringLiteral("3"));
    for (const auto &[page, foot] :
         {std::pair(1, "Page 2 of 5"), {2, "Page 4 of 5"}, {3, "Page 5 of 5"}}) {
        QVERIFY2(pdfText(printed, page).contains(QString::fromLatin1(foot)), foot);
    }
}

void TestExport::printFailures()
{
    QPdfWriter closed(QStringLiteral("/missing folder/file.pdf"));
    QVERIFY_THROWS_EXCEPTION(QSError, QSExport::print(sample(), closed));

    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter printer(&buffer);
    printer.setPageRanges(QPageRanges::fromString(QStringLiteral("7-9")));
    QVERIFY_THROWS_EXCEPTION(QSError, QSExport::print(sample(), printer));
    QCOMPARE(buffer.size(), 0);
}

void TestExport::safeFileName_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("stem");
    const auto row = [](const char *name, const QString &text, const QString &stem) {
        QTest::newRow(name) << text << stem;
    };

    row("only separators", QStringLiteral("///"), QStringLiteral("---"));
    row("every refused character", QStringLiteral("1/2:3\\4?5%6*7|8\"9<0>"),
        QStringLiteral("1-2-3-4-5-6-7-8-9-0-"));
    row("spaces around", QStringLiteral("  Lease  2 "), QStringLiteral("Lease  2"));
    row("only spaces", QStringLiteral(" \t "), QStringLiteral("Document"));
    row("line end", QStringLiteral("Lease\nof 2025"), QStringLiteral("Lease of 2025"));
    row("folder above", QStringLiteral(".."), QStringLiteral("Document"));
    row("hidden file", QStringLiteral(" \u00a0. .profile"), QStringLiteral("profile"));
    row("dot at the end", QStringLiteral("Ann Lee Jr."), QStringLiteral("Ann Lee Jr."));
    row("first 120 characters", QString(119, u'a') + QStringLiteral("bc"),
        QString(119, u'a') + u'b');
    row("cut after a space", QString(119, u'a') + QStringLiteral(" bc"), QString(119, u'a'));
    row("cut between characters", QString(119, u'a') + QString::fromUtf8("👍🏽👍"),
        QString(119, u'a') + QString::fromUtf8("👍🏽"));
}

void TestExport::safeFileName()
{
    QFETCH(QString, text);
    QFETCH(QString, stem);
    QCOMPARE(QSExport::safeFileName(text), stem);
}

void TestExport::longFileNameStaysWhole()
{
    const QTemporaryDir folder;
    const QString stem = QSExport::safeFileName(QString(200, QChar(0x5B8B)));
    QCOMPARE(stem, QString(80, QChar(0x5B8B)));
    QSaveFile file(folder.filePath(stem + QStringLiteral(".docx")));
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(file.errorString()));
    QVERIFY(file.commit());
}

QTEST_MAIN(TestExport)
#include "tst_export.moc"
