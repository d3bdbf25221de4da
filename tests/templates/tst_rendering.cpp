#include "QSDate.h"
#include "QSMoney.h"
#include "QSTemplate.h"

#include <QTest>
#include <QTimeZone>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString blank = u"________________"_s;

QSTemplate form(const QString &body)
{
    QSTemplate made;
    made.id = u"bill"_s;
    made.title = u"Bill of %1 Sale"_s;
    made.version = u"1.2"_s;
    made.date = u"2026-03-01"_s;
    made.fields = {{u"a"_s, u"A"_s, QSFieldKind::multiline, {}, false},
                   {u"sum"_s, u"Sum"_s, QSFieldKind::money, {}, false},
                   {u"day"_s, u"Day"_s, QSFieldKind::date, {}, false}};
    made.body = body;
    return made;
}

/// One line for each block but the closing note: its kind's letter and its cells, line ends as "\".
QStringList picture(const QSRendered &rendered)
{
    static constexpr QStringView letters = u"thprsn";
    QStringList lines;
    for (const QSBlock &block : rendered.blocks.first(rendered.blocks.size() - 1)) {
        lines.append(letters.at(static_cast<int>(block.kind)) + u':' +
                     block.cells.join(u'~').replace(u'\n', u'\\'));
    }
    return lines;
}
} // namespace

class TestRendering : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void blocks_data();
    void blocks();
    void typedTextIsNoMark_data();
    void typedTextIsNoMark();
    void typedDirectionsEndWithTheValue_data();
    void typedDirectionsEndWithTheValue();
    void substitution_data();
    void substitution();
    void titleNoteAndPlainText();
    void display_data();
    void display();
    void money_data();
    void money();
    void notMoney_data();
    void notMoney();
    void dates_data();
    void dates();
    void otherLocale();
    void days_data();
    void days();
};

void TestRendering::blocks_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("nothing") << u""_s << QStringList();
    QTest::newRow("three paragraphs")
        << u"One\n\nTwo\n \t\n\nThree\n"_s << QStringList{u"p:One"_s, u"p:Two"_s, u"p:Three"_s};
    QTest::newRow("lines of one paragraph") << u"  One \nTwo"_s << QStringList{u"p:One\\Two"_s};
    QTest::newRow("marks end a paragraph")
        << u"One\n# T\nTwo\n## H\nThree\n| a | b |\nFour\n_______ Name\nFive"_s
        << QStringList{u"p:One"_s, u"t:T"_s,    u"p:Two"_s,          u"h:H"_s,   u"p:Three"_s,
                       u"r:a~b"_s, u"p:Four"_s, u"s:_______ Name"_s, u"p:Five"_s};
    QTest::newRow("indented marks") << u"  # T\n  | a |"_s << QStringList{u"t:T"_s, u"r:a"_s};
    QTest::newRow("no marks") << u"#T\n\n###T\n\n##\n\n_____ five\n\na | b"_s
                              << QStringList{u"p:#T"_s, u"p:###T"_s, u"p:##"_s, u"p:_____ five"_s,
                                             u"p:a | b"_s};
    QTest::newRow("empty cells go") << u"| a || | b"_s << QStringList{u"r:a~b"_s};
    QTest::newRow("an empty row") << u"|"_s << QStringList{u"r:"_s};
}

void TestRendering::blocks()
{
    QFETCH(QString, body);
    QTEST(picture(form(body).render({})), "expected");
}

