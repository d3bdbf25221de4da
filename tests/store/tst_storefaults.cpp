#include "QSFile.h"
#include "QSStore.h"
#include "QSTemplates.h"
#include "ScratchUser.h"
#include "SmallDisk.h"
#include "TestFiles.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

#include <sqlite3.h>

#include <csignal>
#include <cstdio>
#include <functional>
#include <memory>

#include <sys/resource.h>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr const char *saveLoopSwitch = "--save-loop";

/// A document whose every part follows from its number.
QSDocument numbered(int number)
{
    const QString text = QString::number(number) + u' ';
    return {.id = {},
            .templateID = QSTemplates::all().first().id,
            .templateVersion = {},
            .title = u"Document %1"_s.arg(number),
            .values = {{u"short"_s, text}, {u"long"_s, text.repeated(100 + number % 2000)}},
            .state = {},
            .created = {},
            .modified = {}};
}

/// What passes for a filled PDF, every byte following from its number.
QByteArray numberedPDF(int number)
{
    return "%PDF " + (QByteArray::number(number) + ' ').repeated(1000 + number % 20'000);
}

/// Saves documents, and filled copies over one another, for as long as it lives, and names each
/// number once both are saved: "document's-id number".
int saveLoop(const QString &path, int number)
{
    QSInfo::setDataFolderOverride(QFileInfo(path).path());
    QSStore store(QUrl::fromLocalFile(path));
    std::optional<QSFilledPDF> copy;
    if (const QList<QSFilledPDF> copies = store.filledPDFs(); !copies.isEmpty()) {
        copy = copies.constFirst();
    }
    while (true) {
        const QSDocument saved = store.save(numbered(number));
        copy = store.saveFilledPDF(u"us-w-9"_s, u"W-9"_s, numberedPDF(number), copy);
        std::printf("%lld %d\n", static_cast<long long>(*saved.id), number);
        std::fflush(stdout);
        ++number;
    }
}

/// Moves what the child has said so far to the list.
void readLines(QProcess &child, QList<QByteArray> &lines)
{
    while (child.canReadLine()) {
        lines.append(child.readLine().trimmed());
    }
}

/// The files as a crash would leave them: copied while the connection that wrote them is open.
void leaveBehind(const QString &script, const QString &path)
{
    const QTemporaryDir folder;
    const QString live = folder.filePath(u"live"_s);
    SQLiteDB db(live);
    db.exec(script);
    for (const QString &suffix : {u""_s, u"-wal"_s, u"-journal"_s}) {
        QFile::copy(live + suffix, path + suffix);
    }
}

/// Takes every module from a connection as it opens, like an SQLite built without FTS5.
int withoutModules(sqlite3 *connection, const char ** /*error*/, const void * /*api*/)
{
    return sqlite3_drop_modules(connection, nullptr);
}

class WithoutFTS5 final
{
public:
    WithoutFTS5() { sqlite3_auto_extension(entry()); }
    ~WithoutFTS5() { sqlite3_cancel_auto_extension(entry()); }
    WithoutFTS5(const WithoutFTS5 &) = delete;
    WithoutFTS5 &operator=(const WithoutFTS5 &) = delete;

private:
    using Entry = void (*)();
    static Entry entry() { return reinterpret_cast<Entry>(withoutModules); }
};

/// No file of this process may grow beyond the limit.
class FileSizeLimit final
{
public:
    explicit FileSizeLimit(qint64 bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit = {static_cast<rlim_t>(bytes), m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int);
};

/// Saves until the disk refuses; the sentence of that refusal.
QString saveUntilRefused(QSStore &store, QList<QSDocument> &saved)
{
    for (int number = 1; number < 10000; ++number) {
        QString refusal = sentence([&] { saved.prepend(store.save(numbered(number))); });
        if (!refusal.isEmpty()) {
            return refusal;
        }
    }
    return {};
}

QString integrity(QSStore &store)
{
    return store.db().query(u"PRAGMA integrity_check"_s).first().string(u"integrity_check"_s);
}

const QString foreignSentence = u"This file is not a Vell Quillstone database."_s;
const QString noDatabase = u"The database reported a problem: file is not a database"_s;
} // namespace

class TestStoreFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<ScratchUser>(); }
    void cleanup() { m_folder.reset(); }

    void leavesForeignFilesAlone_data();
    void leavesForeignFilesAlone();
    void acceptsItsOwn_data();
    void acceptsItsOwn();
    void leavesDatabasesOfNewerVersionsAlone_data();
    void leavesDatabasesOfNewerVersionsAlone();
    void bringsTheSchemaWholeOrNotAtAll();
    void reportsUnusablePlaces();
    void reportsDamage();
    void reportsAFileThatCannotBeRead();
    void worksWithoutFTS5();
    void savesThoughTheIndexFails_data();
    void savesThoughTheIndexFails();
    void survivesAFileThatCannotGrow();
    void survivesAFullDisk();
    void aFullDiskKeepsTheFilledCopy_data();
    void aFullDiskKeepsTheFilledCopy();
    void losesNothingWhenKilled();

