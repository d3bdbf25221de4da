#include "TestFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::Literals::StringLiterals;

/// The built executable in its modes without a window.
class TestSelfTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.remove(u"QT_QPA_PLATFORM"_s);
        m_environment.remove(u"QS_SELFTEST_MUTATE"_s);
        m_environment.insert(u"QS_DATA_DIR"_s, folder(u"data"_s));
        m_environment.insert(u"XDG_CONFIG_HOME"_s, folder(u"config"_s));
        m_environment.insert(u"XDG_RUNTIME_DIR"_s, m_runtime.path());
        m_environment.insert(u"TMPDIR"_s, folder(u"temporary"_s));
    }

    void aRunPassesAndLeavesTheUserAlone()
    {
        writeFile(folder(u"data"_s) + u"/Quillstone.sqlite"_s, "the user's documents");
        writeFile(folder(u"data/Filled PDFs"_s) + u"/A.pdf"_s, "%PDF the user's form");
        writeFile(folder(u"config/Vell"_s) + u"/Quillstone.ini"_s, "[qs]\nhomeState=TX\n");
        const QStringList before = state();
        const Ended ended = run({u"--selftest"_s});
        QCOMPARE(ended.status, 0);
        const QRegularExpression whole(
            u"^Vell Quillstone self-test \u2014 \\d{4}(-\\d\\d){2}T\\d\\d"
            "(:\\d\\d){2}Z\n==.*\nALL [1-9]\\d* CHECKS PASSED\n$"_s,
            QRegularExpression::DotMatchesEverythingOption);
        QVERIFY2(whole.match(ended.output).hasMatch(), qPrintable(ended.output));
        QCOMPARE(state(), before);
    }

    void aRunWithoutResourcesFailsInSentences()
    {
        const QString lonely = m_home->filePath(u"quillstone"_s);
        QVERIFY(QFile::copy(program(), lonely));
        const Ended ended = run({u"--selftest"_s}, lonely);
        QCOMPARE(ended.status, 1);
        QVERIFY2(ended.output.contains(u": The template bill-of-sale-vehicle is missing"_s),
                 qPrintable(ended.output));
        QVERIFY(
            QRegularExpression(u"\n\\d+ FAILED, \\d+ passed\n$"_s).match(ended.output).hasMatch());
    }

    void withoutATemporaryFolderItSaysSo()
    {
        const QString blocker = folder(u"data"_s) + u"/file"_s;
        writeFile(blocker, "x");
        m_environment.insert(u"XDG_RUNTIME_DIR"_s, m_runtime.path());
        m_environment.insert(u"TMPDIR"_s, blocker);
        const Ended ended = run({u"--selftest"_s});
        QCOMPARE(ended.status, 1);
        QVERIFY2(ended.errors.contains(u"could not be made: Not a directory"_s),
                 qPrintable(ended.errors));
    }

    void childrenWriteAndRead()
    {
        const QString path = folder(u"child"_s) + u"/Quillstone.sqlite"_s;
        const Ended written = run({u"--qs-child-write"_s, path});
        QCOMPARE(written.status, 0);
        QVERIFY(
            QRegularExpression(u"^DIGEST\\|[0-9a-f]{64}\n$"_s).match(written.output).hasMatch());
        const Ended read = run({u"--qs-child-read"_s, path});
        QCOMPARE(read.status, 0);
        QCOMPARE(read.output, u"DOCS|1|PDFS|1|NAME|Jordan Q. Sample\n"_s + written.output);

        // the digest is of the files, too
        const QDir filled(folder(u"child/Filled PDFs"_s));
        writeFile(filled.filePath(filled.entryList(QDir::Files).value(0)), "%PDF another");
        QVERIFY(!run({u"--qs-child-read"_s, path}).output.contains(written.output));
    }

    void whatChildrenCanNotDoIsAStatus()
    {
        const QString blocker = folder(u"data"_s) + u"/file"_s;
        writeFile(blocker, "no database, and no folder");
        for (const QString &flag : {u"--qs-child-write"_s, u"--qs-child-read"_s}) {
            for (const QString &path : {blocker, blocker + u"/below/Quillstone.sqlite"_s}) {
                const Ended ended = run({flag, path});
                QCOMPARE(ended.status, 3);
                QVERIFY2(ended.errors.contains(u"can't be used: "_s), qPrintable(ended.errors));
            }
        }
        writeFile(folder(u"child"_s) + u"/Filled PDFs"_s, "in the way");
        const Ended ended =
            run({u"--qs-child-write"_s, folder(u"child"_s) + u"/Quillstone.sqlite"_s});
        QCOMPARE(ended.status, 4);
        QVERIFY(ended.output.startsWith(u"ERROR|The PDF could not be saved: "_s));
    }

private:
    struct Ended
    {
        int status = -1;
        QString output;
        QString errors;
    };

    [[nodiscard]] static QString program()
    {
        return QCoreApplication::applicationDirPath() + u"/quillstone"_s;
    }

    /// A folder of the scratch user's home, made when it is missing.
    [[nodiscard]] QString folder(const QString &name) const
    {
        QDir(m_home->path()).mkpath(name);
        return m_home->filePath(name);
    }

    /// Every file and folder in the user's home, with its contents.
    [[nodiscard]] QStringList state() const
    {
        QStringList files;
        QDirIterator each(m_home->path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                          QDirIterator::Subdirectories);
        while (each.hasNext()) {
            const QString path = each.next();
            files.append(path + u' ' + QString::fromUtf8(contents(path)));
        }
        files.sort();
        return files;
    }

    [[nodiscard]] Ended run(const QStringList &arguments, const QString &path = program()) const
    {
        constexpr int timeLimit = 240'000;
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.start(path, arguments);
        if (!process.waitForFinished(timeLimit) || process.exitStatus() != QProcess::NormalExit) {
            return {};
        }
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    std::unique_ptr<QTemporaryDir> m_home;
    QTemporaryDir m_runtime; ///< for the desktop's libraries, which keep sockets and such there
    QProcessEnvironment m_environment;
};

QTEST_GUILESS_MAIN(TestSelfTest)
#include "tst_selftest.moc"
