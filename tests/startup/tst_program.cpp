#include "QSStore.h"

#include "TestFiles.h"

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

/// The built executable as processes of its own.
class TestProgram final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        m_environment.insert(u"QS_DATA_DIR"_s, dataFolder());
        m_environment.insert(u"XDG_CONFIG_HOME"_s, m_home->filePath(u"config"_s));
        m_environment.insert(u"XDG_RUNTIME_DIR"_s, m_home->path());
    }

    void theSecondStartEndsAndAKilledOneLeavesNoLock()
    {
        QProcess first;
        start(first, {});
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(database()), 20000);
        QProcess second;
        start(second, {});
        QVERIFY(second.waitForFinished(20000));
        QCOMPARE(second.exitCode(), 0);
        QCOMPARE(second.readAllStandardOutput(), QByteArray());
        QCOMPARE(first.state(), QProcess::Running);

        first.kill();
        QVERIFY(first.waitForFinished(20000));
        QProcess third;
        start(third, {});
        QVERIFY(!third.waitForFinished(2000)); // it is the first again and goes on
        third.terminate();
        third.waitForFinished(20000);
    }

    void dataIsForItsOwnerAlone()
    {
        QProcess program;
        start(program, {});
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(database()), 20000);
        const auto others =
            QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther;
        QVERIFY(!(QFile::permissions(dataFolder()) & others));
        for (const QFileInfo &file : QDir(dataFolder()).entryInfoList(QDir::Files)) {
            if (file.fileName().startsWith(u"Quillstone.sqlite"_s)) {
                QVERIFY2(!(file.permissions() & others), qPrintable(file.fileName()));
            }
        }
        program.kill();
        program.waitForFinished(20000);
    }

    void aMissingDisplayIsSaidInASentence()
    {
        m_environment.remove(u"QT_QPA_PLATFORM"_s);
        m_environment.remove(u"DISPLAY"_s);
        m_environment.remove(u"WAYLAND_DISPLAY"_s);
        QProcess program;
        start(program, {});
        QVERIFY(program.waitForFinished(20000));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 1);
        QVERIFY(program.readAllStandardError().contains("needs a display"));
    }

    void snapshotsNeedNoDisplayAndTouchNoUserData()
    {
        m_environment.remove(u"QT_QPA_PLATFORM"_s);
        m_environment.remove(u"DISPLAY"_s);
        const QString album = m_home->filePath(u"out"_s);
        QProcess program;
        start(program, {u"--qs-snapshot"_s, album});
        QVERIFY(program.waitForFinished(120000));
        QCOMPARE(program.exitCode(), 0);
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
            QProcess run;
            start(run, QStringList{u"--qs-snapshot"_s} + arguments);
            QVERIFY(run.waitForFinished(120000));
            QCOMPARE(run.exitCode(), 0);
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
        QTest::addColumn<QByteArray>("sentence");
        QTest::newRow("no folder") << QStringList() << QByteArray("The folder to write into");
        QTest::newRow("no value") << QStringList{u"out"_s, u"--theme"_s}
                                  << QByteArray("--theme needs a value after it.");
        QTest::newRow("unknown theme") << QStringList{u"out"_s, u"--theme"_s, u"pink"_s}
                                       << QByteArray("There is no theme \"pink\".");
        QTest::newRow("zoom out of range")
            << QStringList{u"out"_s, u"--zoom"_s, u"300"_s} << QByteArray("from 85 to 200");
        QTest::newRow("unknown state") << QStringList{u"out"_s, u"--state"_s, u"ZZ"_s}
                                       << QByteArray("The directory has no state \"ZZ\".");
        QTest::newRow("two folders")
            << QStringList{u"out"_s, u"more"_s} << QByteArray("\"more\" is not understood.");
    }
    void snapshotArgumentsThatMakeNoSenseAreRefused()
    {
        QFETCH(const QStringList, arguments);
        QProcess program;
        start(program, QStringList{u"--qs-snapshot"_s} + arguments);
        QVERIFY(program.waitForFinished(20000));
        QCOMPARE(program.exitCode(), 2);
        QFETCH(const QByteArray, sentence);
        QVERIFY(program.readAllStandardError().contains(sentence));
    }

    void theWindowOpensWithoutResources()
    {
        // a copy of the executable away from its resources: no templates, no directory, no crash
        const QString lonely = m_home->filePath(u"quillstone"_s);
        QVERIFY(QFile::copy(executable(), lonely));
        QProcess program;
        program.setProcessEnvironment(m_environment);
        program.start(lonely, {});
        QVERIFY(!program.waitForFinished(3000));
        program.terminate();
        QVERIFY(program.waitForFinished(20000));
        QVERIFY(QFile::exists(database()));
    }

private:
    [[nodiscard]] static QString executable()
    {
        return QCoreApplication::applicationDirPath() + u"/quillstone"_s;
    }
    [[nodiscard]] QString dataFolder() const { return m_home->filePath(u"data"_s); }
    [[nodiscard]] QString database() const { return dataFolder() + u"/Quillstone.sqlite"_s; }

    void start(QProcess &process, const QStringList &arguments) const
    {
        process.setProcessEnvironment(m_environment);
        process.start(executable(), arguments);
        QVERIFY(process.waitForStarted(20000));
    }

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

    std::unique_ptr<QTemporaryDir> m_home;
    QProcessEnvironment m_environment;
};

QTEST_GUILESS_MAIN(TestProgram)
#include "tst_program.moc"
