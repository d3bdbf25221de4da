#include "QSPDFDocument.h"
#include "SmallPDF.h"
#include "TestFiles.h"

#include <QThread>

#include <algorithm>
#include <memory>
#include <stop_token>

using namespace Qt::Literals::StringLiterals;

namespace {
QByteArray place(int number)
{
    return "/Rect[" + QByteArray::number(number % 200) + " 10 " +
           QByteArray::number(number % 200 + 1) + " 12]";
}

/// So many widgets of one name.
QByteArray ofOneName(int count, const QByteArray &kind)
{
    QList<QByteArray> objects{kind + "/T(a)"};
    for (int i = 0; i < count; ++i) {
        objects.append("/Parent 4 0 R" + place(i) + helv);
    }
    return smallPDF(objects);
}

/// Fields that lie in one another, each of them on the page.
QByteArray chain(int count, const QByteArray &each)
{
    QList<QByteArray> objects;
    for (int i = 0; i < count; ++i) {
        objects.append((i > 0 ? "/Parent " + QByteArray::number(3 + i) + " 0 R" : "/FT/Tx") +
                       "/T(a)/Kids[" + QByteArray::number(5 + i) + " 0 R]" + each);
    }
    return smallPDF(objects + QList<QByteArray>{"/Parent " + QByteArray::number(3 + count) +
                                                " 0 R/T(a)/Rect[10 100 110 120]"});
}

/// Adds a packed stream of so many equal letters.
QByteArray withPacked(QByteArray pdf, int number, qsizetype letters)
{
    const QByteArray packed = qCompress(QByteArray(letters, 'a')).sliced(4); // after the length
    return pdf.replace("trailer", QByteArray::number(number) + " 0 obj <</Filter/FlateDecode" +
                                      "/Length " + QByteArray::number(packed.size()) +
                                      ">> stream\n" + packed + "\nendstream endobj\ntrailer");
}

/// A page whose content is one stream many times over: nobody can wait for its end.
QByteArray withoutEnd(const QByteArray &field)
{
    const QByteArray lines = QByteArray("0 0 m 200 200 l S ").repeated(1000);
    return smallPDF({field}, "/Contents[" + QByteArray("5 0 R ").repeated(100'000) + "]")
        .replace("trailer", "5 0 obj <</Length " + QByteArray::number(lines.size()) +
                                ">> stream\n" + lines + "\nendstream endobj\ntrailer");
}
} // namespace

/// Files that are made so that opening them takes too much, and openings that are stopped.
class TestOpening final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusesWhatNoFormHas_data()
    {
        QTest::addColumn<QByteArray>("pdf");
        QTest::addColumn<QString>("refusal");
        const QString fields =
            u"This form has more than 2,000 fields on one page, so it can't be opened here."_s;
        const QString text =
            u"A field of this form holds more than 100,000 characters, so it can't be opened here."_s;
        const QString all =
            u"This form's fields hold more than 10,000,000 characters, so it can't be opened here."_s;
        const QByteArray letters(100'001, 'a');
        QTest::newRow("boxes of one name") << ofOneName(2'001, "/FT/Tx") << fields;
        QTest::newRow("fields in one another")
            << chain(30'000, place(0))
            << u"This form's fields lie more than 64 deep in one another, so it can't be opened here."_s;
        QTest::newRow("a value") << smallPDF({textField + "/V(" + letters + ")"}) << text;
        QTest::newRow("a small file's long value")
            << withPacked(smallPDF({textField + "/V 5 0 R"}), 5, 100'000'000) << text;
        QTest::newRow("names in one another")
            << chain(11, "/T(" + letters.first(10'000) + ")").replace("/T(a)", "") << text;
        QTest::newRow("one value in many boxes")
            << ofOneName(101, "/FT/Tx/V(" + letters.chopped(1) + ")") << all;
        QTest::newRow("one choice many times")
            << withPacked(smallPDF({QByteArray("/FT/Ch/T(a)/Rect[10 100 110 120]/Opt[") +
                                    QByteArray("5 0 R ").repeated(10'000) + "]"}),
                          5, 100'000)
            << all;
    }

    void refusesWhatNoFormHas()
    {
        QFETCH(const QByteArray, pdf);
        QFETCH(const QString, refusal);
        QCOMPARE(sentence([&] { (void)QSPDFDocument::open(pdf); }), refusal);
    }

    void opensWhatIsWithinTheLimits()
    {
        const QByteArray letters(100'000, 'a');
        const auto longText = QSPDFDocument::open(smallPDF({textField}));
        longText->setValue(
            0, {.text = QString::fromLatin1(letters + letters), .on = {}, .chosen = {}});
        QCOMPARE(longText->value(0).text, QString::fromLatin1(letters));
        QCOMPARE(QSPDFDocument::open(longText->bytes())->value(0), longText->value(0));
        QCOMPARE(QSPDFDocument::open(chain(60, {}))->fields().size(), 1);
    }

    void treesOfOneLongBranchAreNoDanger_data()
    {
        QTest::addColumn<QByteArray>("entry");
        QTest::addColumn<QByteArray>("withBranch");
        QTest::addColumn<QByteArray>("twig");
        QTest::addColumn<QString>("refusal");
        const QString damaged = u"This PDF is damaged, so it can't be opened here."_s;
        QTest::newRow("pages") << QByteArray("/Kids[3 0 R]") << QByteArray("/Kids[10 0 R]")
                               << QByteArray("/Type/Pages/Count 1/Kids[NEXT]") << damaged;
        QTest::newRow("fields") << QByteArray("/Fields[") << QByteArray("/Fields[10 0 R ")
                                << QByteArray("/FT/Tx/T(b)/Kids[NEXT]") << QString();
        QTest::newRow("page labels")
            << QByteArray("/Type/Catalog") << QByteArray("/Type/Catalog/PageLabels 10 0 R")
            << QByteArray("/Kids[NEXT]") << damaged;
    }

    void treesOfOneLongBranchAreNoDanger()
    {
        QFETCH(const QByteArray, entry);
        QFETCH(const QByteArray, withBranch);
        QFETCH(const QByteArray, twig);
        QFETCH(const QString, refusal);
        constexpr int length = 100'000;
        QByteArray twigs;
        for (int i = 10; i < 10 + length; ++i) {
            const QByteArray next = i + 1 < 10 + length ? QByteArray::number(i + 1) : "3";
            twigs += QByteArray::number(i) + " 0 obj <<" +
                     QByteArray(twig).replace("NEXT", next + " 0 R") + ">> endobj\n";
        }
        const QByteArray pdf =
            smallPDF({textField}).replace(entry, withBranch).replace("trailer", twigs + "trailer");
        QVERIFY(QSPDFDocument::isPDF(pdf));
        QCOMPARE(sentence([&] {
                     const auto document = QSPDFDocument::open(pdf);
                     QCOMPARE(document->render(0, 72).outcome, PageDrawing::Outcome::drawn);
                     QVERIFY(!document->flattened().isEmpty());
                 }),
                 refusal);
    }

    void boxesOfOneNameAreOneAnswer()
    {
        constexpr int many = 500;
        const auto document = QSPDFDocument::open(
            ofOneName(many, "/FT/Tx").replace("/Rect[3 10 4 12]", "/Rect[3 10 90 30]"));
        const auto affected = document->setValue(7, {.text = u"x"_s, .on = false, .chosen = {}});
        QCOMPARE(affected.size(), many);
        QCOMPARE(affected.constFirst(), 7);
        const QList<FormValue> values = document->values();
        QVERIFY(std::ranges::all_of(values, [](const FormValue &v) { return v.text == u"x"; }));
        QCOMPARE(QSPDFDocument::open(document->bytes())->values(), values);
        QVERIFY(!document->flatCopy().pdf.isEmpty());
    }

    void canBeStopped()
    {
        std::stop_source stop;
        stop.request_stop();
        const QString stopped = u"The opening was stopped."_s;
        const auto open = [&](const QByteArray &pdf) {
            return sentence([&] { (void)QSPDFDocument::open(pdf, stop.get_token()); });
        };
        QCOMPARE(open(smallPDF({textField})), stopped);
        stop = {};
        QCOMPARE(open(smallPDF({textField})), QString());
        const QByteArray box = "/FT/Btn/T(a)/Rect[10 100 20 110]"; // which the page is to name
        QString said;
        const std::unique_ptr<QThread> thread(
            QThread::create([&] { said = open(withoutEnd(box)); }));
        thread->start();
        for (int i = 0; i < 5; ++i) { // meanwhile it comes to the page's words
            (void)QSPDFDocument::open(smallPDF({box}));
        }
        QVERIFY(thread->isRunning());
        stop.request_stop();
        QVERIFY(thread->wait(10'000));
        QCOMPARE(said, stopped);
    }
};

QTEST_MAIN(TestOpening)
#include "tst_opening.moc"
