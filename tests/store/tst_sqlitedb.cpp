#include "QSError.h"
#include "SQLiteDB.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <memory>
#include <stdexcept>
#include <type_traits>

using namespace Qt::Literals::StringLiterals;

Q_DECLARE_METATYPE(SQLValue)

static_assert(!std::is_constructible_v<SQLArg, const char *>, "it would bind as a truth value");

namespace {
/// The text of the database error that the action throws; null when it throws none.
template <typename Action>
QString databaseError(Action action)
{
    try {
        action();
    } catch (const QSError &error) {
        return error.errorCase() == QSError::Case::database ? error.payload() : u"another case"_s;
    }
    return {};
}
} // namespace

class TestSQLiteDB : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void readsColumns_data();
    void readsColumns();
    void bindsInSQLitesKinds_data();
    void bindsInSQLitesKinds();
    void laterColumnOfOneNameWins();
    void runReturnsTheLastInsertedRow();
    void preparedStatementRunsAgain();
    void scalarIntNeverThrows_data();
    void scalarIntNeverThrows();
    void transactionIsAllOrNothing();
    void transactionsDoNotNest();
    void failedCommitIsThrownAndRolledBack();
    void failuresCarrySQLitesText();
    void errorsAreSentences();
    void failedStatementLeavesNoLock();
    void readOnlyLeavesTheFileAlone();
    void waitsForAnotherConnection();
    void closedConnectionSaysSo();

