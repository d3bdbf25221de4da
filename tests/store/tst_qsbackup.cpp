#include "BackupFixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString notABackup =
    u"This file can't be restored: it is not a Vell Quillstone backup file."_s;
const QString newer = u"This file can't be restored: it was made by a newer version of the app."_s;
const QString badName = u"This file can't be restored: a file name inside it is not allowed."_s;
const QString damaged =
    u"This file can't be restored: the filled PDF \"W-9 \\ mine\" inside it is damaged."_s;
const QString damagedSecond =
    u"This file can't be restored: the filled PDF \"I-912\" inside it is damaged."_s;

void row(const char *name, const QByteArray &bytes, const QString &refusal)
{
    QTest::newRow(name) << bytes << refusal;
}

void change(const char *name, const QByteArray &before, const QByteArray &after,
            const QString &refusal)
{
    row(name, sampleWith(before, after), refusal);
}

/// What is wrong with the file as a whole.
void refuseShapes()
{
    row("nothing", "", notABackup);
    row("an array", "[]", notABackup);
    row("a bare word", "null", notABackup);
    row("cut off", sample().chopped(3), notABackup);
    row("more behind it", sample() + "{}", notABackup);
    row("NUL behind it", sample() + '\0', notABackup);
    row("deep nesting", QByteArray(1'000'000, '['), notABackup);
    change("deep inside an unknown key", "{", "{\"x\":" + QByteArray(1'000'000, '['), notABackup);
    change("no version", ",\n    \"version\": 1", "", notABackup);
    change("no data", R"("data": "JVBERg==",)", "", notABackup);
    change("version as a text", "\"version\": 1", "\"version\": \"1\"", notABackup);
    change("version with a fraction", "\"version\": 1", "\"version\": 1.5", notABackup);
    change("version out of range", "\"version\": 1", "\"version\": 99999999999999999999",
           notABackup);
    change("null for a text", "\"app\": \"Vell Quillstone 1.0\"", "\"app\": null", notABackup);
    change("a number in the profile", "\"Denver\"", "1", notABackup);
    change("an object in the values", "\"notes\": \"\"", "\"notes\": {}", notABackup);
    change("an object for an array", "\"documents\": [", "\"documents\": {}, \"x\": [", notABackup);
    change("a text among the documents", "\"documents\": [", "\"documents\": [\"x\",", notABackup);
    change("time out of range", "1700000000.25", "1e999", notABackup);
    change("a key twice", "\"app\"", "\"app\": \"a\", \"app\"", notABackup);
    change("an answer twice", "\"city\"", "\"city\": \"a\", \"city\"", notABackup);
    change("no UTF-8", "Denver", "D\xe9nver", notABackup);
    change("half a surrogate pair", "Denver", "\\udc00", notABackup);
    change("line end in a text", "Denver", "Den\nver", notABackup);
    change("format in other letters", "stone backup", "stone Backup", notABackup);

    QByteArray bytes = sampleWith("JVBERi0xLjQKAAH/", "?");
    row("newer, and a PDF damaged", bytes.replace("\"version\": 1", "\"version\": 2"), newer);
    change("much newer", "\"version\": 1", "\"version\": 3000000000", newer);
    bytes.replace("\"version\": 2", "\"version\": \"2\"");
    row("wrong shape comes first", bytes, notABackup);
}

