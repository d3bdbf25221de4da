#include "BackupFixture.h"
#include "BackupJSON.h"
#include "QSRestoreFolder.h"
#include "QSSalvage.h"
#include "SmallDisk.h"

#include <QCoreApplication>
#include <QRandomGenerator>
#include <QSet>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr const char *restoreLoopSwitch = "--restore-loop";

/// Restores two backups in turns for as long as it lives.
int restoreLoop(const QStringList &backups)
{
    QSStore store(QSInfo::databaseURL(), QSStore::Indexing::later);
    std::puts("ready");
    std::fflush(stdout);
    while (true) {
        for (const QString &backup : backups) {
            QSBackup::restore(QSBackup::stage(QUrl::fromLocalFile(backup), store.url()), store);
        }
    }
}

/// A backup with the mark in the profile and in one of its file names; the other names are the same
/// for every mark, and the bytes behind them are not.
QByteArray markedBackup(const QByteArray &mark)
{
    QByteArray pdfs;
    for (qsizetype number = 0; number < 30; ++number) {
        pdfs += R"({"created": 1, "modified": 1, "entryID": "", "title": "", "fileName": ")" +
                QByteArray::number(number) + R"(.pdf", "data": ")" +
                ("%PDF" + mark.repeated(number * 999)).toBase64() + R"("},)";
    }
    const QByteArray list = R"("filledPDFs": [)";
    return sampleWith(list, list + pdfs)
        .replace("Denver", mark)
        .replace("second.pdf", mark + ".pdf");
}

/// Says nothing of the program that made it, nor of the order of PDFs of one moment and the names
/// of their files.
QSBackup::File comparable(QSBackup::File state)
{
    state.app.clear();
    for (QSBackup::PDF &pdf : state.filledPDFs) {
        pdf.fileName.clear();
    }
    std::ranges::sort(state.filledPDFs, {},
                      [](const QSBackup::PDF &pdf) { return std::pair(pdf.data, pdf.title); });
    return state;
}
} // namespace

class TestBackupFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_user = std::make_unique<BackupFixture>(); }
    void cleanup() { m_user.reset(); }

    void aBackupIsOfOneMoment();
    void aFailedBackupLeavesThePlace();
    void failuresOfTheDiskAreOfThatKind();
    void aFailedRestoreLeavesTheStore_data();
    void aFailedRestoreLeavesTheStore();
    void stops();
    void leavesFilesThatNoRecordNames();
    void finishesWhatWasCommitted();
    void aNameTakenAfterTheCommitIsLeft();
    void aNoteThatCannotBeReadIsNotNone();
    void aNoteComesAlongWhereverItIsFrom_data();
    void aNoteComesAlongWhereverItIsFrom();
    void isWholeWhenKilled();

private:
    std::unique_ptr<BackupFixture> m_user;
};

void TestBackupFaults::aBackupIsOfOneMoment()
{
    m_user->fill(u"x"_s);
    const QSBackup::File before = m_user->state();
    const QString path = m_user->path(u"busy.qsbackup"_s);
    QList<int> parts;
    const auto disturb = [&](int part, int of) {
        parts.append(part);
        QCOMPARE(of, 6);
        for (const QSBackup::PDF &pdf : before.filledPDFs) { // all were read when 3 parts are done
            writeFile(filledPath(pdf.fileName), part < 3 ? pdf.data : "%PDF later");
        }
    };
    QCOMPARE(
        QSBackup::write(QSBackup::contents(m_user->store()), QUrl::fromLocalFile(path), disturb),
        0);
    QCOMPARE(parts, (QList<int>{0, 1, 2, 3, 4, 5}));
    QCOMPARE(stateOf(contents(path)), before);
}

