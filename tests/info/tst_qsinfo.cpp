#include "QSInfo.h"
#include "QSPrefs.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

/// Where the user's data is, who may read it, and what preferences say before anybody sets them.
class TestQSInfo final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_home = std::make_unique<QTemporaryDir>();
        qputenv("XDG_DATA_HOME", m_home->path().toLocal8Bit());
        qunsetenv("QS_DATA_DIR");
        QSInfo::setDataFolderOverride(std::nullopt);
        QSPrefs::setFileOverride(m_home->filePath(u"preferences.ini"_s));
    }

    void firstRuleThatAppliesNamesTheDataFolder()
    {
        QCOMPARE(QSInfo::dataFolder().path(), m_home->filePath(u"Vell Quillstone"_s));
        qputenv("QS_DATA_DIR", "");
        QCOMPARE(QSInfo::dataFolder().path(), m_home->filePath(u"Vell Quillstone"_s));
        const QString named = m_home->filePath(u"not/there/yet"_s);
        qputenv("QS_DATA_DIR", named.toLocal8Bit());
        QCOMPARE(QSInfo::dataFolder().path(), named);
        QVERIFY(QDir(named).exists());
        const QString override = m_home->filePath(u"override"_s);
        QSInfo::setDataFolderOverride(override);
        QCOMPARE(QSInfo::dataFolder().path(), override);
        QCOMPARE(QSInfo::databaseURL().toLocalFile(), override + u"/Quillstone.sqlite"_s);
        QVERIFY(QSInfo::cacheFolder().exists() && QSInfo::filledFolder().exists());
    }

    void onlyTheOwnerReadsTheFolder()
    {
        const auto permissions = [](const QString &path) {
            return QFile::permissions(path) &
                   (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther |
                    QFile::ExeGroup | QFile::ExeOther);
        };
        QCOMPARE(permissions(QSInfo::dataFolder().path()), QFile::Permissions());
        QCOMPARE(permissions(QSInfo::filledFolder().path()), QFile::Permissions());

        // an empty folder made by hand is tightened; one that others keep things in is left alone
        const auto everybody = QFile::Permissions(0x7755);
        const QString empty = m_home->filePath(u"empty"_s);
        const QString used = m_home->filePath(u"used"_s);
        QVERIFY(QDir().mkdir(empty) && QDir().mkpath(used + u"/other"_s));
        QVERIFY(QFile::setPermissions(empty, everybody) && QFile::setPermissions(used, everybody));
        QSInfo::setDataFolderOverride(empty);
        QCOMPARE(permissions(QSInfo::dataFolder().path()), QFile::Permissions());
        QSInfo::setDataFolderOverride(used);
        QVERIFY(permissions(QSInfo::dataFolder().path()) != QFile::Permissions());
    }

    void aFolderThatCannotBeMadeIsStillNamed()
    {
        QFile blocker(m_home->filePath(u"file"_s));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        const QString impossible = blocker.fileName() + u"/below"_s;
        QSInfo::setDataFolderOverride(impossible);
        QCOMPARE(QSInfo::dataFolder().path(), impossible);
        QVERIFY(!QSInfo::dataFolder().exists());
    }

    void preferencesHaveDefaultsAndKeepWhatIsSet()
    {
        QCOMPARE(QSPrefs::homeState(), u"CO"_s);
        QVERIFY(!QSPrefs::disclaimerAccepted());
        QVERIFY(!QFile::exists(m_home->filePath(u"preferences.ini"_s)));
        QSPrefs::setHomeState(u"TX"_s);
        QSPrefs::setDisclaimerAccepted(true);
        QCOMPARE(QSPrefs::homeState(), u"TX"_s);
        QVERIFY(QSPrefs::disclaimerAccepted());
    }

    void onlyWhatAcceptingStoresCountsAsAccepted()
    {
        for (const QString &stored : {u"rubbish"_s, u"no"_s, u"2"_s, u""_s, u"false"_s}) {
            writePreference(u"qs.disclaimerAccepted.v1="_s + stored);
            QVERIFY2(!QSPrefs::disclaimerAccepted(), qPrintable(stored));
        }
        writePreference(u"qs.disclaimerAccepted.v1=true"_s);
        QVERIFY(QSPrefs::disclaimerAccepted());
    }

private:
    void writePreference(const QString &line)
    {
        const QString path = m_home->filePath(u"preferences.ini"_s);
        QFile::remove(path);
        {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("[General]\n" + line.toUtf8() + '\n');
        }
    }

    std::unique_ptr<QTemporaryDir> m_home;
};

QTEST_GUILESS_MAIN(TestQSInfo)
#include "tst_qsinfo.moc"
