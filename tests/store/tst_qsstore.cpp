#include "QSStore.h"
#include "QSTemplates.h"
#include "ScratchUser.h"
#include "TestFiles.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

#include <algorithm>
#include <array>
#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace {
QSDocument draft(const QString &title, const QMap<QString, QString> &values = {})
{
    return {.id = {},
            .templateID = QSTemplates::all().first().id,
            .templateVersion = {},
            .title = title,
            .values = values,
            .state = u"CO"_s,
            .created = {},
            .modified = {}};
}

/// "kind ref" of each hit.
QStringList found(QSStore &store, const QString &text)
{
    constexpr std::array kinds = {"form"_L1, "template"_L1, "document"_L1};
    QStringList hits;
    const QList<QSSearchHit> all = store.search(text);
    for (const QSSearchHit &hit : all) {
        hits.append(kinds.at(static_cast<std::size_t>(hit.kind)) + u' ' + hit.ref);
    }
    return hits;
}

QString hitFor(const QSDocument &document)
{
    return u"document "_s + QString::number(document.id.value_or(0));
}

constexpr QFile::Permissions everyone =
    QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther | QFile::ExeOwner;
} // namespace

class TestQSStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void fileIsTheOwnersAlone();
    void anotherProgramReadsTheFile();
    void savesAndUpdatesDocuments();
    void keepsValuesOfAnyScript_data();
    void keepsValuesOfAnyScript();
    void refusesWhatIsNoDocument();
    void readsRowsFromElsewhere();
    void listsLatestFirst();
    void replacesTheProfile();
    void filesFilledPDFs();
    void replacesFilledPDFs();
    void failedPDFWriteLeavesNoRecord();
    void recordsLinkChecks();
    void buildsQueries_data();
    void buildsQueries();
    void findsDocuments_data();
    void findsDocuments();
    void findsFormsAndTemplates();
    void titleWeighsMost();
    void searchNeverThrows();
    void indexFollowsTheDocuments();
    void tellsTheScreens();

private:
    void reopen();

    std::unique_ptr<ScratchUser> m_folder;
    std::unique_ptr<QSStore> m_store;
};

void TestQSStore::init()
{
    m_folder = std::make_unique<ScratchUser>();
    reopen();
    QVERIFY(m_store->hasFTS5());
    QVERIFY(!QSTemplates::all().isEmpty());
}

void TestQSStore::cleanup()
{
    m_store.reset();
    m_folder.reset();
}

void TestQSStore::reopen()
{
    m_store.reset();
    m_store = std::make_unique<QSStore>(QSInfo::databaseURL());
}

void TestQSStore::fileIsTheOwnersAlone()
{
    const QString path = ScratchUser::database();
    const QStringList files = {path, path + u"-wal"_s, path + u"-shm"_s};
    for (const QString &file : files) {
        QVERIFY(QFile::exists(file));
        QVERIFY(!(QFile::permissions(file) & everyone));
    }
    m_store.reset();
    QVERIFY(QFile::setPermissions(path, QFile::permissions(path) | QFile::ReadOther));
    reopen();
    QVERIFY(!(QFile::permissions(path) & everyone));

    const QString nested = m_folder->path(u"a/b/c.sqlite"_s);
    const QSStore other(QUrl::fromLocalFile(nested));
    QVERIFY(!(QFile::permissions(nested) & everyone));
    QVERIFY(
        !sentence([] { const QSStore web(QUrl(u"https://vell.example/x.sqlite"_s)); }).isEmpty());
}