void TestBackupFaults::aFailedBackupLeavesThePlace()
{
    m_user->fill(u"x"_s);
    QCOMPARE(sentence([&] { m_user->backUp(u"/nowhere/a.qsbackup"_s); }),
             u"The file could not be written: No such file or directory"_s);
    const QUrl folderURL = QUrl::fromLocalFile(QSInfo::dataFolder().path());
    QCOMPARE(sentence([&] { QSBackup::write(m_user->store(), folderURL); }),
             u"The file could not be written: Is a directory"_s);

    const QString folder = m_user->path(u"disk"_s);
    const SmallDisk disk(folder, 64 * 1024);
    if (!disk.mounted()) {
        QSKIP("This process may not mount a small file system");
    }
    writeFile(folder + u"/a.qsbackup"_s, "an older one");
    const QMap<QString, QByteArray> before = tree(folder);
    QCOMPARE(sentence([&] { m_user->backUp(folder + u"/a.qsbackup"_s); }),
             u"The file could not be written: No space left on device"_s);
    QCOMPARE(tree(folder), before);
}

void TestBackupFaults::failuresOfTheDiskAreOfThatKind()
{
    const QUrl database = m_user->store().url();
    const auto staged = [&database](const QString &path) {
        return [path, &database] { (void)QSBackup::stage(QUrl::fromLocalFile(path), database); };
    };
    QVERIFY(failsAtTheDisk([this] { m_user->backUp(u"/nowhere/a.qsbackup"_s); }));
    QVERIFY(failsAtTheDisk(staged(u"/nowhere/a.qsbackup"_s)));
    QVERIFY(failsAtTheDisk(staged(u"/proc/self/mem"_s))); // it opens, and can't be read
    QFile full(u"/dev/full"_s);
    QVERIFY(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    QVERIFY(failsAtTheDisk([&full] { BackupJSON::write({}, {}, full); }));

    QVERIFY(QSInfo::filledFolder().removeRecursively());
    writeFile(QSInfo::dataFolder().filePath(u"Filled PDFs"_s), "no folder");
    QVERIFY(failsAtTheDisk([this] { m_user->restore(sample()); }));
    QVERIFY(failsAtTheDisk([this] { m_user->store().saveFilledPDF({}, {}, "%PDF"); }));
}

void TestBackupFaults::aFailedRestoreLeavesTheStore_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::addColumn<QString>("refusal");
    QTest::newRow("full disk") << u"disk"_s
                               << u"The filled PDFs could not be put in place: "
                                  "No space left on device"_s;
    QTest::newRow("a folder of a file's name")
        << u"folder"_s
        << u"The filled PDFs could not be put in place: \"second.pdf\" is a folder there."_s;
    QTest::newRow("the database refuses")
        << u"CREATE TRIGGER no BEFORE INSERT ON filled_pdfs BEGIN SELECT RAISE(ABORT, 'no'); END"_s
        << u"The database reported a problem: no"_s;
}