private:
    std::unique_ptr<ScratchUser> m_folder;
};

void TestStoreFaults::leavesForeignFilesAlone_data()
{
    using Maker = std::function<void(const QString &)>;
    QTest::addColumn<Maker>("make");
    QTest::addColumn<QString>("refusal");
    QTest::addColumn<QStringList>("files");
    const auto row = [](const char *name, const QString &refusal, const Maker &make,
                        const QStringList &files = {u"foreign"_s}) {
        QTest::newRow(name) << make << refusal << files;
    };
    const QStringList withWAL = {u"foreign"_s, u"foreign-wal"_s};
    const auto script = [](const QString &sql) {
        return [sql](const QString &path) { leaveBehind(sql, path); };
    };
    row("tables of another program", foreignSentence, script(u"CREATE TABLE t (v)"_s));
    row("another application id", foreignSentence,
        script(u"PRAGMA application_id = 7; CREATE TABLE documents (v)"_s));
    row("leftover -wal", foreignSentence,
        script(u"CREATE TABLE t (v); PRAGMA journal_mode = WAL; INSERT INTO t VALUES (1)"_s),
        withWAL);
    row("id in the -wal alone", foreignSentence,
        script(u"PRAGMA journal_mode = WAL; PRAGMA application_id = 7"_s), withWAL);
    row("hot journal", foreignSentence,
        script(u"CREATE TABLE t (v); PRAGMA cache_size = 1; BEGIN;"
               "WITH n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 500)"
               "INSERT INTO t SELECT randomblob(900) FROM n"_s),
        {u"foreign"_s, u"foreign-journal"_s});
    row("text", noDatabase,
        [](const QString &path) { writeFile(path, "Dear landlord,\n" + QByteArray(4000, 'x')); });
    row("a header and nothing behind it", noDatabase, [](const QString &path) {
        writeFile(path, QByteArray("SQLite format 3\0", 16) + QByteArray(4080, '\0'));
    });
}

void TestStoreFaults::leavesForeignFilesAlone()
{
    QFETCH(const std::function<void(const QString &)>, make);
    QFETCH(const QString, refusal);
    QFETCH(const QStringList, files);
    const QString path = m_folder->path(u"foreign"_s);
    make(path);
    QFile::setPermissions(path, QFile::permissions(path) | QFile::ReadOther);
    const QMap<QString, QByteArray> before = tree(m_folder->path(u"."_s));
    QCOMPARE(before.keys(), files);
    QCOMPARE(sentence([&] { const QSStore store(QUrl::fromLocalFile(path)); }), refusal);
    QCOMPARE(tree(m_folder->path(u"."_s)), before);
    QVERIFY(QFile::permissions(path) & QFile::ReadOther);
}

void TestStoreFaults::acceptsItsOwn_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("documents");
    const QString table =
        u"CREATE TABLE documents (id INTEGER PRIMARY KEY, template_id TEXT NOT NULL,"
        "template_version TEXT NOT NULL, title TEXT NOT NULL, values_json TEXT NOT NULL,"
        "state TEXT NOT NULL DEFAULT '', created REAL NOT NULL, modified REAL NOT NULL);"
        "INSERT INTO documents VALUES (1, 'a', '1', 'Old', '{}', '', 1, 1);"_s;
    QTest::newRow("new file") << u""_s << 0;
    QTest::newRow("no tables, no id") << u"PRAGMA user_version = 3"_s << 0;
    QTest::newRow("not stamped") << table << 1;
    QTest::newRow("all in a leftover -wal") << u"PRAGMA journal_mode = WAL;"_s + table << 1;
    QTest::newRow("a change that was never committed")
        << table +
               u"PRAGMA cache_size = 1; BEGIN; UPDATE documents SET title = hex(zeroblob(99999));"
               "DROP TABLE documents; CREATE TABLE t AS SELECT randomblob(99999)"_s
        << 1;
}