void TestQSStore::anotherProgramReadsTheFile()
{
    const QString program = QStandardPaths::findExecutable(u"sqlite3"_s);
    if (program.isEmpty()) {
        QSKIP("The sqlite3 program is not installed");
    }
    m_store->save(draft(u"Kept"_s));
    QProcess sqlite;
    sqlite.start(program, {ScratchUser::database(),
                           u"PRAGMA application_id; PRAGMA user_version; PRAGMA journal_mode;"
                           "PRAGMA integrity_check; SELECT title FROM documents;"
                           "SELECT sql FROM sqlite_master WHERE name IN ('profile',"
                           "'documents','filled_pdfs','link_checks','search')"_s});
    QVERIFY(sqlite.waitForFinished());
    QCOMPARE(QString::fromUtf8(sqlite.readAllStandardError()), QString());
    const QString expected =
        u"1364411441\n1\nwal\nok\nKept\n"
        "CREATE TABLE profile (key TEXT PRIMARY KEY, value TEXT NOT NULL)\n"
        "CREATE TABLE documents (id INTEGER PRIMARY KEY, template_id TEXT NOT NULL, "
        "template_version TEXT NOT NULL,\n"
        "    title TEXT NOT NULL, values_json TEXT NOT NULL, state TEXT NOT NULL DEFAULT '', "
        "created REAL NOT NULL, modified REAL NOT NULL)\n"
        "CREATE TABLE filled_pdfs (id INTEGER PRIMARY KEY, entry_id TEXT NOT NULL, title TEXT NOT "
        "NULL,\n"
        "    file_name TEXT NOT NULL UNIQUE, created REAL NOT NULL, modified REAL NOT NULL)\n"
        "CREATE TABLE link_checks (url TEXT PRIMARY KEY, checked REAL NOT NULL, status INTEGER NOT "
        "NULL, ok INTEGER NOT NULL,\n"
        "    final_url TEXT NOT NULL DEFAULT '', content_type TEXT NOT NULL DEFAULT '', note TEXT "
        "NOT NULL DEFAULT '')\n"
        "CREATE VIRTUAL TABLE search USING fts5(kind UNINDEXED, ref UNINDEXED, title, body, tokenize='porter unicode61')\n"_s;
    QCOMPARE(QString::fromUtf8(sqlite.readAllStandardOutput()), expected);
}

void TestQSStore::savesAndUpdatesDocuments()
{
    const QDateTime before = QDateTime::currentDateTimeUtc();
    QSDocument unsaved = draft(QString(u" \n Lease for\0 Maple St.\t"_s), {{u"rent"_s, u"900"_s}});
    unsaved.state = QString(u"C\0O"_s);
    const QSDocument saved = m_store->save(unsaved);
    QVERIFY(saved.id);
    QCOMPARE(saved.state, u"CO"_s);
    QCOMPARE(saved.title, u"Lease for Maple St."_s);
    QCOMPARE(saved.templateVersion, QSTemplates::all().first().version);
    QCOMPARE(saved.created, saved.modified);
    QVERIFY(saved.created >= before && saved.created <= QDateTime::currentDateTimeUtc());

    QSDocument changed = saved;
    changed.title = u"Lease, second draft"_s;
    changed.values.insert(u"rent"_s, u"950"_s);
    changed.state = u"TX"_s;
    changed.created = {};
    changed.templateVersion = u"0"_s;
    changed = m_store->save(changed);
    QCOMPARE(changed.id, saved.id);
    QCOMPARE(changed.created, saved.created);
    QVERIFY(changed.modified >= saved.modified);
    QCOMPARE(changed.templateVersion, saved.templateVersion);

    reopen();
    QCOMPARE(m_store->documents(), QList<QSDocument>{changed});
    QCOMPARE(m_store->documentHeads(), (QList<QSDocumentHead>{{*saved.id, changed.templateID,
                                                               changed.title, changed.modified}}));
    QCOMPARE(m_store->document(*saved.id), changed);
    QVERIFY(!m_store->document(*saved.id + 1));
}

void TestQSStore::keepsValuesOfAnyScript_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("accents, both forms") << u"Zoë cafe\u0301"_s;
    QTest::newRow("right to left") << u"שלום العربية"_s;
    QTest::newRow("beyond the BMP") << u"𝒜𠮷😀"_s;
    QTest::newRow("quotes, braces, SQL") << u"\"'); DROP TABLE documents; -- {}\\"_s;
    QTest::newRow("line breaks and controls") << u"a\r\nb\tc\u0001\u007f\u2028"_s;
    QTest::newRow("NUL") << QString(u"before\0after"_s);
    QTest::newRow("half a surrogate pair") << u"a"_s + QChar(0xd83d) + u"b"_s + QChar(0xde00);
    QTest::newRow("long") << u"Señor "_s.repeated(200000);
}

