#include "QSClock.h"
#include "QSDate.h"
#include "QSDispatch.h"
#include "QSSetup.h"
#include "QSSingleInstance.h"
#include "QSStore.h"
#include "QSThemes.h"
#include "ScratchUser.h"
#include "TestFiles.h"
#include "VellAbout.h"

#include <QLocalSocket>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>
#include <QThread>

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

    void withoutAnyDatabaseTheMessageSaysSo()
    {
        const QString blocker = m_user->path(u"file"_s);
        writeFile(blocker, "x");
        QSInfo::setDataFolderOverride(blocker + u"/below"_s);
        const std::optional<QString> said = QSSetup::openStore();
        QVERIFY(said && said->contains(u"so nothing can be saved."_s));
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

    static void changedIn(int seconds, const QString &path)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite) &&
                file.setFileTime(QDateTime::currentDateTime().addSecs(seconds),
                                 QFileDevice::FileModificationTime));
    }

    std::unique_ptr<ScratchUser> m_user;
};

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
