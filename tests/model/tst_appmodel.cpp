#include "AsyncTask.h"
#include "ModelFixture.h"
#include "OfficeConverter.h"
#include "QSDirectory.h"
#include "QSTemplates.h"
#include "SmallDisk.h"
#include "TestFiles.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {
const QSTemplate &receipt()
{
    return *QSTemplates::templateById(u"rent-receipt");
}
} // namespace

/// Every action with its messages, without a window; a fake answers for the person.
class TestAppModel final : public QObject, private ModelFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QSInfo::setResourceFolderOverride(u"/nowhere"_s); // a directory that can't be read
        QVERIFY(!QSDirectory::loadError().isEmpty());
        QSInfo::setResourceFolderOverride(std::nullopt);
        QVERIFY2(QSTemplates::templateById(u"rent-receipt"), "no templates");
    }

    void init() { beginModel(); }

    void cleanup()
    {
        OfficeConverter::setProgramOverride({});
        endModel();
    }

    void aFreshUserStartsWithTheDefaults()
    {
        QCOMPARE(m_model->state(), u"CO"_s);
        QCOMPARE(m_model->selectedTemplateID(), u"bill-of-sale-vehicle"_s);
        QVERIFY(m_model->showDisclaimer());
        m_model->acceptDisclaimer();
        m_model->setState(u"TX"_s);
        const AppModel next(*m_desktop);
        QCOMPARE(next.state(), u"TX"_s);
        QVERIFY(!next.showDisclaimer());
    }

    void withoutADirectoryNoLinkIsSaidToAnswer()
    {
        m_model->checkAllLinks();
        QVERIFY(!m_model->checking());
        QCOMPARE(m_model->message(), QSDirectory::loadError());
    }

    void theDisclaimerShownOnDemandAcceptsNothing()
    {
        m_model->setShowDisclaimer(false);
        m_model->setShowDisclaimer(true);
        m_model->setShowDisclaimer(false);
        QVERIFY(!QSPrefs::disclaimerAccepted());
    }

    void aNewDocumentIsFilledFromTheProfile()
    {
        QSStore::shared()->saveProfile(
            {{u"fullName"_s, u"Rosa Delgado"_s}, {u"state"_s, u"florida"_s}});
        m_model->newDocument(receipt());
        const QSDocument &document = m_model->editing()->document();
        QVERIFY(!document.id);
        QCOMPARE(document.title, receipt().title);
        QCOMPARE(document.values.value(u"landlord_name"_s), u"Rosa Delgado"_s);
        QCOMPARE(document.state, u"FL"_s);
        QVERIFY(!m_model->editing()->hasUnsavedChanges());
        QVERIFY(m_model->closeEditor());                          // nothing typed: no question
        m_model->setProfileValue(u"fullName"_s, u"R. Delgado"_s); // not saved yet
        m_model->newDocument(receipt());
        QCOMPARE(m_model->editing()->document().values.value(u"landlord_name"_s), u"R. Delgado"_s);
    }

    void savingShowsItsMessageAndClosingThenAsksNothing()
    {
        m_model->newDocument(receipt());
        m_model->setEditedTitle(u"  May rent "_s);
        m_model->setEditedValue(u"tenant_name"_s, u"Quang"_s);
        QVERIFY(m_model->saveEdited());
        QCOMPARE(m_model->message(), u"Saved to My Documents."_s);
        QVERIFY(m_model->closeEditor());
        const QList<QSDocument> saved = m_model->documents().value();
        QCOMPARE(saved.size(), 1);
        QCOMPARE(saved.first().title, u"May rent"_s);
        QCOMPARE(saved.first().values.value(u"tenant_name"_s), u"Quang"_s);
        // opened again, it is the same document
        m_model->edit(saved.first());
        m_model->setEditedValue(u"tenant_name"_s, u"Quang Le"_s);
        QVERIFY(m_model->saveEdited());
        QCOMPARE(m_model->documents()->size(), 1);
    }

    void closingWithUnsavedChangesAsks_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("closed");
        QTest::addColumn<int>("documents");
        QTest::newRow("Save") << save << true << 1;
        QTest::newRow("Don't Save") << dontSave << true << 0;
        QTest::newRow("Cancel") << cancel << false << 0;
    }

    void closingWithUnsavedChangesAsks()
    {
        QFETCH(int, answer);
        QFETCH(bool, closed);
        QFETCH(int, documents);
        m_model->newDocument(receipt());
        m_model->setEditedTitle(u"May rent"_s);
        m_desktop->answers = {answer};
        QCOMPARE(m_model->show(Screen::documents), closed);
        const QSDesktop::Question &question = m_desktop->questions.first();
        QCOMPARE(question.text, u"Save changes to \"May rent\""_s);
        QCOMPARE(question.buttons, (QStringList{u"Save"_s, u"Don't Save"_s, u"Cancel"_s}));
        QCOMPARE(m_model->editing().has_value(), !closed);
        QCOMPARE(m_model->documents()->size(), documents);
    }

    void whatCannotBeSavedKeepsTheEditorOpen()
    {
        m_model->newDocument(receipt());
        m_model->setEditedTitle(u"  "_s);
        m_desktop->answers = {save};
        QVERIFY(!m_model->closeEverything());
        QCOMPARE(m_model->message(), u"Give the document a name."_s);
        QVERIFY(m_model->editing());

        m_model->setEditedTitle(u"May rent"_s);
        QSStore::setShared(nullptr);
        QVERIFY(!m_model->saveEdited());
        QVERIFY(m_model->message()->contains(u"No documents database is open"_s));
        QVERIFY(m_model->editing()->hasUnsavedChanges());
    }

    void fillFromProfileFillsOnlyWhatIsEmpty()
    {
        m_model->newDocument(receipt());
        m_model->fillFromProfile();
        QCOMPARE(m_model->message(),
                 u"The profile is empty. Fill it in on the My Profile screen."_s);
        m_model->setProfileValue(u"fullName"_s, u"Rosa Delgado"_s);
        QVERIFY(m_model->saveProfile());
        QCOMPARE(m_model->message(), u"Profile saved."_s);
        m_model->setEditedValue(u"landlord_name"_s, u"Somebody else"_s);
        m_model->fillFromProfile();
        const QSDocument &document = m_model->editing()->document();
        QCOMPARE(document.values.value(u"landlord_name"_s), u"Somebody else"_s);
        QCOMPARE(document.values.value(u"received_by"_s), u"Rosa Delgado"_s);
    }

    void aTypedProfileIsNotLostByLeaving()
    {
        m_model->setProfileValue(u"city"_s, u"Pueblo"_s);
        QCOMPARE(m_model->profile().value(u"city"_s), u"Pueblo"_s);
        m_desktop->answers = {cancel, save};
        QVERIFY(!m_model->closeEverything());
        QCOMPARE(m_desktop->questions.first().text, u"Save changes to \"My Profile\""_s);
        QVERIFY(m_model->closeEverything());
        QCOMPARE(QSStore::shared()->profile().value(u"city"_s), u"Pueblo"_s);
    }

    void aLateCancelKeepsTheDocumentToo()
    {
        m_model->newDocument(receipt());
        m_model->setEditedValue(u"tenant_name"_s, u"Quang"_s);
        m_model->setProfileValue(u"city"_s, u"Pueblo"_s);
        m_desktop->answers = {dontSave, cancel};
        QVERIFY(!m_model->closeEverything());
        QCOMPARE(m_model->editing()->document().values.value(u"tenant_name"_s), u"Quang"_s);
        m_desktop->answers = {dontSave, dontSave};
        QVERIFY(m_model->closeEverything());
    }

    void anotherWishToCloseDuringTheQuestionChangesNothing()
    {
        m_model->newDocument(receipt());
        m_model->setEditedTitle(u"May rent"_s);
        m_desktop->whileAsking = [this] { QVERIFY(!m_model->show(Screen::profile)); };
        m_desktop->answers = {save};
        QVERIFY(m_model->show(Screen::documents));
        QCOMPARE(m_desktop->questions.size(), 1);
        QCOMPARE(m_model->screen(), Screen::documents);
        QCOMPARE(m_model->documents()->size(), 1);
    }

    void aProfileThatCannotBeReadIsNotOverwritten()
    {
        QSStore::shared()->saveProfile({{u"fullName"_s, u"Rosa"_s}});
        QSStore::shared()->db().exec(u"ALTER TABLE profile RENAME COLUMN value TO other"_s);
        m_model->setProfileValue(u"city"_s, u"Pueblo"_s);
        QVERIFY(m_model->message()->startsWith(u"The database reported a problem: "_s));
        QVERIFY(!m_model->hasUnsavedProfile());
    }

    void typingAndTakingBackIsNoEdit()
    {
        m_model->setProfileValue(u"city"_s, u"P"_s);
        QVERIFY(m_model->hasUnsavedProfile());
        m_model->setProfileValue(u"city"_s, QString());
        QVERIFY(!m_model->hasUnsavedProfile());
    }

    void aDocumentWithoutItsTemplateOpensAndSaysWhy()
    {
        QSDocument orphan = savedReceipt(u"Old"_s);
        orphan.templateID = u"gone"_s;
        m_model->edit(orphan);
        QCOMPARE(m_model->message(), u"The template gone is not in this version of the app."_s);
        QCOMPARE(m_model->editing()->document().values.value(u"tenant_name"_s), u"Quang"_s);
    }

    void deletingAsksFirst()
    {
        const QSDocument document = savedReceipt(u"May rent"_s);
        m_desktop->answers = {0, 1};
        m_model->deleteDocument(document);
        QCOMPARE(m_model->documents()->size(), 1);
        QCOMPARE(m_desktop->questions.first().text, u"Delete \"May rent\""_s);
        QCOMPARE(m_desktop->questions.first().detail, u"This can't be undone."_s);
        QVERIFY(!m_model->message());
        m_model->deleteDocument(document);
        QVERIFY(m_model->documents()->isEmpty());
        QCOMPARE(m_model->message(), u"\"May rent\" was deleted."_s);
    }

    void anotherStoreIsHeardAndWhatItLacksIsSavedAnew()
    {
        m_model->edit(savedReceipt(u"Known"_s));
        const auto reopen = [this] {
            QSStore::setShared(nullptr);
            QSStore::setShared(std::make_unique<QSStore>(QSInfo::databaseURL()));
            QSignalSpy changed(m_model.get(), &AppModel::revisionChanged);
            m_model->storeReplaced();
            QCOMPARE(changed.count(), 1);
            QSStore::shared()->touch();
            QCOMPARE(changed.count(), 2);
        };
        reopen();
        QVERIFY(!m_model->editing()->hasUnsavedChanges());

        QSStore::shared()->deleteDocument(m_model->editing()->document().id.value());
        reopen();
        QVERIFY(m_model->editing()->hasUnsavedChanges());
        QVERIFY(m_model->saveEdited());
        QCOMPARE(m_model->documents()->constFirst().title, u"Known"_s);
    }

    void exportWritesTheWholeFileOrNothing_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("written");
        QTest::addColumn<QString>("message");
        const QString failed = u"This document could not be exported. No such file or directory"_s;
        QTest::newRow("a new file") << u"rent.pdf"_s << true << u"Saved rent.pdf"_s;
        QTest::newRow("a folder that is not there") << u"no/rent.pdf"_s << false << failed;
    }

    void exportWritesTheWholeFileOrNothing()
    {
        QFETCH(QString, target);
        QFETCH(bool, written);
        QFETCH(QString, message);
        const QSDocument document = savedReceipt(u"May/June rent"_s);
        m_desktop->savePaths = {m_user->path(target)};
        QSignalSpy messages(m_model.get(), &AppModel::messageChanged);
        m_model->exportDocument(document, QSExport::Format::pdf);
        QVERIFY(m_model->busy()); // made in the background
        QVERIFY(messages.wait(20000));
        QVERIFY(!m_model->busy());
        QCOMPARE(m_model->message(), message);
        QCOMPARE(m_desktop->suggestedNames, QStringList{u"May-June rent.pdf"_s});
        QCOMPARE(contents(m_user->path(target)).trimmed().endsWith("%%EOF"), written);
    }

    void aFullDiskKeepsTheFileThatWasThere()
    {
        const QString folder = m_user->path(u"disk"_s);
        const SmallDisk disk(folder, 48 * 1024);
        if (!disk.mounted()) {
            QSKIP("This process may not mount a small file system");
        }
        const QString target = folder + u"/rent.pdf"_s;
        const QByteArray older(qsizetype{40} * 1024, 'x');
        writeFile(target, older);
        m_desktop->savePaths = {target};
        QSignalSpy messages(m_model.get(), &AppModel::messageChanged);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"rent\\.pdf"_s));
        m_model->exportDocument(savedReceipt(u"May rent"_s), QSExport::Format::pdf);
        QVERIFY(messages.wait(20000));
        QCOMPARE(m_model->message().value(),
                 u"This document could not be exported. No space left on device"_s);
        QCOMPARE(contents(target), older);
        QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList{u"rent.pdf"_s});
    }

    void withoutLibreOfficeWordExportSaysSo()
    {
        OfficeConverter::setProgramOverride(m_user->path(u"no-such-program"_s));
        QSignalSpy messages(m_model.get(), &AppModel::messageChanged);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"."_s));
        m_model->exportDocument(savedReceipt(u"May rent"_s), QSExport::Format::docx);
        QVERIFY(messages.wait(20000));
        QCOMPARE(m_model->message(), u"This document could not be exported. LibreOffice, which "
                                     "writes Word and Rich Text files, was not found."_s);
        QVERIFY(m_desktop->suggestedNames.isEmpty());
    }

    void resultsOfWorkGoWithTheirContext()
    {
        bool called = false;
        auto context = std::make_unique<QObject>();
        AsyncTask::run<int>(
            context.get(), [] { return 1; }, [&called](const auto &) { called = true; });
        context.reset();
        QVERIFY(QThreadPool::globalInstance()->waitForDone(5000));
        QCoreApplication::processEvents();
        QVERIFY(!called);
    }

    void printingHandsOverTheDocumentUnderItsName()
    {
        m_model->print(savedReceipt(u"May rent"_s));
        QCOMPARE(m_desktop->printed.size(), 1);
        QCOMPARE(m_desktop->printed.first().title, u"May rent"_s);
        QVERIFY(m_desktop->printed.first().plainText().contains(u"Quang"_s));
        QCOMPARE(m_model->message(), u"Sent to the printer."_s);
        m_desktop->printedTo = u"/home/rosa/rent.pdf"_s;
        m_model->print(savedReceipt(u"May rent"_s));
        QCOMPARE(m_model->message(), u"Saved rent.pdf"_s);
        m_model->setMessage(std::nullopt);
        m_desktop->printedTo = std::nullopt; // cancelled
        m_model->print(savedReceipt(u"May rent"_s));
        QVERIFY(!m_model->message());
        QSDocument orphan = savedReceipt(u"Other"_s);
        orphan.templateID = u"gone"_s;
        m_model->print(orphan);
        QCOMPARE(m_model->message(), u"The template gone is not in this version of the app."_s);
    }

    void lettersThatNoFontHasAreAskedAbout()
    {
        QSDocument document = savedReceipt(u"May rent"_s);
        document.values[u"tenant_name"_s] = u"A\U00050000nn \ue000"_s;
        m_desktop->answers = {0, 1, 0};
        m_model->print(document);
        QVERIFY(m_desktop->printed.isEmpty());
        const QSDesktop::Question question = m_desktop->questions.first();
        QCOMPARE(question.text, u"These letters can't be printed here: \U00050000 \ue000"_s);
        QCOMPARE(question.buttons, (QStringList{u"Cancel"_s, u"Print Anyway"_s}));
        QCOMPARE(question.cancel, 0);
        m_model->print(document);
        QCOMPARE(m_desktop->printed.size(), 1);

        m_model->exportDocument(document, QSExport::Format::pdf); // cancelled
        QVERIFY(!m_model->busy());
        QCOMPARE(m_desktop->questions.last().buttons.last(), u"Export Anyway"_s);
        OfficeConverter::setProgramOverride(m_user->path(u"no-such-program"_s));
        QSignalSpy messages(m_model.get(), &AppModel::messageChanged);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"."_s));
        m_model->exportDocument(document, QSExport::Format::docx); // its reader has fonts
        QVERIFY(messages.wait(20000));
        QCOMPARE(m_desktop->questions.size(), 3);
    }

    void aHitLeadsToWhatItFound()
    {
        const QSDocument document = savedReceipt(u"May rent"_s);
        m_model->setSearch(u"quang"_s);
        QCOMPARE(m_model->hits().size(), 1);
        const QSSearchHit hit = m_model->hits().first();
        m_model->openHit(hit);
        QCOMPARE(m_model->editing()->document().id, document.id);
        QCOMPARE(m_model->search(), QString());
        m_model->setEditedValue(u"tenant_name"_s, u"Rosa"_s);
        m_desktop->answers = {0}; // "Save"
        m_model->openHit(hit);    // the very document in the editor
        QCOMPARE(m_model->editing()->document().values.value(u"tenant_name"_s), u"Rosa"_s);

        m_model->openHit({QSSearchHit::Kind::template_, u"affidavit"_s, {}, {}});
        QCOMPARE(m_model->screen(), Screen::templates);
        QCOMPARE(m_model->selectedTemplateID(), u"affidavit"_s);
        QVERIFY(!m_model->editing());

        QSStore::shared()->deleteDocument(document.id.value());
        m_model->openHit(hit);
        QCOMPARE(m_model->message(), u"That record no longer exists."_s);
    }

private:
    QSDocument savedReceipt(const QString &title)
    {
        QSDocument document;
        document.templateID = receipt().id;
        document.title = title;
        document.values = {{u"tenant_name"_s, u"Quang"_s}};
        return QSStore::shared()->save(document);
    }
};

QTEST_MAIN(TestAppModel)
#include "tst_appmodel.moc"