void TestQSStore::keepsValuesOfAnyScript()
{
    QFETCH(const QString, text);
    const QMap<QString, QString> values = {{u"field"_s, text}, {u"empty"_s, u""_s}, {text, u"x"_s}};
    const QSDocument saved = m_store->save(draft(u"Any"_s, values));
    QCOMPARE(saved.values, values);
    reopen();
    QCOMPARE(m_store->document(*saved.id).value().values, values);
}

void TestQSStore::refusesWhatIsNoDocument()
{
    const QString unnamed = u"Give the document a name."_s;
    QCOMPARE(sentence([&] { m_store->save(draft(u" \n\t\u00a0"_s)); }), unnamed);
    QCOMPARE(sentence([&] { m_store->save(draft(QString(u"\0 "_s))); }), unnamed);
    QSDocument unknown = draft(u"Old"_s);
    unknown.templateID = u"gone-with-1.0"_s;
    QCOMPARE(sentence([&] { m_store->save(unknown); }),
             u"The template gone-with-1.0 is not in this version of the app."_s);
    QSDocument deleted = m_store->save(draft(u"Short life"_s));
    m_store->deleteDocument(*deleted.id);
    QCOMPARE(sentence([&] { m_store->save(deleted); }), u"That record no longer exists."_s);
    QVERIFY(m_store->documents().isEmpty());
}

void TestQSStore::readsRowsFromElsewhere()
{
    m_store->db().exec(
        u"INSERT INTO documents VALUES (1, 'gone', '1', 'Not JSON', 'oops', 'CO', 1e300, -1e300);"
        "INSERT INTO documents VALUES (2, 'gone', '1', 'A number', '{\"a\":\"b\",\"n\":1}', '', 5, 0.5)"_s);
    reopen();
    const QList<QSDocument> all = m_store->documents();
    QCOMPARE(all.size(), 2);
    QVERIFY(all.at(0).values.isEmpty() && all.at(1).values.isEmpty());
    QCOMPARE(all.at(0).modified, QDateTime::fromMSecsSinceEpoch(500));
    QVERIFY(all.at(1).created.isValid());
    QCOMPARE(found(*m_store, u"gone number"_s), QStringList{u"document 2"_s});
}

void TestQSStore::listsLatestFirst()
{
    const QSDocument first = m_store->save(draft(u"1"_s));
    const QSDocument second = m_store->save(draft(u"2"_s));
    m_store->db().exec(u"UPDATE documents SET modified = 7"_s);
    const auto order = [this] {
        QList<qint64> ids;
        const QList<QSDocument> all = m_store->documents();
        std::ranges::transform(all, std::back_inserter(ids),
                               [](const QSDocument &document) { return document.id.value_or(0); });
        return ids;
    };
    QCOMPARE(order(), (QList<qint64>{*second.id, *first.id}));
    m_store->save(first);
    QCOMPARE(order(), (QList<qint64>{*first.id, *second.id}));
    QCOMPARE(m_store->documentHeads().constFirst().id, *first.id);
}

void TestQSStore::replacesTheProfile()
{
    QVERIFY(m_store->profile().isEmpty());
    m_store->saveProfile({{u"fullName"_s, u"Ana O'Neil"_s}, {u"email"_s, u"a@b.example"_s}});
    m_store->saveProfile({{u"fullName"_s, QString(u"Ana\0 Õ"_s)}, {u"phone"_s, u""_s}});
    reopen();
    const QMap<QString, QString> second = {{u"fullName"_s, u"Ana Õ"_s}, {u"phone"_s, u""_s}};
    QCOMPARE(m_store->profile(), second);
}