void TestBackupFaults::aFailedRestoreLeavesTheStore()
{
    QFETCH(const QString, obstacle);
    QFETCH(const QString, refusal);
    std::unique_ptr<SmallDisk> disk;
    QByteArray bytes = sample();
    if (obstacle == u"disk"_s) {
        disk = std::make_unique<SmallDisk>(QSInfo::filledFolder().path(), 200'000);
        if (!disk->mounted()) {
            QSKIP("This process may not mount a small file system");
        }
        bytes = sampleWith("JVBERg==", ("%PDF" + QByteArray(200'000, 'x')).toBase64());
    }
    m_user->fill(u"x"_s);
    if (obstacle == u"folder"_s) {
        QVERIFY(QSInfo::filledFolder().mkdir(u"second.pdf"_s));
    } else if (!disk) {
        m_user->store().db().exec(obstacle);
    }
    const QSBackup::File before = m_user->state();
    const QMap<QString, QByteArray> files = tree(QSInfo::filledFolder().path());
    QCOMPARE(sentence([&] { m_user->restore(bytes); }), refusal);
    QCOMPARE(m_user->state(), before);
    QCOMPARE(tree(QSInfo::filledFolder().path()), files);
    QVERIFY(!m_user->store().search(u"x0"_s).isEmpty());
}

void TestBackupFaults::stops()
{
    m_user->fill(u"x"_s);
    std::stop_source stop;
    const auto stopLate = [&](int part, int) {
        if (part > 2) {
            stop.request_stop();
        }
    };
    const QString path = m_user->path(u"a.qsbackup"_s);
    QCOMPARE(sentence([&] {
                 QSBackup::write(QSBackup::contents(m_user->store()), QUrl::fromLocalFile(path),
                                 stopLate, stop.get_token());
             }),
             u"The backup was stopped."_s);
    QVERIFY(!QFile::exists(path));
    writeFile(path, sample());
    QCOMPARE(sentence([&] {
                 (void)QSBackup::stage(QUrl::fromLocalFile(path), m_user->store().url(), {},
                                       stop.get_token());
             }),
             u"The restore was stopped."_s);
    QCOMPARE(foldersAmongFilled(), QStringList());
}

void TestBackupFaults::leavesFilesThatNoRecordNames()
{
    const QSBackup::File expected = comparable(stateOf(sample()));
    writeFile(filledPath(u"second.pdf"_s), "%PDF of another database");
    QSet<QString> names;
    for (int round = 0; round < 2; ++round) { // its own files of the first round give way then
        m_user->restore(sample());
        QCOMPARE(contents(filledPath(u"second.pdf"_s)), "%PDF of another database");
        QCOMPARE(comparable(m_user->state()), expected);
        for (const QSFilledPDF &record : m_user->store().filledPDFs()) {
            names.insert(record.fileName);
        }
    }
    QVERIFY(names.contains(u"0F8FAD5B-D9CB-469F-A165-70867728950E.pdf"_s));
    QVERIFY(!names.contains(u"second.pdf"_s));
    QCOMPARE(foldersAmongFilled(), QStringList());
}

void TestBackupFaults::finishesWhatWasCommitted()
{
    const QSFilledPDF record = m_user->store().saveFilledPDF(u"us-w-9"_s, u"W-9"_s, "%PDF old");
    const QString path = filledPath(record.fileName);
    const auto commit = [&](const QByteArray &pdf) {
        QSRestoreFolder folder(ScratchUser::database());
        folder.add(record.fileName, pdf);
        m_user->store().db().transaction([&] { (void)folder.noteIn(m_user->store().db()); });
        folder.keep();
    };
    commit("%PDF restored");
    QTemporaryDir other(filledPath(u".Other.sqlite-restore-XXXXXX"_s));
    QTemporaryDir leftover(filledPath(u".Quillstone.sqlite-restore-XXXXXX"_s));
    m_user->openAgain();
    QCOMPARE(contents(path), "%PDF restored");
    QCOMPARE(foldersAmongFilled(), QStringList{QFileInfo(other.path()).fileName()});

    commit("%PDF restored again"); // and then the program goes on instead of being started anew
    m_user->store().saveFilledPDF(u"us-w-9"_s, u"W-9"_s, "%PDF new", record);
    m_user->store().finishRestore();
    QCOMPARE(contents(path), "%PDF new");
}

void TestBackupFaults::aNameTakenAfterTheCommitIsLeft()
{
    {
        QSRestoreFolder folder(ScratchUser::database());
        folder.add(u"late.pdf"_s, "%PDF restored");
        SQLiteDB &db = m_user->store().db();
        db.transaction([&] {
            QCOMPARE(folder.noteIn(db).value(u"late.pdf"_s), u"late.pdf"_s);
            db.exec(u"INSERT INTO filled_pdfs VALUES (7, '', '', 'late.pdf', 0, 0)"_s);
        });
        folder.keep();
    }
    writeFile(filledPath(u"late.pdf"_s), "%PDF of another database");
    m_user->openAgain();
    QCOMPARE(contents(filledPath(u"late.pdf"_s)), "%PDF of another database");
    const QSFilledPDF record = m_user->store().filledPDFs().constFirst();
    QVERIFY(record.fileName != u"late.pdf"_s);
    QCOMPARE(contents(filledPath(record.fileName)), "%PDF restored");
    QCOMPARE(foldersAmongFilled(), QStringList());
}

void TestBackupFaults::aNoteThatCannotBeReadIsNotNone()
{
    m_user->close();
    SQLiteDB other(ScratchUser::database());
    other.exec(u"PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE"_s);
    SQLiteDB db(ScratchUser::database());
    db.exec(u"PRAGMA busy_timeout = 0"_s);
    // Without a failure, all that lies ready would be cleared away next.
    QCOMPARE(sentence([&db] { QSRestoreFolder::finish(db); }),
             u"The database reported a problem: database is locked"_s);
}

void TestBackupFaults::aNoteComesAlongWhereverItIsFrom_data()
{
    QTest::addColumn<bool>("older");
    QTest::newRow("this version's") << false;
    QTest::newRow("one that names the folder alone") << true;
}

void TestBackupFaults::aNoteComesAlongWhereverItIsFrom()
{
    QFETCH(const bool, older);
    QString folder;
    {
        QSRestoreFolder ready(ScratchUser::database());
        ready.add(u"ready.pdf"_s, "%PDF ready");
        (void)ready.noteIn(m_user->store().db());
        ready.keep();
        folder = foldersAmongFilled().value(0);
    }
    if (older) {
        m_user->store().db().exec(u"DROP TABLE pending_restore; CREATE TABLE pending_restore "
                                  "(folder TEXT NOT NULL)"_s);
        m_user->store().db().run(u"INSERT INTO pending_restore (folder) VALUES (?)"_s, {folder});
    }
    QSStore salvaged(QUrl::fromLocalFile(m_user->path(u"salvaged.sqlite"_s)));
    (void)QSSalvage::copy(ScratchUser::database(), salvaged.db());
    QSRestoreFolder::finish(salvaged.db());
    QCOMPARE(contents(filledPath(u"ready.pdf"_s)), "%PDF ready");
    QCOMPARE(foldersAmongFilled(), QStringList());
}

void TestBackupFaults::isWholeWhenKilled()
{
    QStringList paths;
    QList<QSBackup::File> states;
    for (const QByteArray mark : {"one", "two"}) {
        states.append(comparable(stateOf(markedBackup(mark))));
        paths.append(m_user->path(QString::fromUtf8(mark)));
        writeFile(paths.last(), markedBackup(mark));
    }
    m_user->restoreFile(paths.constFirst());
    QMap<qsizetype, int> seen;
    int cutShort = 0;
    for (int round = 0; round < 110; ++round) {
        m_user->close();
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {QLatin1StringView(restoreLoopSwitch), QSInfo::dataFolder().path(),
                     paths.at(round % 2), paths.at(1 - round % 2)});
        QVERIFY(child.waitForReadyRead(60'000));
        QVERIFY(!child.waitForFinished(QRandomGenerator::global()->bounded(150)));
        child.kill();
        QVERIFY(child.waitForFinished());
        QCOMPARE(child.exitStatus(), QProcess::CrashExit);
        cutShort += shell(u"SELECT 1 FROM pending_restore"_s).isEmpty() ? 0 : 1;

        m_user->openAgain();
        const qsizetype state = states.indexOf(comparable(m_user->state()));
        QVERIFY(state >= 0);
        ++seen[state];
        QCOMPARE(foldersAmongFilled(), QStringList());
    }
    QCOMPARE(seen.size(), 2);
    QCOMPARE(shell(u"PRAGMA integrity_check"_s), u"ok"_s);
    qInfo("%d times the one, %d times the other, %d finished by the next start", seen.value(0),
          seen.value(1), cutShort);
}

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 5 && arguments.at(1) == QLatin1StringView(restoreLoopSwitch)) {
        QSInfo::setDataFolderOverride(arguments.at(2));
        return restoreLoop(arguments.mid(3));
    }
    TestBackupFaults test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_backupfaults.moc"
