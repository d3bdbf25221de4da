#include "ProgramFixture.h"
#include "TestFiles.h"

#include <QRegularExpression>

using namespace Qt::Literals::StringLiterals;

/// The built executable in its modes without a window.
class TestSelfTest final : public QObject, private ProgramFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        beginProgram();
        m_environment.remove(u"QS_SELFTEST_MUTATE"_s);
        m_environment.insert(u"TMPDIR"_s, folder(u"temporary"_s));
    }

    void aRunPassesAndLeavesTheUserAlone()
    {
        writeFile(folder(u"data"_s) + u"/Quillstone.sqlite"_s, "the user's documents");
        writeFile(folder(u"data/Filled PDFs"_s) + u"/A.pdf"_s, "%PDF the user's form");
        writeFile(folder(u"config/Vell"_s) + u"/Quillstone.ini"_s, "[qs]\nhomeState=TX\n");
        const QMap<QString, QByteArray> before = tree(m_home->path());
        const Ended ended = run({u"--selftest"_s});
        QCOMPARE(ended.status, 0);
        const QRegularExpression whole(
            u"^Vell Quillstone self-test \u2014 \\d{4}(-\\d\\d){2}T\\d\\d"
            "(:\\d\\d){2}Z\n==.*\nALL [1-9]\\d* CHECKS PASSED\n$"_s,
            QRegularExpression::DotMatchesEverythingOption);
        QVERIFY2(whole.match(ended.output).hasMatch(), qPrintable(ended.output));
        QCOMPARE(tree(m_home->path()), before);
    }

    void aRunWithoutResourcesFailsInSentences()
    {
        const Ended ended = run({u"--selftest"_s}, lonelyProgram());
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
        m_environment.insert(u"TMPDIR"_s, blocker);
        const Ended ended = run({u"--selftest"_s});
        QCOMPARE(ended.status, 1);
        QVERIFY2(ended.errors.contains(u"could not be made: Not a directory"_s),
                 qPrintable(ended.errors));
    }

    void childrenWriteAndRead()
    {
        const QString child = newFolder();
        const QString path = child + u"/Quillstone.sqlite"_s;
        const Ended written = run({u"--qs-child-write"_s, path});
        QCOMPARE(written.status, 0);
        QVERIFY(
            QRegularExpression(u"^DIGEST\\|[0-9a-f]{64}\n$"_s).match(written.output).hasMatch());
        const Ended read = run({u"--qs-child-read"_s, path});
        QCOMPARE(read.status, 0);
        QCOMPARE(read.output, u"DOCS|1|PDFS|1|NAME|Jordan Q. Sample\n"_s + written.output);

        // the digest is of the files, too
        QDir filled(child + u"/Filled PDFs"_s);
        writeFile(filled.filePath(filled.entryList(QDir::Files).value(0)), "%PDF another");
        QVERIFY(!run({u"--qs-child-read"_s, path}).output.contains(written.output));

        QVERIFY(filled.removeRecursively());
        writeFile(filled.path(), "in the way");
        const Ended refused = run({u"--qs-child-write"_s, path});
        QCOMPARE(refused.status, 4);
        QVERIFY(refused.output.startsWith(u"ERROR|The PDF could not be saved: "_s));
    }

    void childrenLeaveAFolderThatIsNotTheirsAlone()
    {
        // somebody's database
        const QString child = newFolder();
        QCOMPARE(run({u"--qs-child-write"_s, child + u"/Quillstone.sqlite"_s}).status, 0);
        const QString path = folder(u"data"_s) + u"/Quillstone.sqlite"_s;
        QVERIFY(QFile::copy(child + u"/Quillstone.sqlite"_s, path));
        QVERIFY(QFile::link(path, child + u"/link.sqlite"_s));
        const QString blocker = folder(u"empty"_s) + u"/file"_s;
        writeFile(blocker, "no folder");
        m_environment.insert(u"QS_SELFTEST_MUTATE"_s,
                             u"opening-forgets-documents,opening-forgets-profile"_s);
        const QMap<QString, QByteArray> before = tree(m_home->path());
        for (const QString &flag : {u"--qs-child-write"_s, u"--qs-child-read"_s}) {
            for (const QString &refused :
                 {path, folder(u"data"_s) + u"/new.sqlite"_s, child + u"/link.sqlite"_s,
                  blocker + u"/below/Quillstone.sqlite"_s}) {
                const Ended ended = run({flag, refused});
                QCOMPARE(ended.status, 3);
                QCOMPARE(ended.output, QString());
                QVERIFY2(ended.errors.contains(u"can't be used: "_s), qPrintable(ended.errors));
            }
        }
        QCOMPARE(tree(m_home->path()), before);
        QVERIFY(run({u"--qs-child-read"_s, child + u"/Quillstone.sqlite"_s})
                    .output.startsWith(u"DOCS|0|"_s)); // the faults were there to happen
    }

private:
    /// Path of a folder that is not there yet.
    [[nodiscard]] QString newFolder() const { return m_home->filePath(u"child"_s); }
};

QTEST_GUILESS_MAIN(TestSelfTest)
#include "tst_selftest.moc"
