#include "ProgramFixture.h"
#include "TestFiles.h"

#include <QImage>
#include <QSet>

using namespace Qt::Literals::StringLiterals;

/// The built executable as processes of its own.
class TestProgram final : public QObject, private ProgramFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        beginProgram();
        m_environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    }

    void theSecondStartEndsAndAKilledOneLeavesNoLock()
    {
        QProcess first;
        start(first);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(database()), 20000);
        const Ended second = run({});
        QCOMPARE(second.status, 0);
        QCOMPARE(second.output, QString());
        QCOMPARE(first.state(), QProcess::Running);

        first.kill();
        QVERIFY(first.waitForFinished(20000));
        QProcess third;
        start(third);
        QVERIFY(!third.waitForFinished(2000)); // it is the first again and goes on
        third.terminate();
        third.waitForFinished(20000);
    }

    void aStartKnowsNoFaultsWhateverTheEnvironmentSays()
    {
        QCOMPARE(run({u"--qs-child-write"_s, database()}).status, 0); // something to lose
        m_environment.insert(u"QS_SELFTEST_MUTATE"_s, u"opening-forgets-documents"_s);
        QProcess running;
        start(running);
        // The folder of the drafts comes after all that opens the database.
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(dataFolder() + u"/Drafts"_s), 20000);
        running.terminate();
        QVERIFY(running.waitForFinished(20000));
        m_environment.remove(u"QS_SELFTEST_MUTATE"_s);
        QVERIFY(run({u"--qs-child-read"_s, database()}).output.startsWith(u"DOCS|1|PDFS|1|"_s));
    }

    void dataIsForItsOwnerAlone()
    {
        QProcess running;
        start(running);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(database()), 20000);
        const auto others =
            QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther;
        QVERIFY(!(QFile::permissions(dataFolder()) & others));
        for (const QFileInfo &file : QDir(dataFolder()).entryInfoList(QDir::Files)) {
            if (file.fileName().startsWith(u"Quillstone.sqlite"_s)) {
                QVERIFY2(!(file.permissions() & others), qPrintable(file.fileName()));
            }
        }
        running.kill();
        running.waitForFinished(20000);
    }

    void aMissingDisplayIsSaidInASentence()
    {
        m_environment.remove(u"QT_QPA_PLATFORM"_s);
        m_environment.remove(u"DISPLAY"_s);
        m_environment.remove(u"WAYLAND_DISPLAY"_s);
        const Ended ended = run({});
        QCOMPARE(ended.status, 1);
        QVERIFY2(ended.errors.contains(u"needs a display"_s), qPrintable(ended.errors));
    }

    void snapshotsNeedNoDisplayAndTouchNoUserData()
    {
        m_environment.remove(u"QT_QPA_PLATFORM"_s);
        m_environment.remove(u"DISPLAY"_s);
        const QString album = m_home->filePath(u"out"_s);
        QCOMPARE(run({u"--qs-snapshot"_s, album}).status, 0);
        const QStringList pictures = QDir(album).entryList({u"*.png"_s});
        QCOMPARE(pictures.size(), 16); // eight screens, and what else can be shown
        for (const QString &name : pictures) {
            const QImage picture(QDir(album).filePath(name));
            QVERIFY2(picture.width() > 400, qPrintable(name));
            QVERIFY2(colours(picture) > 20, qPrintable(name)); // more than an empty page
        }
        for (const QString &name : {u"sample.pdf"_s, u"sample.docx"_s, u"sample.rtf"_s}) {
            QVERIFY2(QFileInfo(QDir(album).filePath(name)).size() > 2000, qPrintable(name));
        }
        QVERIFY(!QDir(dataFolder()).exists());

        const QString again = m_home->filePath(u"again"_s);
        const QString larger = m_home->filePath(u"larger"_s);
        const QStringList options = {u"--theme"_s, u"rose-gold"_s, u"--zoom"_s,
                                     u"150"_s,     u"--state"_s,   u"TX"_s};
        for (const QStringList &arguments : {QStringList{again}, QStringList{larger} + options}) {
            QCOMPARE(run(QStringList{u"--qs-snapshot"_s} + arguments).status, 0);
        }
        for (const QString &name : pictures) {
            const QByteArray first = contents(QDir(album).filePath(name));
            QVERIFY2(contents(QDir(again).filePath(name)) == first, qPrintable(name));
            QVERIFY2(contents(QDir(larger).filePath(name)) != first, qPrintable(name));
        }
    }

    void snapshotArgumentsThatMakeNoSenseAreRefused_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("sentence");
        QTest::newRow("no folder") << QStringList() << u"The folder to write into"_s;
        QTest::newRow("no value") << QStringList{u"out"_s, u"--theme"_s}
                                  << u"--theme needs a value after it."_s;
        QTest::newRow("unknown theme")
            << QStringList{u"out"_s, u"--theme"_s, u"pink"_s} << u"There is no theme \"pink\"."_s;
        QTest::newRow("zoom out of range")
            << QStringList{u"out"_s, u"--zoom"_s, u"300"_s} << u"from 85 to 200"_s;
        QTest::newRow("unknown state") << QStringList{u"out"_s, u"--state"_s, u"ZZ"_s}
                                       << u"The directory has no state \"ZZ\"."_s;
        QTest::newRow("two folders")
            << QStringList{u"out"_s, u"more"_s} << u"\"more\" is not understood."_s;
    }
    void snapshotArgumentsThatMakeNoSenseAreRefused()
    {
        QFETCH(const QStringList, arguments);
        QFETCH(const QString, sentence);
        const Ended ended = run(QStringList{u"--qs-snapshot"_s} + arguments);
        QCOMPARE(ended.status, 2);
        QVERIFY(ended.errors.contains(sentence));
    }

    void theWindowOpensWithoutResources()
    {
        QProcess lonely; // no templates, no directory, no crash
        start(lonely, {}, lonelyProgram());
        QVERIFY(!lonely.waitForFinished(3000));
        lonely.terminate();
        QVERIFY(lonely.waitForFinished(20000));
        QVERIFY(QFile::exists(database()));
    }

private:
    [[nodiscard]] QString dataFolder() const { return m_home->filePath(u"data"_s); }
    [[nodiscard]] QString database() const { return dataFolder() + u"/Quillstone.sqlite"_s; }

    static int colours(const QImage &picture)
    {
        QSet<QRgb> seen;
        for (int y = 0; y < picture.height(); y += 3) {
            for (int x = 0; x < picture.width(); x += 3) {
                seen.insert(picture.pixel(x, y));
            }
        }
        return static_cast<int>(seen.size());
    }
};

QTEST_GUILESS_MAIN(TestProgram)
#include "tst_program.moc"