/// What is wrong with a filled PDF.
void refusePDFs()
{
    change("line break in base64", "JVBERi0xLjQKAAH/", "JVBERi0x\\nLjQKAAH/", damaged);
    change("URL's base64", "JVBERi0xLjQKAAH/", "JVBERi0xLjQKAAH_", damaged);
    change("padding missing", "JVBERg==", "JVBERg", damagedSecond);
    change("padding inside", "JVBERg==", "JVBERg==JVBE", damagedSecond);
    change("bits that stand for nothing", "JVBERg==", "JVBERh==", damagedSecond);
    change("no PDF", "JVBERg==", "JVBE", damagedSecond);
    change("empty file", "JVBERg==", "", damagedSecond);

    for (const QByteArray name :
         {"../second.pdf", "a/second.pdf", "/second.pdf", "a..pdf", "second.PDF", "second.pdf ",
          "second", "sec\\u0000ond.pdf", "", "0F8FAD5B-D9CB-469F-A165-70867728950E.pdf"}) {
        QTest::addRow("name %s", name.constData()) << sampleWith("second.pdf", name) << badName;
    }
    QByteArray bytes = sampleWith("JVBERg==", "?");
    row("the first PDF's name before the second's data", bytes.replace("\"0F8FAD5B", "\"/0F8FAD5B"),
        badName);
    change("300 letters", "second.pdf", QByteArray(296, 'n') + ".pdf",
           u"The filled PDFs could not be put in place: File name too long"_s);
}
} // namespace

class TestQSBackup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_user = std::make_unique<BackupFixture>(); }
    void cleanup() { m_user.reset(); }

    void writesTheFormat();
    void restoresTheSample();
    void refuses_data();
    void refuses();
    void accepts_data();
    void accepts();
    void comesBackTheSame();
    void leavesOutWhatCannotBeRead();

private:
    std::unique_ptr<BackupFixture> m_user;
};

void TestQSBackup::writesTheFormat()
{
    m_user->store().saveProfile({{u"zip"_s, u"80202"_s}, {u"name"_s, u"Ana \"Ñ\"\n"_s}});
    const QSDocument document = m_user->store().save(BackupFixture::document(u"Löwe"_s));
    const QByteArray pdf = "%PDF" + QByteArray::fromHex("00ff10");
    const QSFilledPDF record = m_user->store().saveFilledPDF(u"us-w-9"_s, u"W-9"_s, pdf);
    const QByteArray bytes = QSBackup::make(m_user->store());

    QJsonObject file = QJsonDocument::fromJson(bytes).object();
    const QString created = file.take("created"_L1).toString();
    QVERIFY(QRegularExpression(u"^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ$"_s)
                .match(created)
                .hasMatch());
    QVERIFY(QDateTime::fromString(created, Qt::ISODate).secsTo(QDateTime::currentDateTimeUtc()) <
            60);
    const auto seconds = [](const QDateTime &time) {
        return static_cast<double>(time.toMSecsSinceEpoch()) / 1000;
    };
    const QJsonObject expected{
        {u"format"_s, u"Vell Quillstone backup"_s},
        {u"version"_s, 1},
        {u"app"_s, u"Vell Quillstone "_s + QSInfo::version()},
        {u"profile"_s, QJsonObject{{u"name"_s, u"Ana \"Ñ\"\n"_s}, {u"zip"_s, u"80202"_s}}},
        {u"documents"_s, QJsonArray{QJsonObject{{u"templateID"_s, document.templateID},
                                                {u"templateVersion"_s, document.templateVersion},
                                                {u"title"_s, u"Löwe"_s},
                                                {u"values"_s, QJsonObject{{u"a"_s, u"Löwe"_s}}},
                                                {u"state"_s, u"CO"_s},
                                                {u"created"_s, seconds(document.created)},
                                                {u"modified"_s, seconds(document.modified)}}}},
        {u"filledPDFs"_s,
         QJsonArray{QJsonObject{{u"entryID"_s, u"us-w-9"_s},
                                {u"title"_s, u"W-9"_s},
                                {u"fileName"_s, record.fileName},
                                {u"created"_s, seconds(record.created)},
                                {u"modified"_s, seconds(record.modified)},
                                {u"data"_s, QString::fromLatin1(pdf.toBase64())}}}}};
    QCOMPARE(file, expected);
    // Sorted keys, each on a line of its own.
    QStringList keys;
    QRegularExpressionMatchIterator lines =
        QRegularExpression(u"^ +\"(\\w+)\": "_s, QRegularExpression::MultilineOption)
            .globalMatch(QString::fromUtf8(bytes));
    while (lines.hasNext()) {
        keys.append(lines.next().captured(1));
    }
    QCOMPARE(keys.join(u' '),
             u"app created documents created modified state templateID templateVersion title "
             "values a filledPDFs created data entryID fileName modified title format profile "
             "name zip version"_s);
    QVERIFY(QRegularExpression(u"^Vell Quillstone Backup \\d{4}-\\d\\d-\\d\\d\\.qsbackup$"_s)
                .match(QSBackup::suggestedName())
                .hasMatch());
}