void TestQSStore::filesFilledPDFs()
{
    QCOMPARE(sentence([&] { m_store->saveFilledPDF(u"e"_s, u"t"_s, "<html>%PDF"); }),
             u"That is not a PDF."_s);
    const QSFilledPDF one =
        m_store->saveFilledPDF(u"co-llc"_s, QString(u"Arti\0cles"_s), "%PDF-1.7 one");
    const QSFilledPDF two = m_store->saveFilledPDF(u"co-llc"_s, u"Articles"_s, "%PDF-1.7 two");
    static const QRegularExpression uuid(
        u"^[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\\.pdf$"_s);
    QVERIFY2(uuid.match(one.fileName).hasMatch(), qPrintable(one.fileName));
    QVERIFY(one.fileName != two.fileName);
    QCOMPARE(m_store->filledPDFs(), (QList<QSFilledPDF>{two, one}));
    const QDir folder = QSInfo::filledFolder();
    QCOMPARE(contents(folder.filePath(one.fileName)), QByteArray("%PDF-1.7 one"));
    QVERIFY(!(QFile::permissions(folder.filePath(one.fileName)) & everyone));

    m_store->deleteFilledPDF(one);
    QCOMPARE(folder.entryList(QDir::Files), QStringList{two.fileName});
    QVERIFY(QFile::remove(folder.filePath(two.fileName)));
    m_store->deleteFilledPDF(two);
    QVERIFY(m_store->filledPDFs().isEmpty());

    // A record from elsewhere leads to no file but one of the folder.
    const QString outside = m_folder->path(u"mine.pdf"_s);
    writeFile(outside, "mine");
    QSFilledPDF crafted = two;
    crafted.fileName = u"../mine.pdf"_s;
    m_store->deleteFilledPDF(crafted);
    QVERIFY(QFile::exists(outside));
}

void TestQSStore::replacesFilledPDFs()
{
    const QSFilledPDF first = m_store->saveFilledPDF(u"co-llc"_s, u"Draft"_s, "%PDF-1.7 a");
    const QSFilledPDF second = m_store->saveFilledPDF(u"other"_s, u"Final"_s, "%PDF-1.7 b", first);
    QCOMPARE(second.id, first.id);
    QCOMPARE(second.fileName, first.fileName);
    QCOMPARE(second.entryID, u"co-llc"_s);
    QCOMPARE(second.created, first.created);
    QCOMPARE(m_store->filledPDFs(), QList<QSFilledPDF>{second});
    const QDir folder = QSInfo::filledFolder();
    QCOMPARE(contents(folder.filePath(first.fileName)), QByteArray("%PDF-1.7 b"));

    m_store->deleteFilledPDF(second);
    QCOMPARE(sentence([&] { m_store->saveFilledPDF(u"e"_s, u"t"_s, "%PDF-1.7 c", second); }),
             u"That record no longer exists."_s);
    QVERIFY(folder.entryList(QDir::Files).isEmpty());
}

void TestQSStore::failedPDFWriteLeavesNoRecord()
{
    const QString path = QSInfo::filledFolder().path();
    QVERIFY(QDir(path).removeRecursively());
    writeFile(path, "in the way");
    const QString text = sentence([&] { m_store->saveFilledPDF(u"e"_s, u"t"_s, "%PDF-1.7"); });
    QVERIFY2(text.startsWith(u"The PDF could not be saved: "_s), qPrintable(text));
    QVERIFY(m_store->filledPDFs().isEmpty());

    QVERIFY(QFile::remove(path));
    m_store->db().exec(u"DROP TABLE filled_pdfs"_s);
    QVERIFY(!sentence([&] { m_store->saveFilledPDF(u"e"_s, u"t"_s, "%PDF-1.7"); }).isEmpty());
    QVERIFY(QSInfo::filledFolder().entryList(QDir::Files).isEmpty());
}

void TestQSStore::recordsLinkChecks()
{
    QSLinkCheck check = {.url = u"https://a.example/f.pdf"_s,
                         .checked = QDateTime::fromMSecsSinceEpoch(1700000000123, Qt::UTC),
                         .status = 404,
                         .ok = false,
                         .finalURL = u"https://b.example/"_s,
                         .contentType = u"text/html"_s,
                         .note = u"Not found"_s};
    m_store->recordLinkCheck(check);
    check.status = 200;
    check.ok = true;
    m_store->recordLinkCheck(check);
    QCOMPARE(m_store->linkChecks(), QList<QSLinkCheck>{check});
    QSLinkCheck other = check;
    other.url = u"https://c.example/"_s;
    check.status = 500;
    m_store->recordLinkChecks({check, other});
    QCOMPARE(m_store->linkChecks(), (QList<QSLinkCheck>{check, other}));
    m_store->db().exec(u"CREATE TRIGGER no BEFORE INSERT ON link_checks WHEN NEW.url = '%1' "
                       "BEGIN SELECT RAISE(ABORT, 'no room'); END"_s.arg(other.url));
    const QList<QSLinkCheck> kept = m_store->linkChecks();
    check.status = 200;
    QVERIFY_THROWS_EXCEPTION(QSError, m_store->recordLinkChecks({check, other}));
    QCOMPARE(m_store->linkChecks(), kept);
    m_store->db().exec(u"DROP TABLE link_checks"_s);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u": no such table: link_checks"_s));
    m_store->recordLinkCheck(check); // and nothing is thrown
}

