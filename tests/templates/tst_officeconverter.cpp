#include "OfficeConverter.h"
#include "QSError.h"

#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <atomic>
#include <memory>
#include <vector>

/// Most cases run a script in LibreOffice's place, which finds its output's path in $out and a
/// folder that outlives the conversion in $kept.
class TestOfficeConverter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void success();
    void failures_data();
    void failures();
    void programThatDoesNotStart();
    void timeLimitEndsTheWholeProcessGroup();
    void childrenOfAFailureEnd();
    void brokenProfileIsReplacedOnce();
    void profileIsKeptAfterSuccess();
    void oneConversionAtATime();
    void removesWhatACrashLeft();
    void convertsWithLibreOffice();
    void cancelAllEndsConversions(); // the last, since it is for good

private:
    void useScript(const QByteArray &commands);
    [[nodiscard]] QString kept(const QString &name) const { return m_home->filePath(name); }
    [[nodiscard]] QByteArray keptText(const QString &name) const;
    [[nodiscard]] static QDir officeFolder();
    [[nodiscard]] static QString convertFailure(const QString &target = QStringLiteral("docx"));
    [[nodiscard]] static bool isRunning(const QByteArray &pid);

    std::unique_ptr<QTemporaryDir> m_home;
    std::unique_ptr<QTemporaryDir> m_temp;
};

void TestOfficeConverter::initTestCase()
{
    QCoreApplication::setApplicationName(QStringLiteral("tst_officeconverter"));
}

void TestOfficeConverter::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    m_temp = std::make_unique<QTemporaryDir>();
    qputenv("XDG_CACHE_HOME", m_home->filePath(QStringLiteral("cache")).toUtf8());
    qputenv("TMPDIR", m_temp->path().toUtf8());
}

void TestOfficeConverter::cleanup()
{
    OfficeConverter::setProgramOverride({});
    OfficeConverter::setTimeLimit(OfficeConverter::defaultTimeLimit);
    const QStringList left =
        QDir(m_temp->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    qunsetenv("TMPDIR");
    QVERIFY2(left.isEmpty(), qPrintable(left.join(u' ')));
    QCOMPARE(officeFolder().entryList({QStringLiteral("conversion-*")}), QStringList());
}

void TestOfficeConverter::useScript(const QByteArray &commands)
{
    QFile script(kept(QStringLiteral("office")));
    QVERIFY(script.open(QIODevice::WriteOnly | QIODevice::Truncate));
    script.write("#!/bin/sh\n"
                 "kept='" +
                 m_home->path().toUtf8() +
                 "'\n"
                 "while [ $# -gt 1 ]; do\n"
                 "  case $1 in\n"
                 "    --outdir) folder=$2;;\n"
                 "    --convert-to) target=${2%%:*};;\n"
                 "    -env:UserInstallation=*) profile=${1#*=file://};;\n"
                 "  esac\n"
                 "  shift\n"
                 "done\n"
                 "in=$1\n"
                 "out=$folder/document.$target\n" +
                 commands + "\n");
    script.close();
    QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    OfficeConverter::setProgramOverride(script.fileName());
}

QByteArray TestOfficeConverter::keptText(const QString &name) const
{
    QFile file(kept(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray("(no file)");
}

QDir TestOfficeConverter::officeFolder()
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::CacheLocation) +
                QStringLiteral("/office"));
}

QString TestOfficeConverter::convertFailure(const QString &target)
{
    try {
        return QStringLiteral("no failure, but ") +
               QString::fromUtf8(OfficeConverter::convert("document", target));
    } catch (const QSError &error) {
        const bool disk = error.errorCase() == QSError::Case::io;
        const bool invalid = error.errorCase() == QSError::Case::invalid;
        return disk      ? QStringLiteral("disk: ") + error.payload()
               : invalid ? error.payload()
                         : QStringLiteral("another case");
    }
}

/// A process that has ended but was not yet waited for by its new parent is not running.
bool TestOfficeConverter::isRunning(const QByteArray &pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(QString::fromLatin1(pid)));
    return stat.open(QIODevice::ReadOnly) && !stat.readAll().contains(") Z ");
}