void TestQSBackup::restoresTheSample()
{
    m_user->fill(u"old"_s);
    const QList<QSDocument> before = m_user->store().documents();
    const QString formerFile = filledPath(m_user->store().filledPDFs().constFirst().fileName);
    const QSignalSpy revision(&m_user->store(), &QSStore::revisionChanged);
    m_user->restore(sample());
    QCOMPARE(revision.size(), 1);
    QVERIFY(QFile::exists(formerFile));
    QVERIFY(!m_user->store().search(u"löwe"_s).isEmpty());
    QVERIFY(m_user->store().search(u"old0"_s).isEmpty());
    QVERIFY(
        !m_user->store().document(*before.constFirst().id)); // nobody's former id is another's now

    QCOMPARE(shell(u"SELECT key, value FROM profile ORDER BY 1"_s), u"city|Denver\nname|Ana"_s);
    QCOMPARE(
        shell(u"SELECT template_id, template_version, title, state, created, modified, "
              "json_extract(values_json, '$.landlord') FROM documents ORDER BY modified DESC"_s),
        u"gone-template|3|Umzug — \"Löwe\" & Söhne|CO|1700000000.25|1763144809.5|María\nJosé\n"
        "other||Second||0.0|-1.5|"_s);
    QCOMPARE(shell(u"SELECT entry_id, title, file_name, created, modified FROM filled_pdfs "
                   "ORDER BY modified DESC"_s),
             u"us-w-9|W-9 \\ mine|0F8FAD5B-D9CB-469F-A165-70867728950E.pdf|1763144000.0|"
             "1763144001.125\nus-i-912|I-912|second.pdf|1.0|2.0"_s);
    QCOMPARE(contents(filledPath(u"0F8FAD5B-D9CB-469F-A165-70867728950E.pdf"_s)),
             QByteArray("%PDF-1.4\n\x00\x01\xff", 12));
    QCOMPARE(contents(filledPath(u"second.pdf"_s)), "%PDF");
    QCOMPARE(shell(u"SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE "
                   "'search%' ORDER BY 1; PRAGMA integrity_check"_s),
             u"documents\nfilled_pdfs\nlink_checks\nprofile\nok"_s);
    QCOMPARE(foldersAmongFilled(), QStringList());
}

void TestQSBackup::refuses_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("refusal");
    refuseShapes();
    refusePDFs();
}

void TestQSBackup::refuses()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, refusal);
    m_user->fill(u"kept"_s);
    const QString path = m_user->path(u"bad.qsbackup"_s);
    writeFile(path, bytes);
    const QMap<QString, QByteArray> before = tree(m_user->path(u"."_s));
    const int revision = m_user->store().revision();
    if (refusal.startsWith(u"This file"_s)) {
        QCOMPARE(sentence([&] { (void)QSBackup::read(bytes); }), refusal);
    }
    QCOMPARE(sentence([&] { m_user->restore(bytes); }), refusal);
    QCOMPARE(sentence([&] { m_user->restoreFile(path); }), refusal);
    QCOMPARE(tree(m_user->path(u"."_s)), before);
    QCOMPARE(m_user->store().revision(), revision);
}

