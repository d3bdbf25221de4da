#include "../pdf/SmallPDF.h"
#include "Judges.h"

#include "Answered.h"
#include "Programs.h"

#include <QDir>

using namespace Qt::Literals::StringLiterals;

namespace {
/// A form of a text field and a check box, filled by hand.
const QByteArray savedForm =
    smallPDF({"/FT/Tx/T(name)/F 4/Rect[10 100 110 120]/DA(/F 12 Tf)/V(Jane Public)/AP<</N 6 0 R>>",
              "/FT/Btn/T(agree)/F 4/Rect[15 15 30 30]/V/Yes/AS/Yes/AP<</N<</Yes 7 0 R>>>>"})
        .replace(
            "trailer",
            "6 0 obj <</Subtype/Form/BBox[0 0 100 20]/Resources<</Font<</F 8 0 R>>>>>> stream\n"
            "q 0 0 100 20 re W n BT /F 12 Tf 2 6 Td (Jane Public) Tj ET Q\nendstream endobj\n"
            "7 0 obj <</Subtype/Form/BBox[0 0 15 15]>> stream\n5 5 5 5 re f\nendstream endobj\n"
            "8 0 obj <</Type/Font/Subtype/Type1/BaseFont/Helvetica>> endobj\n"
            "9 0 obj <</FT/Tx/T(name)/V(Jim Public)>> endobj\ntrailer");

QByteArray flatPage(const QByteArray &content)
{
    return smallPDF({}, "/Resources<</Font<</F 4 0 R>>>>/Contents 5 0 R")
        .replace("trailer", "4 0 obj <</Type/Font/Subtype/Type1/BaseFont/Helvetica>> endobj\n"
                            "5 0 obj <<>> stream\n" +
                                content + "\nendstream endobj\ntrailer");
}
const QByteArray flatForm = flatPage("BT /F 12 Tf 12 106 Td (Jane Public) Tj ET 20 20 5 5 re f");

QList<Answered> answers()
{
    Answered name;
    name.name = u"name"_s;
    name.rect = QRectF(10, 80, 100, 20);
    name.text = u"Jane Public"_s;
    name.stored = QStringList{name.text};
    name.changed = true;
    Answered agree;
    agree.id = 1;
    agree.kind = FormField::Kind::checkBox;
    agree.name = u"agree"_s;
    agree.rect = QRectF(15, 170, 15, 15);
    agree.on = true;
    agree.changed = true;
    return {name, agree};
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

/// Writes a file with its table of objects and lengths put right.
void writeSound(const QString &path, const QByteArray &pdf)
{
    write(path + u".raw"_s, pdf);
    QVERIFY(Programs::run(u"qpdf"_s, {path + u".raw"_s, path}).ended);
    QVERIFY(QFile::exists(path));
}
} // namespace

class TestJudges final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findWhatIsWrong_data();
    void findWhatIsWrong();
    void namesAnUnsoundFile_data();
    void namesAnUnsoundFile();
    void answersSurviveJSON();

private:
    void writeForm(const QByteArray &saved, const QByteArray &flat);
    [[nodiscard]] Verdict verdict() const;

    QTemporaryDir m_folder;
};

void TestJudges::writeForm(const QByteArray &saved, const QByteArray &flat)
{
    QVERIFY(QDir(m_folder.path()).mkpath(u"pass"_s));
    writeSound(m_folder.filePath(u"untouched.pdf"_s), flatPage({}));
    writeSound(m_folder.filePath(u"pass/saved.pdf"_s), saved);
    writeSound(m_folder.filePath(u"pass/flat.pdf"_s), flat);
    write(m_folder.filePath(u"pass/answers.json"_s), Answered::toJSON(answers()));
}

Verdict TestJudges::verdict() const
{
    const QString untouched = m_folder.filePath(u"untouched.pdf"_s);
    return Judges(untouched, untouched).pass(m_folder.filePath(u"pass"_s), u"pass"_s);
}

void TestJudges::findWhatIsWrong_data()
{
    QTest::addColumn<bool>("inSaved");
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<int>("notDrawn");
    QTest::addColumn<int>("readOtherwise");

    const auto flat = [](const char *name, const char *before, const char *after, int notDrawn) {
        QTest::newRow(name) << false << QByteArray(before) << QByteArray(after) << notDrawn << 0;
    };
    flat("all is well", "", "", 0);
    flat("an answer is missing from the page", "(Jane Public)", "()", 1);
    flat("an answer misses a letter", "Public", "Publc", 1);
    flat("an answer stands beside its field", "12 106", "122 106", 1);
    flat("an answer stands under its field", "12 106", "12 86", 1);
    flat("letters change places", "Public", "Pulbic", 1);
    flat("print stands between the letters", "(Jane Public)", "(J,a,n,e.....Public)", 0);
    flat("a mark is missing from the page", "20 20 5 5 re f", "", 1);
    flat("an answer is there for machines only", "BT", "BT 3 Tr", 1);

    const auto saved = [](const char *name, const char *before, const char *after, int notDrawn,
                          int readOtherwise) {
        QTest::newRow(name) << true << QByteArray(before) << QByteArray(after) << notDrawn
                            << readOtherwise;
    };
    saved("a field's own drawing is empty", "(Jane Public) Tj", "() Tj", 1, 0);
    saved("a field has no drawing", "/AP<</N 6 0 R>>", "", 1, 0);
    saved("the drawing's box cuts the text", "BBox[0 0 100 20]", "BBox[0 8 100 20]", 1, 0);
    saved("a clip cuts the text", "0 0 100 20 re W", "0 0 100 12 re W", 1, 0);
    saved("another value is stored", "/V(Jane Public)", "/V(Jane Publik)", 0, 1);
    saved("no value is stored", "/V(Jane Public)", "", 0, 1);
    saved("a check box is stored as off", "/V/Yes", "/V/Off", 0, 1);
    saved("a check box is drawn as off", "/AS/Yes", "/AS/Off", 0, 1);
    saved("a second field of the name has another value", "/Fields[", "/Fields[9 0 R ", 0, 1);
    saved("a field is gone", "/T(name)", "/T(nothing)", 0, 1);
}

void TestJudges::findWhatIsWrong()
{
    QFETCH(bool, inSaved);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QByteArray saved = savedForm;
    QByteArray flat = flatForm;
    QByteArray &changed = inSaved ? saved : flat;
    QVERIFY(changed.contains(before));
    if (!before.isEmpty()) {
        changed.replace(before, after);
    }
    writeForm(saved, flat);
    const Verdict found = verdict();
    QCOMPARE(found.lost, QStringList());
    QCOMPARE(found.notes, QStringList());
    QTEST(static_cast<int>(found.notDrawn.size()), "notDrawn");
    QTEST(static_cast<int>(found.readOtherwise.size()), "readOtherwise");
}

void TestJudges::namesAnUnsoundFile_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("the saved copy") << u"saved.pdf"_s;
    QTest::newRow("the flat copy") << u"flat.pdf"_s;
}

void TestJudges::namesAnUnsoundFile()
{
    QFETCH(QString, file);
    writeForm(savedForm, flatForm);
    write(m_folder.filePath(u"pass/"_s + file), "%PDF-1.7\nnothing else\n");
    const Verdict found = verdict();
    QVERIFY(!found.lost.isEmpty());
    QVERIFY2(found.lost.first().contains(file), qPrintable(found.lost.first()));
}

void TestJudges::answersSurviveJSON()
{
    QCOMPARE(Answered::fromJSON(Answered::toJSON(answers())), answers());
}

QTEST_GUILESS_MAIN(TestJudges)
#include "tst_judges.moc"