private:
    [[nodiscard]] QString path(const QString &name = u"test.sqlite"_s) const
    {
        return m_folder->filePath(name);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestSQLiteDB::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void TestSQLiteDB::readsColumns_data()
{
    using Int = std::optional<qint64>;
    using Real = std::optional<double>;
    using Text = std::optional<QString>;
    QTest::addColumn<QString>("expression");
    QTest::addColumn<Int>("integer");
    QTest::addColumn<Real>("real");
    QTest::addColumn<Text>("text");
    const auto row = [](const char *expression, Int integer, Real real, const Text &text) {
        QTest::newRow(expression) << QString::fromUtf8(expression) << integer << real << text;
    };
    constexpr qint64 highest = std::numeric_limits<qint64>::max();
    constexpr qint64 lowest = std::numeric_limits<qint64>::min();
    row("42", 42, 42.0, u"42"_s);
    row("-9223372036854775807 - 1", lowest, -9223372036854775808.0, u"-9223372036854775808"_s);
    row("2.9", 2, 2.9, u"2.9"_s);
    row("0.1 + 0.2", 0, 0.1 + 0.2, u"0.30000000000000004"_s);
    row("1e300", highest, 1e300, u"1e+300"_s);
    row("'42'", 42, 42.0, u"42"_s);
    row("'-7'", -7, -7.0, u"-7"_s);
    row("'2.5'", {}, 2.5, u"2.5"_s);
    row("'4x'", {}, {}, u"4x"_s);
    row("' 4'", {}, {}, u" 4"_s);
    row("'+-4'", {}, {}, u"+-4"_s);
    row("'nan'", {}, {}, u"nan"_s);
    row("'-inf'", {}, {}, u"-inf"_s);
    row("'9223372036854775808'", {}, 9223372036854775808.0, u"9223372036854775808"_s);
    row("''", {}, {}, u""_s);
    row("'a' || char(0) || 'b'", {}, {}, QString(u"a\0b"_s));
    row("x'3432'", {}, {}, {});
    row("NULL", {}, {}, {});
}

void TestSQLiteDB::readsColumns()
{
    QFETCH(const QString, expression);
    QFETCH(const std::optional<qint64>, integer);
    QFETCH(const std::optional<double>, real);
    QFETCH(const std::optional<QString>, text);
    SQLiteDB db(path());
    const SQLRow row = db.query(u"SELECT %1 AS v"_s.arg(expression)).first();
    QCOMPARE(row.intValue(u"v"_s), integer);
    QCOMPARE(row.doubleValue(u"v"_s), real);
    QCOMPARE(row.str(u"v"_s), text);
    QCOMPARE(row.string(u"v"_s), text.value_or(QString()));
    QCOMPARE(row.boolValue(u"v"_s), integer.value_or(0) != 0);
    QCOMPARE(row.data(u"v"_s).has_value(), expression.startsWith(u'x'));
    QVERIFY(!row.intValue(u"V"_s) && !row.str(u"missing"_s) && !row.data(u"missing"_s));
}

void TestSQLiteDB::bindsInSQLitesKinds_data()
{
    QTest::addColumn<SQLValue>("value");
    QTest::addColumn<QString>("stored");
    const auto row = [](const char *name, const SQLArg &arg, const char *stored) {
        QTest::newRow(name) << arg.value() << QString::fromUtf8(stored);
    };
    row("absent", std::nullopt, "null NULL");
    row("absent optional", std::optional<qint64>(), "null NULL");
    row("optional", std::optional<qint64>(5), "integer 5");
    row("32 bits keep their sign", -3, "integer -3");
    row("64 bits", qint64{1} << 40, "integer 1099511627776");
    row("truth", true, "integer 1");
    row("real", 2.0, "real 2.0");
    row("text", u"né's 𝒳"_s, "text 'né''s 𝒳'");
    row("empty text", QString(), "text ''");
    row("text ends at a NUL", QString(u"ab\0cd"_s), "text 'ab'");
    row("bytes", QByteArray("a\0b", 3), "blob X'610062'");
    row("no bytes are still bytes", QByteArray(), "blob X''");
    row("a moment", QDateTime({2001, 9, 9}, {1, 46, 40, 250}, Qt::UTC), "real 1000000000.25");
    row("a moment of another zone", QDateTime({1970, 1, 1}, {1, 0}, Qt::OffsetFromUTC, 3600),
        "real 0.0");
}

void TestSQLiteDB::bindsInSQLitesKinds()
{
    QFETCH(const SQLValue, value);
    QFETCH(const QString, stored);
    SQLiteDB db(path());
    db.exec(u"CREATE TABLE t (v)"_s);
    const SQLArg arg = std::visit(
        [](const auto &payload) -> SQLArg {
            if constexpr (std::is_same_v<decltype(payload), const std::monostate &>) {
                return nullptr;
            } else {
                return payload;
            }
        },
        value);
    db.run(u"INSERT INTO t VALUES (?)"_s, {arg});
    const SQLRow row = db.query(u"SELECT typeof(v) || ' ' || quote(v) AS kind, v FROM t"_s).first();
    QCOMPARE(row.string(u"kind"_s), stored);
}

void TestSQLiteDB::laterColumnOfOneNameWins()
{
    SQLiteDB db(path());
    const QList<SQLRow> rows = db.query(u"SELECT 1 AS a, 2 AS b, 3 AS a"_s);
    QCOMPARE(rows.first().values.size(), 2);
    QCOMPARE(rows.first().intValue(u"a"_s), 3);
    QVERIFY(db.query(u"SELECT 1 WHERE 0"_s).isEmpty());
}

void TestSQLiteDB::runReturnsTheLastInsertedRow()
{
    SQLiteDB db(path());
    db.exec(u"CREATE TABLE t (id INTEGER PRIMARY KEY, v); CREATE TABLE u (v)"_s);
    QCOMPARE(db.run(u"INSERT INTO t VALUES (7, 'a')"_s), 7);
    QCOMPARE(db.run(u"UPDATE t SET v = ?"_s, {u"b"_s}), 7);
    QCOMPARE(db.changes(), 1);
    QCOMPARE(db.run(u"SELECT id FROM t"_s), 7);
    QCOMPARE(db.run(u"INSERT INTO t (v) VALUES ('c') RETURNING id"_s), 8);
    QCOMPARE(db.scalarInt(u"SELECT count(*) FROM t"_s), 2);
}

void TestSQLiteDB::preparedStatementRunsAgain()
{
    SQLiteDB db(path());
    db.exec(u"CREATE TABLE t (a, b)"_s);
    SQLStatement insert = db.prepare(u"INSERT INTO t VALUES (?, ?)"_s);
    insert.bind({1, u"one"_s});
    QVERIFY(!insert.step());
    insert.bind({2}); // "one" must not come back
    QVERIFY(!insert.step());
    const QList<SQLRow> rows = db.query(u"SELECT a, b FROM t ORDER BY a"_s);
    QCOMPARE(rows.size(), 2);
    QCOMPARE(rows.at(0).string(u"b"_s), u"one"_s);
    QVERIFY(!rows.at(1).str(u"b"_s));
}

void TestSQLiteDB::scalarIntNeverThrows_data()
{
    QTest::addColumn<QString>("sql");
    QTest::addColumn<qint64>("result");
    QTest::newRow("integer") << u"SELECT 12"_s << qint64{12};
    QTest::newRow("first row") << u"SELECT 3 UNION ALL SELECT 4"_s << qint64{3};
    QTest::newRow("text that is no number") << u"SELECT '4x'"_s << qint64{0};
    QTest::newRow("null") << u"SELECT NULL"_s << qint64{0};
    QTest::newRow("no row") << u"SELECT 5 WHERE 0"_s << qint64{0};
    QTest::newRow("no such table") << u"SELECT a FROM nowhere"_s << qint64{0};
}

void TestSQLiteDB::scalarIntNeverThrows()
{
    QFETCH(const QString, sql);
    SQLiteDB db(path());
    QTEST(db.scalarInt(sql), "result");
}

void TestSQLiteDB::transactionIsAllOrNothing()
{
    SQLiteDB db(path());
    db.exec(u"CREATE TABLE t (v UNIQUE)"_s);
    db.transaction([&] { db.run(u"INSERT INTO t VALUES (1)"_s); });
    const QString text = databaseError([&] {
        db.transaction([&] {
            db.run(u"INSERT INTO t VALUES (2)"_s);
            db.run(u"INSERT INTO t VALUES (1)"_s);
        });
    });
    QCOMPARE(text, u"UNIQUE constraint failed: t.v"_s);
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, db.transaction([&] {
        db.run(u"INSERT INTO t VALUES (3)"_s);
        throw std::runtime_error("not the database's");
    }));
    QCOMPARE(db.scalarInt(u"SELECT group_concat(v) FROM t"_s), 1);
}