void TestQSStore::buildsQueries_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("query");
    QTest::newRow("words") << u"Evict  answer"_s << u"\"evict\"* AND \"answer\"*"_s;
    QTest::newRow("form number") << u"JDF-101"_s << u"\"jdf\"* AND \"101\"*"_s;
    QTest::newRow("repeats") << u"Rent, rent: RENT due"_s << u"\"rent\"* AND \"due\"*"_s;
    QTest::newRow("hyphens") << u"---"_s << u""_s;
    QTest::newRow("syntax")
        << u"\"a\" OR (b* NEAR title:c)"_s
        << u"\"a\"* AND \"or\"* AND \"b\"* AND \"near\"* AND \"title\"* AND \"c\"*"_s;
    QTest::newRow("other scripts") << u"ÉCOLE 東京2"_s << u"\"école\"* AND \"東京2\"*"_s;
    QTest::newRow("beyond the BMP") << u"𐐀x😀𠮷"_s << u"\"𐐨x\"* AND \"𠮷\"*"_s;
    QTest::newRow("combining mark") << u"Cafe\u0301s"_s << u"\"cafe\u0301s\"*"_s;
    QTest::newRow("marks alone") << u"\u0301 \u0308"_s << u""_s;
    QTest::newRow("broken text") << u"a"_s + QChar(0xd83d) + QChar(0) + u"b"_s
                                 << u"\"a\"* AND \"b\"*"_s;
}

void TestQSStore::buildsQueries()
{
    QFETCH(const QString, text);
    QTEST(QSStore::ftsQuery(text), "query");
}

void TestQSStore::findsDocuments_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("hit");
    QTest::newRow("beginning of a word") << u"Zanzibar"_s << u"zanz"_s << true;
    QTest::newRow("a word too many") << u"Zanzibar Quito"_s << u"zanzibar lima"_s << false;
    QTest::newRow("stem") << u"zorbing"_s << u"zorbed"_s << true;
    QTest::newRow("accent left out") << u"Žižková"_s << u"zizkova"_s << true;
    QTest::newRow("typed decomposed") << u"Žižková"_s << u"z\u030ciz\u030ckova\u0301"_s << true;
    QTest::newRow("stored decomposed") << u"z\u030ciz\u030ckova\u0301"_s << u"žižková"_s << true;
    QTest::newRow("vowel signs") << u"हिन्दी"_s << u"हिन्दी"_s << true;
    QTest::newRow("beyond the BMP") << u"𠮷野家"_s << u"𠮷野"_s << true;
    QTest::newRow("after a NUL") << QString(u"aa\0zanzibar"_s) << u"zanzibar"_s << true;
    QTest::newRow("FTS5 syntax is plain text")
        << u"Zanzibar"_s << u"zanzibar OR NOT \"*(:^"_s << false;
}

void TestQSStore::findsDocuments()
{
    QFETCH(const QString, value);
    QFETCH(const QString, text);
    QFETCH(const bool, hit);
    const QSDocument saved = m_store->save(draft(u"Untitled"_s, {{u"a"_s, value}}));
    const QStringList expected = hit ? QStringList{hitFor(saved)} : QStringList{};
    QCOMPARE(found(*m_store, text), expected);
    reopen();
    QCOMPARE(found(*m_store, text), expected);
}