void TestRendering::typedTextIsNoMark_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("expected");

    const QString hash = u"# one"_s;
    QTest::newRow("title mark") << u"{{a}}"_s << hash << QStringList{u"p:# one"_s};
    QTest::newRow("heading mark") << u"{{a}}"_s << u"## 2"_s << QStringList{u"p:## 2"_s};
    QTest::newRow("row mark") << u"{{a}} x"_s << u"| 1 |"_s << QStringList{u"p:| 1 | x"_s};
    QTest::newRow("signature mark") << u"{{a}}"_s << u"______ x"_s << QStringList{u"p:______ x"_s};
    QTest::newRow("half a mark") << u"#{{a}}"_s << hash << QStringList{u"p:## one"_s};
    QTest::newRow("mark after a mark") << u"# {{a}}"_s << hash << QStringList{u"t:# one"_s};
    QTest::newRow("later lines") << u"{{a}}"_s << u"1\n# 2\n| 3\n______\n## 4"_s
                                 << QStringList{u"p:1\\# 2\\| 3\\______\\## 4"_s};
    QTest::newRow("empty lines and blanks inside")
        << u"a:\n{{a}}\nz"_s << u"1\n\n\n  2  3"_s << QStringList{u"p:a:\\1\\\\\\  2  3\\z"_s};
    QTest::newRow("lines in a heading")
        << u"## {{a}}\nz"_s << u"1\n2"_s << QStringList{u"h:1\\2"_s, u"p:z"_s};
    QTest::newRow("bar and line end in a cell")
        << u"| {{a}} | b |"_s << u"1|2\n|3|"_s << QStringList{u"r:1|2\\|3|~b"_s};
    QTest::newRow("pasted line ends")
        << u"{{a}}"_s << u"1\r\n2\r3"_s << QStringList{u"p:1\\2\\3"_s};
    QTest::newRow("an empty value signs")
        << u"{{a}} Name\nz"_s << u" \n "_s << QStringList{u"s:________________ Name"_s, u"p:z"_s};
    QTest::newRow("an empty value keeps its cell")
        << u"|{{a}}|b|"_s << u""_s << QStringList{u"r:________________~b"_s};
}

void TestRendering::typedTextIsNoMark()
{
    QFETCH(QString, body);
    QFETCH(QString, typed);
    QTEST(picture(form(body).render({{u"a"_s, typed}})), "expected");
}

void TestRendering::typedDirectionsEndWithTheValue_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QString &typed, const QString &inside) {
        QTest::newRow(name) << typed << u"p:To \u2068"_s + inside + u"\u2069, 5."_s;
    };
    QTest::newRow("none") << u"José Ñ 宋 5"_s << u"p:To José Ñ 宋 5, 5."_s;
    row("a name in Hebrew", u"דוד"_s, u"דוד"_s);
    row("an override", u"a\u202eb"_s, u"a\u202eb\u202c"_s);
    row("an override that is closed", u"a\u202eb\u202cc"_s, u"a\u202eb\u202cc"_s);
    row("an isolate", u"\u2066a"_s, u"\u2066a\u2069"_s);
    row("ends without a beginning", u"a\u2069\u202cb\u200f"_s, u"ab\u200f"_s);
    row("an override in an isolate", u"\u2067\u202da\u2069b"_s, u"\u2067\u202da\u202c\u2069b"_s);
    row("one in the other", u"\u202ba\u2067b"_s, u"\u202ba\u2067b\u2069\u202c"_s);
}

void TestRendering::typedDirectionsEndWithTheValue()
{
    QFETCH(QString, typed);
    QFETCH(QString, expected);
    const QSTemplate made = form(u"# T {{a}}\nTo {{a}}, 5."_s);
    const QSRendered rendered = made.render({{u"a"_s, typed}});
    QCOMPARE(picture(rendered).last(), expected);
    QVERIFY(!rendered.title.contains(u'\u2068') && !rendered.title.contains(u'\u2069'));
}

void TestRendering::substitution_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QString>("expected");

    QTest::newRow("by the field's kind")
        << u"On {{day}}: {{ sum }}."_s << u"p:On March 1, 2027: $1,500.00."_s;
    QTest::newRow("repeated and side by side")
        << u"x{{sum}}{{sum}}"_s << u"p:x$1,500.00$1,500.00"_s;
    QTest::newRow("no field, but a value") << u"x {{extra}}"_s << u"p:x 1500"_s;
    QTest::newRow("no field, no value") << u"x {{none}}"_s << u"p:x ________________"_s;
    QTest::newRow("hyphen is no placeholder") << u"{{buyer-name}}"_s << u"p:{{buyer-name}}"_s;
    QTest::newRow("typed braces stay") << u"x {{a}}"_s << u"p:x {{sum}} \\0 $1"_s;
    QTest::newRow("over a line end") << u"x {{\nsum\n}} y"_s << u"p:x $1,500.00 y"_s;
}

