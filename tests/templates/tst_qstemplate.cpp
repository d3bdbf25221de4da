#include "QSError.h"
#include "QSProfile.h"
#include "QSStates.h"
#include "QSTemplates.h"
#include "TestFiles.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString head = u"id: a\ntitle: A\nversion: 1\ndate: 2026-01-02\n"_s;

QSTemplate parsed(const QString &text)
{
    return QSTemplate::parse(text, u"a.qstemplate"_s);
}

/// "key|label|kind|profile key|required", with "-" for no profile key.
QString picture(const QSField &field)
{
    return QStringList{field.key, field.label,
                       fieldKindWords.at(static_cast<std::size_t>(field.kind)).toString(),
                       field.profileKey.value_or(u"-"_s), field.required ? u"required"_s : u""_s}
        .join(u'|');
}

QByteArray fileWithId(const QString &id)
{
    return u"id: %1\ntitle: T\nversion: 1\ndate: d\n===\nBody\n"_s.arg(id).toUtf8();
}
} // namespace

class TestTemplate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsEveryPartOfAFile();
    void acceptsOtherEditorsFiles();
    void headerRules_data();
    void headerRules();
    void fieldLines_data();
    void fieldLines();
    void kinds();
    void refuses_data();
    void refuses();
    void placeholders();
    void profileFillsFields();
    void address_data();
    void address();
    void states_data();
    void states();
    void catalogueOrderAndProblems();
    void catalogueWithoutFolder();
};

void TestTemplate::readsEveryPartOfAFile()
{
    const QSTemplate read = parsed(u"title: Bill of Sale: Car\nid:bill\nversion: 1.2\n"
                                   "date: 2026-01-02\ncategory: Vehicles\nsummary: Sells a car\n"
                                   "keywords: car sale\ninfo: Good to know.\n"
                                   "field: b | B | date\nfield: a | A | text\n===\n"
                                   "# Title\n\n===\nAfter\n"_s);
    QCOMPARE(read.id, u"bill"_s);
    QCOMPARE(read.title, u"Bill of Sale: Car"_s);
    QCOMPARE(read.version, u"1.2"_s);
    QCOMPARE(read.date, u"2026-01-02"_s);
    QCOMPARE(read.category, u"Vehicles"_s);
    QCOMPARE(read.summary, u"Sells a car"_s);
    QCOMPARE(read.keywords, u"car sale"_s);
    QCOMPARE(read.info, u"Good to know."_s);
    QCOMPARE(read.fileName, u"a.qstemplate"_s);
    QCOMPARE(read.body, u"# Title\n\n===\nAfter\n"_s);
    QCOMPARE(read.fields.size(), 2);
    QCOMPARE(read.field(u"a"), &read.fields.at(1));
    QCOMPARE(read.field(u"A"), nullptr);
}

void TestTemplate::acceptsOtherEditorsFiles()
{
    const QString plain = head + u"field: a | A | text\n===\nOne\n\nTwo\n"_s;
    QString windows = plain;
    windows.replace(u"\n"_s, u"\r\n"_s);
    QCOMPARE(parsed(windows), parsed(plain));
    QCOMPARE(parsed(QChar(QChar::ByteOrderMark) + plain), parsed(plain));
}

void TestTemplate::headerRules_data()
{
    QTest::addColumn<QString>("lines");
    QTest::addColumn<QString>("category");

    QTest::newRow("absent") << u""_s << u"General"_s;
    QTest::newRow("empty") << u"category:\n"_s << u"General"_s;
    QTest::newRow("blanks and tabs around") << u" \tcategory \t:\t Home \n"_s << u"Home"_s;
    QTest::newRow("the last of two wins") << u"category: One\ncategory: Two\n"_s << u"Two"_s;
    QTest::newRow("a line without colon is a comment") << u"category Home\n"_s << u"General"_s;
    QTest::newRow("keys are case sensitive") << u"Category: Home\n"_s << u"General"_s;
    QTest::newRow("unknown keys are ignored") << u"# note: x\n\ncategory: Home\n"_s << u"Home"_s;
}

void TestTemplate::headerRules()
{
    QFETCH(QString, lines);
    QTEST(parsed(head + lines + u"\n===\n"_s).category, "category");
}