void TestQSStore::findsFormsAndTemplates()
{
    const QSTemplate &form = QSTemplates::all().first();
    QVERIFY(found(*m_store, form.title).contains(u"template "_s + form.id));
    for (const QString &text :
         {form.category, form.summary, form.keywords, form.info, form.fields.last().label}) {
        QVERIFY2(found(*m_store, text).contains(u"template "_s + form.id), qPrintable(text));
    }
    const QList<QSSearchHit> waivers = m_store->search(u"fee waiver"_s, 3);
    QVERIFY(!waivers.isEmpty() && waivers.size() <= 3);
    QCOMPARE(waivers.first().kind, QSSearchHit::Kind::form);
    QVERIFY(!waivers.first().title.isEmpty() && !waivers.first().snippet.isEmpty());
    QCOMPARE(m_store->search(u"c"_s).size(), 60);
}

void TestQSStore::titleWeighsMost()
{
    const QSDocument body = m_store->save(draft(u"Another"_s, {{u"a"_s, u"Kumquat, kumquat"_s}}));
    const QSDocument title = m_store->save(draft(u"Kumquat"_s, {{u"a"_s, u"Another thing"_s}}));
    QCOMPARE(found(*m_store, u"kumquat"_s), (QStringList{hitFor(title), hitFor(body)}));
    const QSSearchHit second = m_store->search(u"kumquat"_s).last();
    QCOMPARE(second.title, u"Another"_s);
    QVERIFY(second.snippet.endsWith(u"Kumquat, kumquat"_s));
}

void TestQSStore::searchNeverThrows()
{
    QVERIFY(m_store->search(u"\"'*()-:^"_s).isEmpty());
    const QSDocument saved = m_store->save(draft(u"Kumquat"_s));
    QCOMPARE(found(*m_store, u"kumquat "_s.repeated(20000)), QStringList{hitFor(saved)});
    QString pasted;
    for (int number = 0; number < 20000; ++number) {
        pasted += u"word%1 "_s.arg(number);
    }
    QVERIFY(m_store->search(pasted).isEmpty());
    m_store->db().exec(u"DROP TABLE search"_s);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u": no such table: search"_s));
    QVERIFY(m_store->search(u"lease"_s).isEmpty());
}

void TestQSStore::indexFollowsTheDocuments()
{
    QSDocument saved = m_store->save(draft(u"Papaya"_s, {{u"a"_s, u"quince"_s}}));
    saved.title = u"Lychee"_s;
    saved.values = {{u"a"_s, u"durian"_s}};
    m_store->save(saved);
    QVERIFY(found(*m_store, u"papaya"_s).isEmpty() && found(*m_store, u"quince"_s).isEmpty());
    QCOMPARE(found(*m_store, u"lychee durian"_s), QStringList{hitFor(saved)});
    const QSDocument other = m_store->save(draft(u"Xylophone"_s));
    m_store->deleteDocument(*other.id);
    QVERIFY(!m_store->document(*other.id) && found(*m_store, u"xylophone"_s).isEmpty());

    m_store->db().exec(u"UPDATE documents SET title = 'Rambutan'; DROP TABLE search"_s);
    reopen();
    QCOMPARE(found(*m_store, u"rambutan durian"_s), QStringList{hitFor(saved)});
    m_store->rebuildSearchIndex();
    QCOMPARE(found(*m_store, u"rambutan durian"_s), QStringList{hitFor(saved)});
}

void TestQSStore::tellsTheScreens()
{
    QCOMPARE(m_store->revision(), 0);
    QSignalSpy spy(m_store.get(), &QSStore::revisionChanged);
    const QSDocument saved = m_store->save(draft(u"A"_s));
    QVERIFY(!sentence([&] { m_store->save(draft(u""_s)); }).isEmpty());
    m_store->deleteDocument(*saved.id);
    m_store->saveProfile({});
    m_store->deleteFilledPDF(m_store->saveFilledPDF(u"e"_s, u"t"_s, "%PDF"));
    m_store->touch();
    QCOMPARE(m_store->revision(), 6);
    QCOMPARE(spy.size(), 6);
    QCOMPARE(spy.last().first().toInt(), 6);

    QSStore::setShared(std::move(m_store));
    QCOMPARE(QSStore::shared()->revision(), 6);
    QSStore::setShared(nullptr);
    QVERIFY(QSStore::shared() == nullptr);
}

QTEST_GUILESS_MAIN(TestQSStore)
#include "tst_qsstore.moc"