void TestStoreFaults::acceptsItsOwn()
{
    QFETCH(const QString, script);
    QFETCH(const int, documents);
    const QString path = m_folder->path(u"old"_s);
    leaveBehind(script, path);
    QCOMPARE(QFile::exists(path + u"-journal"_s), script.contains(u"BEGIN"_s));
    QSStore store(QUrl::fromLocalFile(path));
    QCOMPARE(store.documents().size(), documents);
    if (documents > 0) {
        QCOMPARE(store.documents().first().title, u"Old"_s);
    }
    QCOMPARE(store.db().scalarInt(u"PRAGMA application_id"_s), QSStore::applicationID);
    QCOMPARE(store.db().scalarInt(u"PRAGMA user_version"_s), QSStore::schemaVersion);
    QCOMPARE(QFile::permissions(path) & (QFile::ReadOther | QFile::ReadGroup),
             QFile::Permissions());
}

void TestStoreFaults::leavesDatabasesOfNewerVersionsAlone_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QStringList>("files");
    const QString newer = u"PRAGMA user_version = %1;"_s.arg(QSStore::schemaVersion + 1);
    const QString wal = u"PRAGMA journal_mode = WAL;"_s;
    const QStringList alone = {u"newer"_s};
    const QStringList withWAL = {u"newer"_s, u"newer-wal"_s};
    QTest::newRow("at rest") << newer << alone;
    QTest::newRow("at rest in WAL mode") << newer + wal << alone;
    QTest::newRow("with changes in a -wal") << newer + wal + u"DELETE FROM documents"_s << withWAL;
    QTest::newRow("its version in the -wal alone") << wal + newer << withWAL;
    QTest::newRow("in the middle of a change")
        << newer + u"PRAGMA cache_size = 1; BEGIN; UPDATE documents SET v = zeroblob(99999)"_s
        << QStringList{u"newer"_s, u"newer-journal"_s};
    QTest::newRow("without an application id") << u"PRAGMA application_id = 0;"_s + newer << alone;
}

void TestStoreFaults::leavesDatabasesOfNewerVersionsAlone()
{
    QFETCH(const QString, script);
    QFETCH(const QStringList, files);
    const QString path = m_folder->path(u"newer"_s);
    leaveBehind(u"PRAGMA application_id = %1; CREATE TABLE documents (id INTEGER PRIMARY KEY, v);"
                "INSERT INTO documents VALUES (1, 'new');"_s.arg(QSStore::applicationID) +
                    script,
                path);
    const QMap<QString, QByteArray> before = tree(m_folder->path(u"."_s));
    QCOMPARE(before.keys(), files);
    QCOMPARE(sentence([&] { const QSStore store(QUrl::fromLocalFile(path)); }),
             u"This database was made by a newer version of Vell Quillstone, so this version can't "
             "open it."_s);
    QCOMPARE(tree(m_folder->path(u"."_s)), before);
}

void TestStoreFaults::bringsTheSchemaWholeOrNotAtAll()
{
    const QString path = m_folder->path(u"old"_s);
    leaveBehind(u"CREATE TABLE documents (v); CREATE INDEX link_checks ON documents (v)"_s, path);
    QVERIFY(sentence([&] {
                const QSStore store(QUrl::fromLocalFile(path));
            }).contains(u"link_checks"_s));
    SQLiteDB db(path);
    QCOMPARE(db.scalarInt(u"SELECT count(*) FROM sqlite_master WHERE type = 'table'"_s), 1);
    QCOMPARE(db.scalarInt(u"PRAGMA user_version"_s), 0);
}

void TestStoreFaults::reportsUnusablePlaces()
{
    const QString file = m_folder->path(u"file"_s);
    writeFile(file, "x");
    try {
        const QSStore store(QUrl::fromLocalFile(file + u"/a/b"_s));
        QFAIL("It was opened");
    } catch (const QSError &error) {
        QCOMPARE(error, QSError::io(u"The folder \"%1/a\" could not be created."_s.arg(file)));
    }
    const QString folder = m_folder->path(u"folder"_s);
    QVERIFY(QDir().mkpath(folder));
    QCOMPARE(sentence([&] { const QSStore store(QUrl::fromLocalFile(folder)); }),
             u"The database reported a problem: unable to open database file"_s);
    QVERIFY(QFile::permissions(folder) & QFile::ExeOwner); // still a folder to enter
}