void TestOfficeConverter::success()
{
    qputenv("DISPLAY", ":99");
    useScript("echo \"${DISPLAY-none}\" > $kept/display\n"
              "stat -c %a $folder > $kept/rights\n"
              "printf '{\\\\rtf1 ' > $out; cat $in >> $out");
    QCOMPARE(OfficeConverter::convert("bytes \xC3\xA9", QStringLiteral("rtf:Rich Text Format")),
             QByteArray("{\\rtf1 bytes \xC3\xA9"));
    QCOMPARE(keptText(QStringLiteral("display")), QByteArray("none"));
    QCOMPARE(keptText(QStringLiteral("rights")), QByteArray("700"));
    qunsetenv("DISPLAY");
}

void TestOfficeConverter::failures_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("message");

    QTest::newRow("exit status") << QByteArray(
                                        "printf 'PK\\003\\004' > $out; echo 'no room' >&2; exit 1")
                                 << QStringLiteral("LibreOffice ended with status 1. no room");
    QTest::newRow("no output, status 0, as for a file it can't load")
        << QByteArray("echo 'Error: source file could not be loaded' >&2")
        << QStringLiteral("LibreOffice wrote no document. Error: source file could not be loaded");
    QTest::newRow("empty output") << QByteArray(": > $out")
                                  << QStringLiteral(
                                         "LibreOffice wrote a file that is no docx document.");
    QTest::newRow("output of another kind")
        << QByteArray("echo '<html>' > $out")
        << QStringLiteral("LibreOffice wrote a file that is no docx document.");
    QTest::newRow("output that can't be read")
        << QByteArray("ln -s /proc/self/mem $out") // opens, but not even root reads its beginning
        << QStringLiteral("disk: LibreOffice's document can't be read: Input/output error");
    QTest::newRow("crash") << QByteArray("kill -SEGV $$")
                           << QStringLiteral("LibreOffice broke down.");
}

void TestOfficeConverter::failures()
{
    QFETCH(QByteArray, script);
    QFETCH(QString, message);
    useScript(script);
    QCOMPARE(convertFailure(), message);
}

void TestOfficeConverter::programThatDoesNotStart()
{
    OfficeConverter::setProgramOverride(kept(QStringLiteral("missing")));
    QCOMPARE(convertFailure(),
             QStringLiteral("LibreOffice, which writes Word and Rich Text files, was not found."));

    QFile script(kept(QStringLiteral("office")));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("#!/missing/interpreter\n");
    script.close();
    QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    OfficeConverter::setProgramOverride(script.fileName());
    const QString failure = convertFailure();
    QVERIFY2(failure.startsWith(QStringLiteral("LibreOffice could not be started: ")),
             qPrintable(failure));
}

void TestOfficeConverter::timeLimitEndsTheWholeProcessGroup()
{
    useScript("echo $$ > $kept/parent\n"
              "sh -c 'trap \"\" TERM; sleep 600 & echo $! > '$kept'/child; wait' &\n"
              "wait");
    OfficeConverter::setTimeLimit(std::chrono::milliseconds(1500));
    QCOMPARE(convertFailure(), QStringLiteral("LibreOffice took more than 1.5 seconds."));
    QVERIFY(keptText(QStringLiteral("child")).toInt() > 0);
    QVERIFY(!isRunning(keptText(QStringLiteral("parent"))));
    QTRY_VERIFY(!isRunning(keptText(QStringLiteral("child"))));
}

void TestOfficeConverter::childrenOfAFailureEnd()
{
    useScript("sleep 600 & echo $! > $kept/child; exit 3");
    QCOMPARE(convertFailure(), QStringLiteral("LibreOffice ended with status 3."));
    QVERIFY(keptText(QStringLiteral("child")).toInt() > 0);
    QTRY_VERIFY(!isRunning(keptText(QStringLiteral("child"))));
}

void TestOfficeConverter::brokenProfileIsReplacedOnce()
{
    const QByteArray body = "echo run >> $kept/runs; mkdir -p $profile\n";
    useScript(body + "printf 'PK\\003\\004' > $out; touch $profile/broken");
    QVERIFY(!OfficeConverter::convert("x", QStringLiteral("docx")).isEmpty());
    useScript(body + "[ -e $profile/broken ] && exit 77\nprintf 'PK\\003\\004new' > $out");
    QCOMPARE(OfficeConverter::convert("x", QStringLiteral("docx")), QByteArray("PK\x03\x04new"));
    QCOMPARE(keptText(QStringLiteral("runs")), QByteArray("run\nrun\nrun"));

    // A failure with a new profile as well is final, and the profile is not kept.
    useScript(body + "exit 77");
    QCOMPARE(convertFailure(), QStringLiteral("LibreOffice ended with status 77."));
    QCOMPARE(keptText(QStringLiteral("runs")).count("run"), 5);
    QCOMPARE(convertFailure(), QStringLiteral("LibreOffice ended with status 77."));
    QCOMPARE(keptText(QStringLiteral("runs")).count("run"), 6);
}

