#include "QSClock.h"
#include "QSDate.h"
#include "QSDispatch.h"
#include "QSPrefs.h"
#include "QSSalvage.h"
#include "QSSetup.h"
#include "QSSingleInstance.h"
#include "QSStore.h"
#include "QSTemplates.h"
#include "QSThemes.h"
#include "QuillstoneApp.h"
#include "ScratchUser.h"
#include "TestFiles.h"
#include "VellAbout.h"

#include <QLabel>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>
#include <QThread>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

/// What happens before the first window.
class TestStartup final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_user = std::make_unique<ScratchUser>(); }
    void cleanup()
    {
        QSStore::setShared(nullptr);
        m_user.reset();
    }

    void argumentsAreDispatchedInAFixedOrder_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("status");
        QTest::newRow("none") << QStringList{u"quillstone"_s} << -1;
        QTest::newRow("unknown") << QStringList{u"quillstone"_s, u"--fast"_s} << -1;
        QTest::newRow("child first")
            << QStringList{u"q"_s, u"--selftest"_s, u"--snapshot"_s, u"--child"_s} << 10;
        QTest::newRow("then snapshots")
            << QStringList{u"q"_s, u"--check-links"_s, u"--snapshot"_s} << 11;
        QTest::newRow("then links")
            << QStringList{u"q"_s, u"--selftest"_s, u"--check-links"_s} << 12;
        QTest::newRow("then the self-test") << QStringList{u"q"_s, u"x"_s, u"--selftest"_s} << 13;
        QTest::newRow("whole arguments only") << QStringList{u"q"_s, u"--selftest=all"_s} << -1;
    }

    void argumentsAreDispatchedInAFixedOrder()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, status);
        const auto when = [](const QString &flag, int result) {
            return [flag, result](const QStringList &given) {
                return given.contains(flag) ? std::optional(result) : std::nullopt;
            };
        };
        const QSModes modes{when(u"--child"_s, 10), when(u"--snapshot"_s, 11), [] { return 12; },
                            [] { return 13; }};
        QCOMPARE(dispatch(arguments, modes).value_or(-1), status);
    }

    void configuringSetsLookAndAboutLines()
    {
        QSSetup::configure();
        QCOMPARE(VellThemes::current().id, QSThemes::graphiteID);
        QCOMPARE(VellThemes::named(u"no such theme"_s).id, QSThemes::graphiteID);
        const QStringList lines = VellAbout::extraLines();
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines.at(0),
                 u"Official legal forms and plain-English templates. No legal advice."_s);
        QVERIFY2(
            QRegularExpression(u"^Official forms directory checked [A-Z][a-z]+ \\d+, \\d{4}\\. "
                               "Forms download from the official government sites\\.$"_s)
                .match(lines.at(1))
                .hasMatch(),
            qPrintable(lines.at(1)));
    }

    void anUnreadableDatabaseIsLeftAndANewOneOpenedBesideIt()
    {
        const QByteArray damaged = QByteArray("This is no database. ").repeated(500);
        const QString path = QSInfo::databaseURL().toLocalFile();
        writeFile(path, damaged);
        const std::optional<QString> said = QSSetup::openStore();
        QVERIFY(said);
        QVERIFY2(said->startsWith(u"Your documents database could not be opened (The database "
                                  "reported a problem: "_s),
                 qPrintable(*said));
        QVERIFY2(said->endsWith(u"It was left untouched at "_s + path +
                                u". A new empty database was opened instead; a backup can be "
                                "restored from Backup & Settings."_s),
                 qPrintable(*said));
        QCOMPARE(contents(path), damaged);
        const QString beside =
            u"Quillstone (opened %1).sqlite"_s.arg(QSDate::iso(QDate::currentDate()));
        QCOMPARE(QSStore::shared()->url().fileName(), beside);

        // the same day and the next: the same replacement, with what was saved in it
        QSStore::shared()->saveProfile({{u"city"_s, u"Pueblo"_s}});
        for (const int days : {0, 1}) {
            QSClock::setFixed(QDateTime::currentDateTimeUtc().addDays(days));
            const std::optional<QString> again = QSSetup::openStore();
            QSClock::setFixed(std::nullopt);
            QVERIFY(again && again->contains(beside + u", which stood in for it before, "_s));
            QCOMPARE(QSStore::shared()->url().fileName(), beside);
            QCOMPARE(QSStore::shared()->profile().value(u"city"_s), u"Pueblo"_s);
        }
        QCOMPARE(contents(path), damaged);

        // the database was in use in between: what stood in for it then knows nothing of that
        QSStore::setShared(nullptr);
        QVERIFY(QFile::rename(m_user->path(u"data/"_s) + beside,
                              m_user->path(u"data/Quillstone (opened 2020-01-01).sqlite"_s)));
        changedIn(5, path);
        QVERIFY(QSSetup::openStore());
        QCOMPARE(QSStore::shared()->url().fileName(), beside);
        QVERIFY(QSStore::shared()->profile().isEmpty());

        // what stood in for it can't be opened either
        QSStore::setShared(nullptr);
        const QString latest = m_user->path(u"data/Quillstone (opened 2999-01-01).sqlite"_s);
        writeFile(latest, damaged);
        changedIn(10, latest);
        QVERIFY(QSSetup::openStore());
        QCOMPARE(QSStore::shared()->url().fileName(), beside);
    }

    void aDamagedDatabaseIsMendedWithWhatCanBeRead_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QList<int>>("leaves"); // by their place, those below 0 from the end
        QTest::addColumn<bool>("losesDocuments");
        QTest::newRow("a page in the middle") << u"documents"_s << QList<int>{5} << true;
        QTest::newRow("the first and the last page") << u"documents"_s << QList<int>{0, -1} << true;
        QTest::newRow("an index") << u"sqlite_autoindex_profile_1"_s << QList<int>{0} << false;
        QTest::newRow("the search index") << u"search_content"_s << QList<int>{0} << false;
    }

    void aDamagedDatabaseIsMendedWithWhatCanBeRead()
    {
        QFETCH(const QString, table);
        QFETCH(const QList<int>, leaves);
        QFETCH(const bool, losesDocuments);
        fillDatabase();
        const QMap<QString, QString> profile = QSStore::shared()->profile();
        const QList<QSFilledPDF> copies = QSStore::shared()->filledPDFs();
        const QList<QSLinkCheck> checks = QSStore::shared()->linkChecks();
        QMap<qint64, QSDocument> documents = documentsByID();
        QSet<qint64> lost = damage(table, leaves);
        QCOMPARE(!lost.isEmpty(), losesDocuments);
        const QString path = ScratchUser::database();
        const QByteArray damaged = contents(path);

        QVERIFY(!QSSetup::openStore()); // it opens without a word
        QVERIFY(QSSalvage::problem(path));
        const QString told = QSSetup::mendStore();
        QVERIFY2(told.startsWith(u"Your documents database was damaged. "_s), qPrintable(told));
        for (const qint64 id : std::as_const(lost)) {
            documents.remove(id);
        }
        QCOMPARE(documentsByID(), documents);
        QCOMPARE(QSStore::shared()->profile(), profile);
        QCOMPARE(QSStore::shared()->filledPDFs(), copies);
        QCOMPARE(QSStore::shared()->linkChecks(), checks);
        const QString of = losesDocuments ? u" of %1"_s.arg(documentCount) : QString();
        QVERIFY2(told.contains(
                     u"%1%2 documents, 1 filled PDF and 2 answers"_s.arg(documents.size()).arg(of)),
                 qPrintable(told));
        const QString kept = QFileInfo(path).path() + u"/Quillstone (damaged %1).sqlite"_s.arg(
                                                          QSDate::iso(QDate::currentDate()));
        QVERIFY2(told.contains(kept), qPrintable(told));
        QCOMPARE(contents(kept).sliced(pageSize), damaged.sliced(pageSize));

        // the next start is like any other
        QVERIFY(!QSSetup::openStore());
        QCOMPARE(QSSalvage::problem(path), std::nullopt);
        QCOMPARE(documentsByID(), documents);
        QCOMPARE(QSInfo::dataFolder().entryList({u"*.sqlite*"_s}, QDir::Files).size(), 4);
        QCOMPARE(QFile::permissions(path) & QFile::ReadOther, QFile::Permissions());
    }

    void aDamagedDatabaseStaysWhereNoneCanTakeItsPlace()
    {
        fillDatabase();
        (void)damage(u"documents"_s, {5});
        QVERIFY(!QSSetup::openStore());
        const QString path = ScratchUser::database();
        QVERIFY(QDir().mkpath(path + u"-salvaged/in the way"_s));
        const QString told = QSSetup::mendStore();
        QVERIFY2(told.startsWith(u"Your documents database is damaged, and no new one could take "
                                 "its place (The database reported a problem: "_s),
                 qPrintable(told));
        QCOMPARE(QSStore::shared()->url(), QSInfo::databaseURL());
        QCOMPARE(QSStore::shared()->profile().size(), 2);
        QVERIFY(QSInfo::dataFolder().entryList({u"*damaged*"_s}).isEmpty());
    }

    void theProgramMendsADamagedDatabaseBehindItsFirstWindow()
    {
        fillDatabase();
        (void)damage(u"documents"_s, {5});
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression(u"^The documents database is damaged: "_s));
        QSPrefs::setDisclaimerAccepted(true);
        QuillstoneApp program;
        QVERIFY(program.start());
        const auto isTold = [&program] {
            const QList<QLabel *> labels = program.window().findChildren<QLabel *>();
            return std::ranges::any_of(labels, [](const QLabel *label) {
                return label->text().startsWith(u"Your documents database was damaged. "_s);
            });
        };
        QTRY_VERIFY(isTold());
        QCOMPARE(QSSalvage::problem(ScratchUser::database()), std::nullopt);
        QVERIFY(!QSStore::shared()->search(u"Number"_s).isEmpty());
    }

    void withoutAnyDatabaseTheMessageSaysSo()
    {
        const QString blocker = m_user->path(u"file"_s);
        writeFile(blocker, "x");
        QSInfo::setDataFolderOverride(blocker + u"/below"_s);
        const std::optional<QString> said = QSSetup::openStore();
        QVERIFY(said && said->endsWith(u"so nothing can be saved."_s));
        QVERIFY(!QSStore::shared());
    }

    void aSecondStartBringsTheFirstForward()
    {
        const QString folder = QSInfo::dataFolder().path();
        auto first = std::make_unique<QSSingleInstance>(folder);
        QCOMPARE(first->standing(), Standing::first);
        const auto others =
            QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        QVERIFY(!(QFile::permissions(folder + u"/Quillstone.lock"_s) & others));
        QSignalSpy forward(first.get(), &QSSingleInstance::broughtForward);
        QCOMPARE(secondStart(folder), Standing::second);
        QCOMPARE(forward.count(), 1);
        // another data folder is another program
        QVERIFY(QDir().mkdir(m_user->path(u"other"_s)));
        QCOMPARE(QSSingleInstance(m_user->path(u"other"_s)).standing(), Standing::first);
        first.reset();
        QCOMPARE(QSSingleInstance(folder).standing(), Standing::first);
    }

    void aLockThatNobodyAnswersForIsNoDeadEnd_data()
    {
        QTest::addColumn<QByteArray>("lock");
        QTest::newRow("a crash before anything was written") << QByteArray();
        QTest::newRow("copied from another computer")
            << QByteArray("4711\nquillstone\nelsewhere\n\n0000-another-start\n");
    }

    void aLockThatNobodyAnswersForIsNoDeadEnd()
    {
        QFETCH(const QByteArray, lock);
        const QString folder = QSInfo::dataFolder().path();
        writeFile(folder + u"/Quillstone.lock"_s, lock);
        QSSingleInstance instance(folder);
        QCOMPARE(instance.standing(), Standing::unsure);
        QCOMPARE(contents(folder + u"/Quillstone.lock"_s), lock);
        instance.takeOver();
        QCOMPARE(instance.standing(), Standing::first);
        QSignalSpy forward(&instance, &QSSingleInstance::broughtForward);
        QCOMPARE(secondStart(folder), Standing::second);
        QCOMPARE(forward.count(), 1);
    }

    void aCallerWithoutTheLineIsSentAway()
    {
        const QString folder = QSInfo::dataFolder().path();
        const QSSingleInstance first(folder);
        QSignalSpy forward(&first, &QSSingleInstance::broughtForward);
        const QDir sockets(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation));
        const QFileInfoList found =
            sockets.entryInfoList({u"quillstone-*"_s}, QDir::System, QDir::Time);
        QVERIFY(!found.isEmpty());
        QLocalSocket caller;
        caller.connectToServer(found.constFirst().filePath());
        QVERIFY(caller.waitForConnected());
        caller.write(QByteArray(1'000'000, 'x'));
        QTRY_COMPARE(caller.state(), QLocalSocket::UnconnectedState);
        QCOMPARE(forward.count(), 0);
    }