void TestStoreFaults::reportsDamage()
{
    const QString path = ScratchUser::database();
    {
        QSStore store(QSInfo::databaseURL());
        store.save(numbered(1));
    }
    QByteArray bytes = contents(path);
    bytes.replace(100, bytes.size() - 100, QByteArray(bytes.size() - 100, 'x'));
    writeFile(path, bytes);
    const QString text = sentence([] { const QSStore store(QSInfo::databaseURL()); });
    QVERIFY2(text.startsWith(u"The database reported a problem: "_s), qPrintable(text));
    const QFileInfo file(path);
    QCOMPARE(contents(path), bytes);
    QCOMPARE(file.dir().entryList(QDir::Files | QDir::Hidden), QStringList{file.fileName()});
}

void TestStoreFaults::reportsAFileThatCannotBeRead()
{
    // It opens, and its first page can't be read.
    try {
        (void)QSFile::read(u"/proc/self/mem"_s);
        QFAIL("It was read");
    } catch (const QSError &error) {
        QCOMPARE(error.errorCase(), QSError::Case::io);
        QCOMPARE(error.description(), error.payload());
        QVERIFY(!error.payload().isEmpty());
    }
}

void TestStoreFaults::worksWithoutFTS5()
{
    QSDocument saved;
    {
        const WithoutFTS5 without;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u": no such module: fts5"_s));
        QSStore store(QSInfo::databaseURL());
        QVERIFY(!store.hasFTS5());
        saved = store.save(numbered(1));
        QCOMPARE(store.save(saved).id, saved.id);
        QVERIFY(store.search(u"document"_s).isEmpty());
        store.rebuildSearchIndex();
        const QSDocument other = store.save(numbered(2));
        store.deleteDocument(*other.id);
        QCOMPARE(store.documents().size(), 1);
    }
    {
        QSStore store(QSInfo::databaseURL());
        QVERIFY(store.hasFTS5());
        QVERIFY(!store.search(u"document 1"_s).isEmpty());
    }
    // An index is there now, and SQLite lets it pass as long as nobody uses it.
    const WithoutFTS5 without;
    QSStore store(QSInfo::databaseURL());
    QVERIFY(!store.hasFTS5());
    saved.title = u"Changed"_s;
    store.save(saved);
    QCOMPARE(store.document(*saved.id).value().title, u"Changed"_s);
}

void TestStoreFaults::savesThoughTheIndexFails_data()
{
    QTest::addColumn<QString>("damage");
    QTest::newRow("at its row") << u"DROP TABLE search_content"_s;
    QTest::newRow("at the commit") << u"DROP TABLE search_data"_s;
    QTest::newRow("altogether") << u"DROP TABLE search"_s;
}

void TestStoreFaults::savesThoughTheIndexFails()
{
    QFETCH(const QString, damage);
    QSStore store(QSInfo::databaseURL());
    QSDocument first = store.save(numbered(1));
    store.db().exec(damage);
    first.title = u"Changed"_s;
    for (const char *what : {"written", "written", "deleted"}) {
        QTest::ignoreMessage(
            QtWarningMsg, QRegularExpression(u"^A search row could not be %1: The database "_s.arg(
                              QLatin1StringView(what))));
    }
    first = store.save(first);
    const QSDocument second = store.save(numbered(2));
    QCOMPARE(store.documents(), (QList<QSDocument>{second, first}));
    QCOMPARE(store.revision(), 3);
    store.deleteDocument(*first.id);
    QCOMPARE(store.documents(), QList<QSDocument>{second});
}

void TestStoreFaults::survivesAFileThatCannotGrow()
{
    QList<QSDocument> saved;
    QSStore store(QSInfo::databaseURL());
    {
        const FileSizeLimit limit(QFileInfo(ScratchUser::database() + u"-wal"_s).size() + 100000);
        const QString refusal = saveUntilRefused(store, saved);
        QVERIFY2(refusal.startsWith(u"The database reported a problem: "_s), qPrintable(refusal));
    }
    QCOMPARE(store.documents(), saved);
    QCOMPARE(integrity(store), u"ok"_s);
    saved.prepend(store.save(numbered(0)));
    QCOMPARE(store.documents(), saved);
}