void TestSQLiteDB::transactionsDoNotNest()
{
    SQLiteDB db(path());
    db.exec(u"CREATE TABLE t (v)"_s);
    db.transaction([&] {
        db.run(u"INSERT INTO t VALUES (1)"_s);
        bool ran = false;
        QCOMPARE(databaseError([&] { db.transaction([&] { ran = true; }); }),
                 u"cannot start a transaction within a transaction"_s);
        QVERIFY(!ran);
    });
    QCOMPARE(db.scalarInt(u"SELECT count(*) FROM t"_s), 1); // the outer one went through
}

void TestSQLiteDB::failedCommitIsThrownAndRolledBack()
{
    SQLiteDB db(path());
    db.exec(u"CREATE TABLE p (id INTEGER PRIMARY KEY);"
            "CREATE TABLE c (p REFERENCES p DEFERRABLE INITIALLY DEFERRED)"_s);
    QCOMPARE(databaseError([&] { db.transaction([&] { db.run(u"INSERT INTO c VALUES (9)"_s); }); }),
             u"FOREIGN KEY constraint failed"_s);
    QCOMPARE(db.scalarInt(u"SELECT count(*) FROM c"_s), 0);
    db.transaction([&] { db.run(u"INSERT INTO p VALUES (9)"_s); }); // and the connection lives on
}