void TestOfficeConverter::profileIsKeptAfterSuccess()
{
    useScript("mkdir -p $profile; echo x >> $profile/count; cp $profile/count $kept/count\n"
              "stat -c %a $profile/.. > $kept/rights\n"
              "printf 'PK\\003\\004' > $out");
    for (int i = 0; i < 2; ++i) {
        QVERIFY(!OfficeConverter::convert("x", QStringLiteral("docx")).isEmpty());
    }
    QCOMPARE(keptText(QStringLiteral("count")), QByteArray("x\nx"));
    QCOMPARE(keptText(QStringLiteral("rights")), QByteArray("700"));
}

void TestOfficeConverter::oneConversionAtATime()
{
    useScript(
        "mkdir $kept/busy || exit 9\nsleep 0.1; rmdir $kept/busy; printf 'PK\\003\\004' > $out");
    std::vector<std::unique_ptr<QThread>> threads;
    std::atomic<int> done = 0;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back(QThread::create([&done] {
            done += convertFailure().startsWith(QStringLiteral("no failure, but PK")) ? 1 : 0;
        }));
        threads.back()->start();
    }
    for (const auto &thread : threads) {
        QVERIFY(thread->wait(30'000));
    }
    QCOMPARE(done.load(), 4);

    // Another process of the user holds the folder.
    useScript("printf 'PK\\003\\004' > $out");
    QLockFile other(officeFolder().filePath(QStringLiteral("lock")));
    QVERIFY(other.lock());
    OfficeConverter::setTimeLimit(std::chrono::milliseconds(300));
    QCOMPARE(convertFailure(), QStringLiteral("LibreOffice took more than 0.3 seconds."));
}

void TestOfficeConverter::removesWhatACrashLeft()
{
    const QDir left = officeFolder().filePath(QStringLiteral("conversion-crash"));
    QVERIFY(left.mkpath(QStringLiteral("inner")));
    useScript("printf 'PK\\003\\004' > $out");
    QVERIFY(!OfficeConverter::convert("x", QStringLiteral("docx")).isEmpty());
    QVERIFY(!left.exists());
}

void TestOfficeConverter::convertsWithLibreOffice()
{
    if (QStandardPaths::findExecutable(QStringLiteral("soffice")).isEmpty()) {
        QSKIP("LibreOffice is not installed");
    }
    const QByteArray text =
        "<?xml version=\"1.0\"?><office:document"
        " xmlns:office=\"urn:oasis:names:tc:opendocument:xmlns:office:1.0\""
        " xmlns:text=\"urn:oasis:names:tc:opendocument:xmlns:text:1.0\" office:version=\"1.3\""
        " office:mimetype=\"application/vnd.oasis.opendocument.text\"><office:body><office:text>"
        "<text:p>Hello</text:p></office:text></office:body></office:document>";
    QVERIFY(OfficeConverter::convert(text, QStringLiteral("rtf")).contains("Hello"));
    // What it can't read is a failure, though LibreOffice ends with status 0.
    const QString failure = convertFailure(QStringLiteral("docx:No Such Filter"));
    QVERIFY2(failure.startsWith(QStringLiteral("LibreOffice wrote no document.")),
             qPrintable(failure));
}

void TestOfficeConverter::cancelAllEndsConversions()
{
    useScript("mkdir -p $profile; echo $$ > $kept/parent; sleep 600");
    const auto convert = [](QString *failure) {
        return std::unique_ptr<QThread>(
            QThread::create([failure] { *failure = convertFailure(); }));
    };
    QString running;
    QString waiting;
    const auto first = convert(&running);
    first->start();
    QTRY_VERIFY(keptText(QStringLiteral("parent")).toInt() > 0);
    const auto second = convert(&waiting);
    second->start();

    OfficeConverter::cancelAll();
    QVERIFY(first->wait(10'000) && second->wait(10'000));
    const QString cause = QStringLiteral("The conversion was stopped.");
    QCOMPARE(running, cause);
    QCOMPARE(waiting, cause);
    QVERIFY(!isRunning(keptText(QStringLiteral("parent"))));
    QCOMPARE(convertFailure(), cause);
}

QTEST_GUILESS_MAIN(TestOfficeConverter)
#include "tst_officeconverter.moc"