void TestQSBackup::accepts_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("fileName");
    const auto row = [](const char *name, const QByteArray &before, const QByteArray &after,
                        const QString &fileName = u"second.pdf"_s) {
        QTest::newRow(name) << sampleWith(before, after) << fileName;
    };
    row("version 0", "\"version\": 1", "\"version\": 0");
    row("a negative version", "\"version\": 1", "\"version\": -7");
    row("keys that are not known", "\"data\"", R"("x": {"y": [1, {"data": null}]}, "data")");
    row("another order", "{\n    \"app\": \"Vell Quillstone 1.0\",",
        R"({"version": 1, "app": "", "vers)"
        R"(ions": 2,)");
    row("escapes in base64", "JVBERi0xLjQKAAH/", "\\u004aVBERi0xLjQKAAH\\/");
    row("a backslash in a name", "second.pdf", "a\\\\b.pdf", u"a\\b.pdf"_s);
    row("nothing but the ending", "second.pdf", ".pdf", u".pdf"_s);
    row("a name in other letters", "second.pdf", "0f8FAD5B-D9CB-469F-A165-70867728950E.pdf",
        u"0f8FAD5B-D9CB-469F-A165-70867728950E.pdf"_s);
}

void TestQSBackup::accepts()
{
    QFETCH(QByteArray, bytes);
    QFETCH(const QString, fileName);
    if (bytes.contains("versions")) {
        bytes.replace(",\n    \"version\": 1", "");
    }
    m_user->restore(bytes);
    QCOMPARE(m_user->store().documents().size(), 2);
    QCOMPARE(m_user->store().filledPDFs().constLast().fileName, fileName);
    QCOMPARE(contents(filledPath(fileName)), "%PDF");
    QCOMPARE(m_user->store().filledPDFs().size(), 2);
}

void TestQSBackup::comesBackTheSame()
{
    const QString empty = m_user->path(u"empty.qsbackup"_s);
    QCOMPARE(m_user->backUp(empty), 0);
    m_user->fill(u"one"_s);
    m_user->store().db().exec(
        u"UPDATE documents SET modified = 1763144809.123"_s); // all of one moment
    const QSBackup::File before = m_user->state();
    const QString path = m_user->path(u"one.qsbackup"_s);
    writeFile(path, "an older one");
    QCOMPARE(m_user->backUp(path), 0);
    QCOMPARE(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther),
             QFile::Permissions());

    m_user->restoreFile(empty);
    QCOMPARE(m_user->state(), stateOf(contents(empty)));
    QVERIFY(m_user->store().documents().isEmpty() && m_user->store().profile().isEmpty());
    QVERIFY(QSInfo::filledFolder().removeRecursively()); // as it is on another computer
    m_user->restoreFile(path);
    QCOMPARE(m_user->state(), before);
    const qint64 id = *m_user->store().documents().constFirst().id;
    m_user->restoreFile(path);
    QCOMPARE(m_user->state(), before);
    QVERIFY(!m_user->store().document(id));
}

void TestQSBackup::leavesOutWhatCannotBeRead()
{
    m_user->fill(u"x"_s);
    const QSBackup::File before = m_user->state();
    QFile::remove(filledPath(before.filledPDFs.at(0).fileName));
    writeFile(filledPath(before.filledPDFs.at(1).fileName), "damaged");
    m_user->store().db().exec(
        u"INSERT INTO filled_pdfs (entry_id, title, file_name, created, modified) "
        "VALUES ('', '', '../Quillstone.sqlite', 0, 0)"_s);
    const QString path = m_user->path(u"some.qsbackup"_s);
    QCOMPARE(m_user->backUp(path), 3);
    QCOMPARE(stateOf(contents(path)).filledPDFs, QList{before.filledPDFs.at(2)});
    QCOMPARE(stateOf(QSBackup::make(m_user->store())), stateOf(contents(path)));
}

QTEST_GUILESS_MAIN(TestQSBackup)
#include "tst_qsbackup.moc"