void TestSQLiteDB::failuresCarrySQLitesText()
{
    SQLiteDB db(path());
    QCOMPARE(databaseError([&] { db.exec(u"SELECT 1; CREATE nonsense"_s); }),
             u"near \"nonsense\": syntax error"_s);
    QCOMPARE(databaseError([&] { (void)db.query(u"SELECT a FROM nowhere"_s); }),
             u"no such table: nowhere"_s);
    QCOMPARE(db.lastError(), u"no such table: nowhere"_s);
    QVERIFY(!databaseError([&] { db.run(u" -- nothing"_s); }).isNull());
    QCOMPARE(databaseError([&] { SQLiteDB missing(path(u"a/b"_s)); }),
             u"unable to open database file"_s);
}

void TestSQLiteDB::errorsAreSentences()
{
    QCOMPARE(QSError::database(u"disk full"_s).description(),
             u"The database reported a problem: disk full"_s);
    QCOMPARE(QSError::badBackup(u"it is damaged."_s).description(),
             u"This file can't be restored: it is damaged."_s);
    QCOMPARE(QSError::network(u"No answer."_s).description(), u"No answer."_s);
    QCOMPARE(QByteArray(QSError::notFound().what()), QByteArray("That record no longer exists."));
}

void TestSQLiteDB::failedStatementLeavesNoLock()
{
    SQLiteDB db(path());
    db.exec(u"CREATE TABLE t (v)"_s);
    db.run(u"INSERT INTO t VALUES (1)"_s);
    db.run(u"INSERT INTO t VALUES ('x')"_s);
    // Fails in the second row, with the first already read.
    QVERIFY(!databaseError([&] {
                 (void)db.query(
                     u"SELECT CASE v WHEN 'x' THEN abs(-9223372036854775807 - 1) END FROM t"_s);
             }).isNull());
    SQLiteDB second(path());
    second.run(u"DELETE FROM t"_s);
    QCOMPARE(db.scalarInt(u"SELECT count(*) FROM t"_s), 0);
}

void TestSQLiteDB::readOnlyLeavesTheFileAlone()
{
    QVERIFY(!databaseError([&] { SQLiteDB missing(path(), true); }).isNull());
    QVERIFY(!QFile::exists(path()));
    SQLiteDB(path()).exec(u"CREATE TABLE t (v)"_s);
    SQLiteDB db(path(), true);
    QCOMPARE(databaseError([&] { db.run(u"INSERT INTO t VALUES (1)"_s); }),
             u"attempt to write a readonly database"_s);
    SQLiteDB writer(path());
    QCOMPARE(writer.scalarInt(u"PRAGMA foreign_keys"_s), 1);
}

void TestSQLiteDB::waitsForAnotherConnection()
{
    SQLiteDB holder(path());
    holder.exec(u"CREATE TABLE t (v)"_s);
    SQLiteDB db(path());
    QCOMPARE(db.scalarInt(u"PRAGMA busy_timeout"_s), 3000);
    db.exec(u"PRAGMA busy_timeout = 1"_s);
    holder.transaction([&] {
        QCOMPARE(databaseError([&] { db.exec(u"BEGIN IMMEDIATE"_s); }), u"database is locked"_s);
    });
}

void TestSQLiteDB::closedConnectionSaysSo()
{
    SQLiteDB db(path());
    db.exec(u"CREATE TABLE t (v)"_s);
    SQLStatement insert = db.prepare(u"INSERT INTO t VALUES (1)"_s);
    QCOMPARE(db.close(), 0);
    QCOMPARE(db.close(), 0);
    QCOMPARE(db.lastError(), u"closed"_s);
    QCOMPARE(databaseError([&] { db.exec(u"SELECT 1"_s); }), u"closed"_s);
    QCOMPARE(databaseError([&] { db.run(u"SELECT 1"_s); }), u"closed"_s);
    QCOMPARE(databaseError([&] { (void)db.query(u"SELECT 1"_s); }), u"closed"_s);
    QCOMPARE(databaseError([&] { db.transaction([] {}); }), u"closed"_s);
    QCOMPARE(db.scalarInt(u"SELECT 1"_s), 0);
    QCOMPARE(db.changes(), 0);
    QVERIFY(!insert.step()); // a statement still held keeps its connection
}

QTEST_APPLESS_MAIN(TestSQLiteDB)
#include "tst_sqlitedb.moc"