private:
    using Standing = QSSingleInstance::Standing;

    /// As another process would start: it waits while the first one goes on.
    static Standing secondStart(const QString &folder)
    {
        auto standing = Standing::unsure;
        std::unique_ptr<QThread> process(
            QThread::create([&] { standing = QSSingleInstance(folder).standing(); }));
        QSignalSpy ended(process.get(), &QThread::finished);
        process->start();
        ended.wait(20'000);
        process->wait();
        return standing;
    }

    static constexpr int documentCount = 200;
    static constexpr int pageSize = 4096;

    /// The program's store, with documents over many pages; the search index has them all.
    static void fillDatabase()
    {
        QVERIFY(!QSSetup::openStore());
        QSStore &store = *QSStore::shared();
        store.fillSearchIndex();
        for (int number = 1; number <= documentCount; ++number) {
            store.save({.id = {},
                        .templateID = QSTemplates::all().constFirst().id,
                        .templateVersion = {},
                        .title = u"Number %1"_s.arg(number),
                        .values = {{u"text"_s, QString::number(number).repeated(100)}},
                        .state = {},
                        .created = {},
                        .modified = {}});
        }
        store.saveFilledPDF(u"us-w-9"_s, u"W-9"_s, "%PDF");
        store.saveProfile({{u"city"_s, u"Pueblo"_s}, {u"fullName"_s, u"Jordan"_s}});
        store.recordLinkCheck({.url = u"https://vell.example/"_s,
                               .checked = QDateTime::fromSecsSinceEpoch(1, Qt::UTC),
                               .status = 200,
                               .ok = true,
                               .finalURL = {},
                               .contentType = {},
                               .note = {}});
    }

    static void changedIn(int seconds, const QString &path)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite) &&
                file.setFileTime(QDateTime::currentDateTime().addSecs(seconds),
                                 QFileDevice::FileModificationTime));
    }

    static QMap<qint64, QSDocument> documentsByID()
    {
        QMap<qint64, QSDocument> all;
        for (const QSDocument &document : QSStore::shared()->documents()) {
            all.insert(*document.id, document);
        }
        return all;
    }

    /// Closes the store and writes over leaf pages of a table or index. The ids of the documents
    /// that were in them.
    static QSet<qint64> damage(const QString &table, const QList<int> &leaves)
    {
        QSStore::setShared(nullptr);
        QByteArray bytes = contents(ScratchUser::database());
        SQLiteDB db(ScratchUser::database());
        const QList<SQLRow> pages =
            db.query(u"SELECT pageno, ncell FROM dbstat WHERE name = ? AND pagetype = 'leaf' "
                     "ORDER BY path"_s,
                     {table});
        QList<qint64> ids; // in the order of the pages
        for (const SQLRow &row : db.query(u"SELECT id FROM documents ORDER BY id"_s)) {
            ids.append(row.intValue(u"id"_s).value());
        }
        QSet<qint64> lost;
        for (const int leaf : leaves) {
            const auto place = leaf < 0 ? pages.size() + leaf : leaf;
            qint64 before = 0;
            for (int page = 0; page < place; ++page) {
                before += pages.at(page).intValue(u"ncell"_s).value();
            }
            if (table == u"documents"_s) {
                const auto count = pages.at(place).intValue(u"ncell"_s).value();
                const QList<qint64> gone = ids.sliced(before, count);
                lost.unite(QSet<qint64>(gone.begin(), gone.end()));
            }
            const qint64 at = (pages.at(place).intValue(u"pageno"_s).value() - 1) * pageSize;
            bytes.replace(at, pageSize, QByteArray(pageSize, 'x'));
        }
        db.close();
        writeFile(ScratchUser::database(), bytes);
        return lost;
    }

    std::unique_ptr<ScratchUser> m_user;
};

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