void TestTemplate::fieldLines_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("field");

    QTest::newRow("three parts") << u"a | A b | text"_s << u"a|A b|text|-|"_s;
    QTest::newRow("profile") << u"who | Name | text | profile:fullName"_s
                             << u"who|Name|text|fullName|"_s;
    QTest::newRow("required in the fifth place")
        << u"a|A|money||required"_s << u"a|A|money|-|required"_s;
    QTest::newRow("required in the fourth place")
        << u"a | A | text | required"_s << u"a|A|text|-|"_s;
    QTest::newRow("another fifth word")
        << u"a | A | text | profile:zip | Required"_s << u"a|A|text|zip|"_s;
    QTest::newRow("label with a colon") << u"a | A: b | text"_s << u"a|A: b|text|-|"_s;
}

void TestTemplate::fieldLines()
{
    QFETCH(QString, line);
    const QSTemplate read = parsed(head + u"field: "_s + line + u"\n===\n"_s);
    QCOMPARE(read.fields.size(), 1);
    QTEST(picture(read.fields.first()), "field");
}

void TestTemplate::kinds()
{
    const QSTemplate read = parsed(head + u"field: a | A |text\nfield: b | B | multiline\n"
                                          "field: c | C | date\nfield: d | D | money\n"
                                          "field: e | E | number\nfield: f | F | state\n===\n"_s);
    using enum QSFieldKind;
    QList<QSFieldKind> kinds;
    for (const QSField &field : read.fields) {
        kinds.append(field.kind);
    }
    QCOMPARE(kinds, (QList<QSFieldKind>{text, multiline, date, money, number, state}));
}

void TestTemplate::refuses_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("sentence");

    const QString noLine = u"a.qstemplate: no \"===\" line between header and body"_s;
    QTest::newRow("nothing") << u""_s << noLine;
    QTest::newRow("separator without line end") << head + u"==="_s << noLine;
    QTest::newRow("separator in the first line") << u"===\nBody"_s << noLine;
    QTest::newRow("separator with a blank") << head + u"=== \nBody"_s << noLine;
    QTest::newRow("field of two parts")
        << head + u"  field: a | A\n===\n"_s << u"a.qstemplate: bad field line: field: a | A"_s;
    QTest::newRow("unknown kind") << head + u"field: a | A | currency\n===\n"_s
                                  << u"a.qstemplate: bad field line: field: a | A | currency"_s;
    for (const QString &key : {u"id"_s, u"title"_s, u"version"_s, u"date"_s}) {
        const QString required = u"a.qstemplate: id, title, version and date are required"_s;
        QString without = head;
        without.replace(key + u':', u"other:"_s);
        QTest::addRow("no %s", qPrintable(key)) << without + u"\n===\n"_s << required;
        QTest::addRow("empty %s", qPrintable(key)) << head + key + u": \n===\n"_s << required;
    }
}

void TestTemplate::refuses()
{
    QFETCH(QString, text);
    try {
        static_cast<void>(parsed(text));
        QFAIL("it was read");
    } catch (const QSError &error) {
        QCOMPARE(error.errorCase(), QSError::Case::invalid);
        QTEST(error.description(), "sentence");
    }
}

void TestTemplate::placeholders()
{
    const QSTemplate read = parsed(head + u"\n===\n{{b}} {{ a }}{{a-b}} {{a b}} {c} {{}}\n"
                                          "{{\tB_2 }} {{é}} {{{b}}}"_s);
    QCOMPARE(read.placeholderKeys(), (QStringList{u"b"_s, u"a"_s, u"B_2"_s, u"b"_s}));
}

void TestTemplate::profileFillsFields()
{
    const QSTemplate read = parsed(head + u"field: who | Name | text | profile:fullName\n"
                                          "field: where | Address | text | profile:address\n"
                                          "field: phone | Phone | text | profile:phone\n"
                                          "field: odd | Odd | text | profile:nothing\n"
                                          "field: email | Not from the profile | text\n===\n"_s);
    QCOMPARE(read.profileValues({{u"fullName"_s, u"Ana Li"_s},
                                 {u"city"_s, u"Denver"_s},
                                 {u"phone"_s, u""_s},
                                 {u"email"_s, u"a@b.example"_s}}),
             (QSValues{{u"who"_s, u"Ana Li"_s}, {u"where"_s, u"Denver"_s}}));
    QCOMPARE(read.profileValues({}), QSValues());
}

void TestTemplate::address_data()
{
    QTest::addColumn<QString>("parts");
    QTest::addColumn<QString>("address");

    QTest::newRow("all") << u"1 Elm St;Denver;CO;80202"_s << u"1 Elm St, Denver, CO 80202"_s;
    QTest::newRow("no street") << u";Denver;CO;80202"_s << u"Denver, CO 80202"_s;
    QTest::newRow("no city") << u"1 Elm St;;CO;80202"_s << u"1 Elm St, CO 80202"_s;
    QTest::newRow("no state") << u"1 Elm St;Denver;;80202"_s << u"1 Elm St, Denver, 80202"_s;
    QTest::newRow("blanks") << u" 1 Elm St ; ;; "_s << u"1 Elm St"_s;
}

