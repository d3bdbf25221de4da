#include "AppModel.h"
#include "FakeDesktop.h"
#include "QSPDF.h"
#include "QSTemplates.h"
#include "ScratchUser.h"
#include "TestFiles.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int cancelRestore = 0;
constexpr int restoreButton = 1;
constexpr int cancelClosing = 2;
constexpr int dontSave = 1;
const QString key = u"tenant_name"_s;
} // namespace

/// Backing up and restoring as a person asks for it.
class TestAppModelBackup final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_user = std::make_unique<ScratchUser>();
        QSStore::setShared(std::make_unique<QSStore>(QSInfo::databaseURL()));
        m_desktop = std::make_unique<FakeDesktop>();
        m_model = std::make_unique<AppModel>(*m_desktop);
        m_model->newDocument(*QSTemplates::templateById(u"rent-receipt"_s));
        m_model->setEditedValue(key, u"Rosa"_s);
        QVERIFY(m_model->saveEdited() && m_model->closeEditor());
        m_copy = QSStore::shared()->saveFilledPDF(u"us-w-9"_s, u"W-9"_s, QSPDF::practiceForm());
        m_backup = m_user->path(u"mine.qsbackup"_s);
    }

    void cleanup()
    {
        QVERIFY2(m_desktop->settled(), qPrintable(m_desktop->unexpected.join(u'\n')));
        m_model.reset();
        QSStore::setShared(nullptr);
        m_user.reset();
    }

    void whatWasBackedUpComesBack()
    {
        backUp();
        QCOMPARE(m_model->message(), u"Saved mine.qsbackup"_s);
        QVERIFY(m_desktop->suggestedNames.constLast().startsWith(u"Vell Quillstone Backup 20"));
        QSStore::shared()->deleteDocument(m_model->documents()->constFirst().id.value());
        QSStore::shared()->deleteFilledPDF(m_copy);

        m_desktop->openPaths = {std::nullopt};
        m_model->restore(); // the panel is cancelled
        m_desktop->openPaths = {m_backup};
        m_desktop->answers = {cancelRestore};
        m_model->restore();
        QVERIFY(!m_model->busy() && m_model->documents()->isEmpty());
        QCOMPARE(m_desktop->questions.constLast().text,
                 u"Replace your documents, profile and filled PDFs with this backup?"_s);

        // what is open is closed first, or all stays as it is
        m_model->openPractice();
        m_model->setFormValue(0, {.text = u"Rosa"_s, .on = false, .chosen = {}});
        restoreAnswering({restoreButton, cancelClosing});
        QVERIFY(m_model->openPDF() && m_model->documents()->isEmpty());
        restoreAnswering({restoreButton, dontSave});
        QTRY_COMPARE(m_model->message(), u"Restored from mine.qsbackup"_s);
        QVERIFY(!m_model->openPDF());
        QCOMPARE(m_model->documents()->constFirst().values.value(key), u"Rosa"_s);
        QCOMPARE(m_model->filledPDFs()->constFirst().title, u"W-9"_s);
        QVERIFY(QFile::exists(QSInfo::filledFolder().filePath(m_copy.fileName)));
    }

    void whatIsMissingIsSaid()
    {
        QVERIFY(QFile::remove(QSInfo::filledFolder().filePath(m_copy.fileName)));
        backUp();
        QCOMPARE(m_model->message(),
                 u"Saved mine.qsbackup. 1 filled PDF could not be read and is not in it."_s);
        m_backup = m_user->path(u"no/such/folder.qsbackup"_s);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"."_s));
        backUp();
        QCOMPARE(m_model->message(), u"The backup could not be made. The file could not be "
                                     "written: No such file or directory"_s);
        QSStore::shared()->db().exec(u"ALTER TABLE documents RENAME TO others"_s);
        m_model->backupNow();
        QCOMPARE(m_model->message(), u"The backup could not be made. The database reported a "
                                     "problem: no such table: documents"_s);
        QSStore::shared()->db().exec(u"ALTER TABLE others RENAME TO documents"_s);
        writeFile(m_user->path(u"other.qsbackup"_s), "{}");
        m_backup = m_user->path(u"other.qsbackup"_s);
        restoreAnswering({restoreButton});
        QCOMPARE(m_model->message(), u"This file can't be restored: it is not a Vell Quillstone "
                                     "backup file."_s);
        QCOMPARE(m_model->documents()->size(), 1);
    }

private:
    void backUp()
    {
        m_desktop->savePaths = {m_backup};
        m_model->backupNow();
        QTRY_VERIFY(!m_model->busy());
    }

    void restoreAnswering(const QList<int> &answers)
    {
        m_desktop->openPaths = {m_backup};
        m_desktop->answers = answers;
        m_model->restore();
        QTRY_VERIFY(!m_model->busy());
    }

    std::unique_ptr<ScratchUser> m_user;
    std::unique_ptr<FakeDesktop> m_desktop;
    std::unique_ptr<AppModel> m_model;
    QSFilledPDF m_copy;
    QString m_backup;
};

QTEST_MAIN(TestAppModelBackup)
#include "tst_appmodelbackup.moc"