void TestRendering::substitution()
{
    QFETCH(QString, body);
    const QSRendered rendered = form(body).render({{u"sum"_s, u"1500"_s},
                                                   {u"day"_s, u"2027-03-01"_s},
                                                   {u"extra"_s, u"1500"_s},
                                                   {u"a"_s, u"{{sum}} \\0 $1"_s}});
    QTEST(picture(rendered).join(u'\n'), "expected");
}

void TestRendering::titleNoteAndPlainText()
{
    const QSRendered plain = form(u"## H\n| a | b |"_s).render({});
    QCOMPARE(plain.title, u"Bill of %1 Sale"_s);
    QCOMPARE(plain.blocks.last().kind, QSBlock::Kind::note);
    const QString footer = u"Vell template \"Bill of %1 Sale\" (bill) version 1.2, March 1, 2026. "
                           "Template, not legal advice. Laws vary by state; review with an "
                           "attorney for important matters."_s;
    QCOMPARE(plain.plainText(), u"H\n\na    b\n\n"_s + footer);

    const QSRendered own = form(u"x\n# Sale by {{a}}\n# Other"_s).render({{u"a"_s, u"Al\nBo"_s}});
    QCOMPARE(own.title, u"Sale by Al Bo"_s);
    QCOMPARE(own.blocks.at(1).text(), u"Sale by Al\nBo"_s);
}

void TestRendering::display_data()
{
    QTest::addColumn<QSFieldKind>("kind");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected");

    for (std::size_t kind = 0; kind < fieldKindWords.size(); ++kind) {
        QTest::addRow("blank %s", qPrintable(fieldKindWords.at(kind).toString()))
            << static_cast<QSFieldKind>(kind) << u" \t\n"_s << blank;
    }
    QTest::newRow("text") << QSFieldKind::text << u" a  b\n"_s << u"a  b"_s;
    QTest::newRow("number as typed") << QSFieldKind::number << u" 1,500.50 "_s << u"1,500.50"_s;
    QTest::newRow("state") << QSFieldKind::state << u"tx"_s << u"Texas"_s;
    QTest::newRow("no state") << QSFieldKind::state << u" Ontario "_s << u"Ontario"_s;
    QTest::newRow("no money") << QSFieldKind::money << u" about $2,000"_s << u"about $2,000"_s;
    QTest::newRow("no date") << QSFieldKind::date << u" 2027-13-40 "_s << u"2027-13-40"_s;
}

void TestRendering::display()
{
    QFETCH(QSFieldKind, kind);
    QFETCH(QString, value);
    QTEST(QSTemplate::display(kind, value), "expected");
}

void TestRendering::money_data()
{
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *typed, const QString &printed) {
        QTest::newRow(typed) << printed;
    };
    row("1,500.5", u"$1,500.50"_s);
    row("1,5", u"$15.00"_s);
    row(" $ 20 ", u"$20.00"_s);
    row("-$5", u"-$5.00"_s);
    row(".5", u"$0.50"_s);
    row("007", u"$7.00"_s);
    row("-0.001", u"$0.00"_s);
    row("1234567", u"$1,234,567.00"_s);
    // Half a cent goes to the even neighbour, and only what is exactly half.
    row("0.125", u"$0.12"_s);
    row("0.1250000001", u"$0.13"_s);
    row("0.005", u"$0.00"_s);
    row("999999.999", u"$1,000,000.00"_s);
    row("1e3", u"$1,000.00"_s);
    row("125e-3", u"$0.12"_s);
    // More digits than a binary fraction holds.
    row("9007199254740993.01", u"$9,007,199,254,740,993.01"_s);
    row("1234567890123456789012345678", u"$1,234,567,890,123,456,789,012,345,678.00"_s);
}