void TestStoreFaults::survivesAFullDisk()
{
    const QString folder = m_folder->path(u"disk"_s);
    const SmallDisk disk(folder, 6 * 1024 * 1024);
    if (!disk.mounted()) {
        QSKIP("This process may not mount a small file system");
    }
    const QUrl url = QUrl::fromLocalFile(folder + u"/Quillstone.sqlite"_s);
    const QString filler = folder + u"/filler"_s;
    writeFile(filler, QByteArray(2000000, 'x'));
    QList<QSDocument> saved;
    {
        QSStore store(url);
        QCOMPARE(saveUntilRefused(store, saved),
                 u"The database reported a problem: database or disk is full"_s);
        QVERIFY(!saved.isEmpty());
        QCOMPARE(store.documents(), saved);
    }
    QVERIFY(QFile::remove(filler));
    QSStore store(url);
    QCOMPARE(store.documents(), saved);
    QCOMPARE(integrity(store), u"ok"_s);
    saved.prepend(store.save(numbered(0)));
    QCOMPARE(store.documents(), saved);
}

void TestStoreFaults::aFullDiskKeepsTheFilledCopy_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("smaller than any buffer") << 5'000;
    QTest::newRow("larger than the disk") << 500'000;
}

void TestStoreFaults::aFullDiskKeepsTheFilledCopy()
{
    QFETCH(int, size);
    QSStore store(QSInfo::databaseURL());
    const QString folder = QSInfo::filledFolder().path();
    const SmallDisk disk(folder, 64 * 1024);
    if (!disk.mounted()) {
        QSKIP("This process may not mount a small file system");
    }
    const QByteArray older = "%PDF" + QByteArray(5'000, 'o');
    const QSFilledPDF record = store.saveFilledPDF(u"us-w-9"_s, u"W-9"_s, older);
    QFile filler(folder + u"/filler"_s);
    QVERIFY(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    while (filler.write(QByteArray(4096, 'x')) == 4096) {
    }
    const QByteArray newer = "%PDF" + QByteArray(size, 'n');
    QCOMPARE(sentence([&] { store.saveFilledPDF(u"us-w-9"_s, u"W-9"_s, newer, record); }),
             u"The PDF could not be saved: No space left on device"_s);
    QCOMPARE(contents(folder + u'/' + record.fileName), older);
}

void TestStoreFaults::losesNothingWhenKilled()
{
    const QString path = ScratchUser::database();
    QRandomGenerator &random = *QRandomGenerator::global();
    int number = 1;
    for (int round = 0; round < 100; ++round) {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {QLatin1StringView(saveLoopSwitch), path, QString::number(number)});
        QList<QByteArray> lines;
        const int wanted = random.bounded(1, 4);
        while (lines.size() < wanted) {
            QVERIFY(child.canReadLine() || child.waitForReadyRead(60'000));
            readLines(child, lines);
        }
        QVERIFY(!child.waitForFinished(random.bounded(10))); // into the middle of the next ones
        child.kill();
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        readLines(child, lines);

        QSStore store(QUrl::fromLocalFile(path));
        QCOMPARE(integrity(store), u"ok"_s);
        QVERIFY(store.hasFTS5());
        for (const QByteArray &line : std::as_const(lines)) {
            const QList<QByteArray> words = line.split(' ');
            const QSDocument expected = numbered(words.at(1).toInt());
            const std::optional<QSDocument> kept = store.document(words.at(0).toLongLong());
            QVERIFY2(kept, line.constData());
            QCOMPARE(kept->title, expected.title);
            QCOMPARE(kept->values, expected.values);
            number = words.at(1).toInt() + 1;
        }
        const QList<QSFilledPDF> copies = store.filledPDFs();
        QCOMPARE(copies.size(), 1);
        const QByteArray copy =
            contents(QSInfo::filledFolder().filePath(copies.constFirst().fileName));
        const int copied = copy.split(' ').value(1).toInt();
        QVERIFY2(copied >= number - 1, copy.first(20).constData());
        QCOMPARE(copy, numberedPDF(copied));
    }
}

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 4 && arguments.at(1) == QLatin1StringView(saveLoopSwitch)) {
        return saveLoop(arguments.at(2), arguments.at(3).toInt());
    }
    TestStoreFaults test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_storefaults.moc"