void TestTemplate::address()
{
    QFETCH(QString, parts);
    const QStringList values = parts.split(u';');
    QTEST(QSProfile::value(u"address", {{u"street"_s, values.at(0)},
                                        {u"city"_s, values.at(1)},
                                        {u"state"_s, values.at(2)},
                                        {u"zip"_s, values.at(3)}}),
          "address");
}

void TestTemplate::states_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("name");

    QTest::newRow("name") << u"colorado"_s << u"CO"_s << u"Colorado"_s;
    QTest::newRow("code with blanks") << u" co "_s << u"CO"_s << u"Colorado"_s;
    QTest::newRow("district") << u"dc"_s << u"DC"_s << u"District of Columbia"_s;
    QTest::newRow("two words") << u"NEW YORK"_s << u"NY"_s << u"New York"_s;
    QTest::newRow("no state") << u"Puerto Rico"_s << u""_s << u""_s;
}

void TestTemplate::states()
{
    QFETCH(QString, text);
    QTEST(QSStates::code(text).value_or(QString()), "code");
    QTEST(QSStates::name(text).value_or(QString()), "name");
}

void TestTemplate::catalogueOrderAndProblems()
{
    const QTemporaryDir folder;
    const auto write = [&folder](const QString &name, const QByteArray &bytes) {
        writeFile(folder.filePath(name), bytes);
    };
    write(u"b.qstemplate"_s, fileWithId(u"b"_s));
    write(u"a.qstemplate"_s, fileWithId(u"a"_s));
    write(u"Z.qstemplate"_s, "\xEF\xBB\xBF" + fileWithId(u"z"_s));
    write(u"notes.txt"_s, "not a template");
    write(u"old.qstemplate.bak"_s, fileWithId(u"old"_s));
    write(u"old.QSTEMPLATE"_s, fileWithId(u"old"_s));
    write(u"c-again.qstemplate"_s, fileWithId(u"a"_s));
    write(u"d-broken.qstemplate"_s, "id: d\n");
    write(u"e-latin.qstemplate"_s, fileWithId(u"e"_s) + "caf\xE9 au lait");
    write(u"f-cut.qstemplate"_s, fileWithId(u"f"_s) + "caf\xC3");
    write(u"g-large.qstemplate"_s, fileWithId(u"g"_s) + QByteArray(qsizetype(1024) * 1024, 'x'));
    QVERIFY(QDir(folder.path()).mkdir(u"folder.qstemplate"_s));
    // It opens, but nobody can read at its beginning, not even the superuser.
    QVERIFY(QFile::link(u"/proc/self/mem"_s, folder.filePath(u"h-failing.qstemplate"_s)));

    const QSTemplates::Catalogue catalogue = QSTemplates::load(QDir(folder.path()));
    QStringList ids;
    for (const QSTemplate &each : catalogue.templates) {
        ids.append(each.id);
    }
    QCOMPARE(ids, (QStringList{u"z"_s, u"a"_s, u"b"_s}));
    QCOMPARE(catalogue.problems.size(), 6);
    QCOMPARE(catalogue.problems.first(5),
             (QStringList{u"c-again.qstemplate: id \"a\" belongs to a.qstemplate"_s,
                          u"d-broken.qstemplate: no \"===\" line between header and body"_s,
                          u"e-latin.qstemplate: is not UTF-8 text"_s,
                          u"f-cut.qstemplate: is not UTF-8 text"_s,
                          u"g-large.qstemplate: is larger than 1 MiB"_s}));
    QVERIFY2(catalogue.problems.last().startsWith(u"h-failing.qstemplate: can't be read: "),
             qPrintable(catalogue.problems.last()));
}

void TestTemplate::catalogueWithoutFolder()
{
    const QTemporaryDir folder;
    const QSTemplates::Catalogue catalogue = QSTemplates::load(QDir(folder.filePath(u"none"_s)));
    QVERIFY(catalogue.templates.isEmpty());
    QCOMPARE(catalogue.problems, QStringList(u"templates folder is missing from the app"_s));
}

QTEST_GUILESS_MAIN(TestTemplate)
#include "tst_qstemplate.moc"