void TestRendering::money()
{
    QTEST(QSMoney::currency(QString::fromLatin1(QTest::currentDataTag())).value_or(u"absent"_s),
          "expected");
}

void TestRendering::notMoney_data()
{
    QTest::addColumn<QString>("typed");

    for (const char *typed : {"",
                              "$",
                              ".",
                              "-$",
                              "+-5",
                              "5-",
                              "1 000",
                              "1.2.3",
                              "e5",
                              "5e+",
                              "1e1.5",
                              "0x10",
                              "nan",
                              "5 dollars",
                              "1e31",
                              "1e29",
                              "1e99999999999999999999",
                              "1e-2147483648",
                              "1e2147483647",
                              "12345678901234567890123456789",
                              "0.0000000000000000000000000000001"}) {
        QTest::newRow(typed) << QString::fromLatin1(typed);
    }
    QTest::newRow("full-width digits") << u"１２"_s;
    QTest::newRow("minus sign") << u"\u22125"_s;
}

void TestRendering::notMoney()
{
    QFETCH(QString, typed);
    QCOMPARE(QSMoney::currency(typed), std::nullopt);
}

void TestRendering::dates_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("printed");

    QTest::newRow("date") << u"2027-03-01"_s << u"March 1, 2027"_s;
    QTest::newRow("blanks") << u" 2027-12-31 "_s << u"December 31, 2027"_s;
    QTest::newRow("leap day") << u"2028-02-29"_s << u"February 29, 2028"_s;
    QTest::newRow("year 1") << u"0001-01-01"_s << u"January 1, 0001"_s;
    for (const char *other :
         {"", "2027-02-29", "2027-13-40", "2027-00-10", "0000-01-01", "27-03-01", "12027-03-01",
          "-027-03-01", "2027-03-01T00:00", "2027-03-0x", "2027 03 01", "tomorrow"}) {
        QTest::newRow(other) << QString::fromLatin1(other) << QString::fromLatin1(other);
    }
    QTest::newRow("full-width digits") << u"２０２７-03-01"_s << u"２０２７-03-01"_s;
}

void TestRendering::dates()
{
    QFETCH(QString, typed);
    QFETCH(QString, printed);
    QCOMPARE(QSDate::longText(typed), printed);
    const std::optional<QDate> date = QSDate::parseISO(typed);
    QCOMPARE(date.has_value(), printed != typed);
    if (date) {
        QCOMPARE(QSDate::iso(*date), typed.trimmed());
    }
}

void TestRendering::otherLocale()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    const QString date = QSDate::longText(u"2027-03-01"_s);
    const QString stamp = QSDate::stamp(QDateTime(QDate(2027, 3, 1), QTime(23, 5), Qt::UTC));
    const QString noon = QSDate::stamp(QDateTime(QDate(2027, 7, 9), QTime(12, 0)));
    const QString money = QSTemplate::display(QSFieldKind::money, u"1500"_s);
    QLocale::setDefault(before);
    QCOMPARE(date, u"March 1, 2027"_s);
    QCOMPARE(stamp, u"Mar 1, 2027 4:05 PM"_s);
    QCOMPARE(noon, u"Jul 9, 2027 12:00 PM"_s);
    QCOMPARE(money, u"$1,500.00"_s);
}

void TestRendering::days_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<qint64>("expected");

    QTest::newRow("a day") << 86'400.0 << qint64(1);
    QTest::newRow("seven days and a half") << 7.5 * 86'400 << qint64(7);
    QTest::newRow("minus half a day") << -43'200.0 << qint64(-1);
    QTest::newRow("minus a day") << -86'400.0 << qint64(-1);
}

void TestRendering::days()
{
    QFETCH(double, seconds);
    // A day with 23 hours lies in between: the count is of seconds, not of calendar days.
    const QDateTime from(QDate(2027, 3, 13), QTime(12, 0), QTimeZone("America/Denver"));
    QTEST(QSDate::days(from, from.addMSecs(qRound64(seconds * 1000))), "expected");
}

QTEST_GUILESS_MAIN(TestRendering)
#include "tst_rendering.moc"
