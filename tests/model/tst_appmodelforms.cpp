#include "AgencyServer.h"
#include "DocumentsFolder.h"
#include "ModelFixture.h"
#include "QSCache.h"
#include "QSDirectory.h"
#include "QSPDF.h"
#include "TestFiles.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

namespace {
using Answer = AgencyServer::Answer;

const QSEntry &w9()
{
    return *QSDirectory::shared().entry(u"us-w-9");
}
const QSEntry &ss4()
{
    return *QSDirectory::shared().entry(u"us-ss-4");
}
} // namespace

/// What the model does with official forms, the agencies played on this machine.
class TestAppModelForms final : public QObject, private ModelFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_threads = threads();
        m_form = QSPDF::practiceForm();
        m_agencies = std::make_unique<AgencyServer>();
        m_agencies->answerOthers(Answer::pdf(m_form, "\"1\""));
    }
    void cleanupTestCase()
    {
        m_agencies.reset();
        // A pool's thread counts as done before it has put its connections away. Whoever ends the
        // process meanwhile is told of leaks.
        QThreadPool::globalInstance()->waitForDone();
        QTRY_COMPARE(threads(), m_threads);
    }

    void init() { beginModel(); }
    void cleanup() { endModel(); }

    void typingGoesOnWhileAFormIsSaved()
    {
        const auto type = [this](const QString &text) {
            m_model->setFormValue(0, {.text = text, .on = false, .chosen = {}});
        };
        m_model->openPractice();
        type(u"Rosa"_s);
        bool meanwhile = false;
        QTimer::singleShot(0, m_model.get(), [&] {
            meanwhile = true;
            QVERIFY(m_model->busy());
            QVERIFY(!m_model->saveForm()); // one after the other
            QVERIFY(!m_model->closeForm());
            QVERIFY(!m_model->closeEverything());
            type(u"Rosa Delgado"_s);
        });
        QVERIFY(m_model->saveForm());
        QVERIFY(meanwhile);
        QVERIFY(m_desktop->questions.isEmpty());
        QVERIFY(!m_model->busy());
        QVERIFY(m_model->openPDF()->hasUnsavedChanges());
        QVERIFY(m_model->saveForm());
        QVERIFY(!m_model->openPDF()->hasUnsavedChanges());
        QCOMPARE(m_model->filledPDFs()->size(), 1);

        // the same while it is saved to be closed: what was typed last is not lost with it
        for (const auto close : {&AppModel::closeForm, &AppModel::closeEverything}) {
            type(u"Rosa D."_s);
            m_desktop->answers = {save};
            m_desktop->whileAsking = [&] {
                QTimer::singleShot(0, m_model.get(), [&] { type(u"Rosa Delgado Ruiz"_s); });
            };
            QVERIFY(!(m_model.get()->*close)());
            QVERIFY(m_model->openPDF()->hasUnsavedChanges());
            QCOMPARE(m_model->openPDF()->document().value(0).text, u"Rosa Delgado Ruiz"_s);
            QVERIFY(m_model->saveForm());
        }

        // nor is a form taken away that is saved once more without a change
        QTimer::singleShot(0, m_model.get(), [&] {
            QVERIFY(!m_model->closeForm());
            QVERIFY(!m_model->closeEverything());
        });
        QVERIFY(m_model->saveForm());
        QVERIFY(m_model->openPDF());
        QVERIFY(m_model->closeForm());
    }

    void whatIsWrittenIntoAWordFormIsNeverReplaced()
    {
        const DocumentsFolder documents;
        QSEntry word = w9();
        word.id = u"us-word"_s;
        word.url = u"https://www.irs.gov/word.docx"_s;
        word.kind = QSKind::document;
        const QString folder = documents.path() + u"/Vell Quillstone/"_s;
        const QString name = QSExport::safeFileName(word.displayTitle());
        const auto openWord = [&](const QByteArray &official) {
            m_agencies->answer(word.url, {Answer::pdf(official)});
            QSCache::clear();
            const qsizetype before = m_desktop->openedFiles.size();
            m_model->open(word);
            QTRY_COMPARE(m_desktop->openedFiles.size(), before + 1);
        };
        const auto opened = [this] { return m_desktop->openedFiles.constLast(); };
        openWord("PK first");
        const QString first = opened();
        QCOMPARE(first, folder + name + u".docx"_s);
        QVERIFY(m_model->message()->endsWith(first));
        openWord("PK first");
        QCOMPARE(opened(), first); // as it came: the same again

        writeFile(first, "PK first, filled in");
        m_desktop->answers = {0}; // open mine
        openWord("PK second");
        QCOMPARE(opened(), first);
        m_desktop->answers = {1}; // a new copy
        openWord("PK second");
        const QString second = opened();
        QCOMPARE(second, folder + name + u" 2.docx"_s);
        QCOMPARE(contents(second), "PK second");
        QCOMPARE(contents(first), "PK first, filled in");
        openWord("PK second");
        QCOMPARE(opened(), second);
    }

    void aFormIsFetchedFilledSavedAndFoundAgain()
    {
        m_model->open(w9());
        QCOMPARE(m_model->busy(),
                 u"Getting W-9 \u2014 %1 from the official site\u2026"_s.arg(w9().title));
        QTRY_VERIFY(m_model->openPDF());
        QVERIFY(!m_model->busy());
        const OpenPDF &form = m_model->openPDF()->form();
        QCOMPARE(form.title, w9().displayTitle());
        QCOMPARE(form.status, u"Downloaded from the official site just now."_s);

        type(u"full_name"_s, u"Rosa Delgado"_s);
        QVERIFY(m_model->openPDF()->hasUnsavedChanges());
        QVERIFY(m_model->saveForm());
        QVERIFY(!m_model->openPDF()->hasUnsavedChanges());
        const QString title =
            w9().displayTitle() +
            u" (filled %1)"_s.arg(QLocale::c().toString(QDate::currentDate(), u"MMMM d, yyyy"_s));
        QCOMPARE(m_model->message(), u"Saved to My Documents as \"%1\"."_s.arg(title));
        type(u"phone"_s, u"719-555-0142"_s);
        QVERIFY(m_model->saveForm()); // over the first copy
        QCOMPARE(m_model->filledPDFs()->size(), 1);
        QVERIFY(m_model->closeForm());
        QVERIFY(!m_model->openPDF());

        const QSFilledPDF record = m_model->filledPDFs()->constFirst();
        QCOMPARE(record.entryID, w9().id);
        m_model->openSaved(record);
        QTRY_VERIFY(m_model->openPDF());
        QCOMPARE(m_model->openPDF()->form().title, title);
        QVERIFY(m_model->openPDF()->form().status.startsWith(u"Saved "));
        const auto values = QSPDF::values(m_model->openPDF()->document());
        QCOMPARE(values.value(u"full_name"_s), u"Rosa Delgado"_s);
        QCOMPARE(values.value(u"phone"_s), u"719-555-0142"_s);
        QVERIFY(!m_model->openPDF()->hasUnsavedChanges());
    }

    void whatIsNoFileOpensInTheBrowser()
    {
        const QSEntry *page = QSDirectory::shared().entry(u"us-ein-online");
        QVERIFY(page);
        m_model->open(*page);
        QCOMPARE(m_desktop->browsed, QList<QUrl>{QUrl(page->url)});
        QCOMPARE(m_model->message(), u"Opened in your web browser."_s);
        QVERIFY(!m_model->busy());
        m_desktop->hasBrowser = false;
        m_model->openOfficialPage(w9());
        QVERIFY(m_model->message()->contains(m_desktop->browsed.constLast().toString()));
    }

    void onlyWebPagesOpenInTheBrowser()
    {
        for (const QString &url : {u"file:///etc/passwd"_s, u"http://www.irs.gov/"_s,
                                   u"ssh://host.example.gov"_s, u"javascript:1"_s, u""_s}) {
            m_model->openLink(url);
            QCOMPARE(m_model->message(),
                     u"This link is not a secure web page (https) and was not opened: "_s + url);
        }
        QVERIFY(m_desktop->browsed.isEmpty());
    }

    void theFormAskedForLastIsShown()
    {
        Answer slow = Answer::pdf(m_form);
        slow.delay = std::chrono::milliseconds(300);
        m_agencies->answer(w9().url, {slow, Answer::pdf(m_form)});
        m_model->open(w9());
        m_model->open(ss4());
        QTRY_VERIFY(m_model->openPDF());
        QCOMPARE(m_model->openPDF()->form().entry->id, ss4().id);
        QTest::qWait(500); // the first one's answer would have come by now
        QCOMPARE(m_model->openPDF()->form().entry->id, ss4().id);

        m_agencies->answer(w9().url, {slow, Answer::pdf(m_form)});
        m_model->open(w9());
        m_model->openPractice();
        QTest::qWait(500);
        QCOMPARE(m_model->openPDF()->form().title, u"Vell Practice Form"_s);

        m_model->open(w9()); // its way was ended, so it begins anew
        QTRY_COMPARE(m_model->openPDF()->form().title, w9().displayTitle());
        QSignalSpy wanted(m_model.get(), &AppModel::openPDFWanted);
        const QUuid opening = m_model->openPDF()->form().id;
        m_model->open(w9()); // the window that has it comes to the front
        QCOMPARE(wanted.size(), 1);
        QCOMPARE(m_model->openPDF()->form().id, opening);
    }

    void theEndWaitsForNoOpening()
    {
        // A page without end, whose words are to name the box on it.
        const QByteArray lines = QByteArray("0 0 m 9 9 l S ").repeated(1000);
        QByteArray endless = "%PDF-1.7\n1 0 obj <</Type/Catalog/Pages 2 0 R>> endobj\n"
                             "2 0 obj <</Type/Pages/Kids[3 0 R]/Count 1>> endobj\n"
                             "3 0 obj <</Type/Page/Parent 2 0 R/MediaBox[0 0 99 99]/Annots[<</Type"
                             "/Annot/Subtype/Widget/FT/Btn/T(a)/Rect[9 9 19 19]>>]/Contents[";
        endless += QByteArray("4 0 R ").repeated(100'000) + "]>> endobj\n4 0 obj <</Length " +
                   QByteArray::number(lines.size()) + ">> stream\n" + lines +
                   "\nendstream endobj\ntrailer <</Root 1 0 R>>\n";
        m_agencies->answer(w9().url, {Answer::pdf(endless)});
        m_model->open(w9());
        QTRY_VERIFY(QFile::exists(QSCache::fileURL(w9()))); // and is opened now
        m_model.reset();
        QVERIFY(QThreadPool::globalInstance()->waitForDone(10'000));
        restartModel();
    }

    void closingAsksAboutWhatIsNotSaved()
    {
        m_model->openPractice();
        QCOMPARE(m_model->openPDF()->form().title, u"Vell Practice Form"_s);
        QCOMPARE(m_model->openPDF()->form().status,
                 u"A practice form made by this app (not an official form)."_s);
        QVERIFY(m_model->closeForm()); // nothing typed, nothing asked
        m_model->openPractice();
        type(u"full_name"_s, u"Rosa"_s);
        m_desktop->answers = {cancel};
        QVERIFY(!m_model->closeForm());
        QVERIFY(m_model->openPDF());
        m_desktop->answers = {cancel};
        m_model->openPractice(); // another form asks as well
        QCOMPARE(QSPDF::values(m_model->openPDF()->document()).value(u"full_name"_s), u"Rosa"_s);
        m_desktop->answers = {cancel};
        QVERIFY(!m_model->closeEverything());
        m_desktop->answers = {save};
        QVERIFY(m_model->closeEverything());
        QCOMPARE(m_desktop->questions.constLast().text,
                 u"Save changes to \"Vell Practice Form\""_s);
        QCOMPARE(m_model->filledPDFs()->constFirst().entryID, u"practice"_s);

        m_model->openPractice();
        type(u"full_name"_s, u"Rosa"_s);
        m_desktop->answers = {dontSave};
        QVERIFY(m_model->closeForm());
        QCOMPARE(m_model->filledPDFs()->size(), 1);
    }

    void aCopyDeletedWhileItIsOpenIsSavedAnew()
    {
        m_model->openPractice();
        type(u"full_name"_s, u"Rosa"_s);
        QVERIFY(m_model->saveForm());
        m_desktop->answers = {1}; // "Delete"
        const QString title = m_model->filledPDFs()->constFirst().title;
        m_model->deleteFilledPDF(m_model->filledPDFs()->constFirst());
        QCOMPARE(m_model->message(), u"\"%1\" was deleted."_s.arg(title));
        QVERIFY(m_model->filledPDFs()->isEmpty());
        QVERIFY(m_model->openPDF()->hasUnsavedChanges());
        QVERIFY(m_model->saveForm());
        QCOMPARE(m_model->filledPDFs()->size(), 1);
        QVERIFY(m_model->saveForm());
        QCOMPARE(m_model->filledPDFs()->size(), 1);
    }

    void aCopyThatAnotherStoreLacksIsSavedAnew()
    {
        m_model->openPractice();
        type(u"full_name"_s, u"Rosa"_s);
        QVERIFY(m_model->saveForm());
        m_model->storeReplaced();
        QVERIFY(!m_model->openPDF()->hasUnsavedChanges());
        QSStore::shared()->deleteFilledPDF(m_model->filledPDFs()->constFirst());
        m_model->storeReplaced();
        QVERIFY(m_model->openPDF()->hasUnsavedChanges());
        QVERIFY(m_model->saveForm());
        QCOMPARE(m_model->filledPDFs()->size(), 1);
    }

    void aCopyThatCannotBeReadLeavesTheFormWindowAlone_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("cause");
        QTest::newRow("its file is gone") << QByteArray() << u"No such file or directory"_s;
        QTest::newRow("its file is no PDF any more")
            << QByteArray("moved") << u"This file is not a PDF, so it can't be opened here."_s;
    }

    void aCopyThatCannotBeReadLeavesTheFormWindowAlone()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, cause);
        const QSFilledPDF record = QSStore::shared()->saveFilledPDF(u"us-w-9"_s, u"W-9"_s, m_form);
        const QString path = QSInfo::filledFolder().filePath(record.fileName);
        QVERIFY(QFile::remove(path));
        if (!bytes.isEmpty()) {
            writeFile(path, bytes);
        }
        m_model->openPractice();
        const QUuid opening = m_model->openPDF()->form().id;
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"."_s));
        m_model->openSaved(record);
        QTRY_COMPARE(m_model->message(), u"This saved PDF could not be opened. "_s + cause);
        QCOMPARE(m_model->openPDF()->form().id, opening);
    }

    void bothExportsHoldWhatWasTyped()
    {
        m_model->openPractice();
        QSStore::shared()->saveFilledPDF(u"us-w-9"_s, u"W-9"_s, m_form);
        type(u"city_state_zip"_s, u"Pueblo, CO 81003"_s);
        for (const auto how : {AppModel::FormExport::editable, AppModel::FormExport::flattened}) {
            const QString path = m_user->path(u"copy.pdf"_s);
            m_desktop->savePaths = {path};
            m_model->setMessage(std::nullopt);
            m_model->exportForm(how);
            m_model->exportForm(how); // one at a time
            QVERIFY(m_model->message());
            QTRY_COMPARE(m_model->message(), u"Saved copy.pdf"_s);
            QCOMPARE(m_desktop->suggestedNames.constLast(), u"Vell Practice Form.pdf"_s);
            const auto copy = QSPDFDocument::open(contents(path));
            const bool editable = how == AppModel::FormExport::editable;
            QCOMPARE(QSPDF::isFillable(*copy), editable);
            const QString held =
                editable ? QSPDF::values(*copy).value(u"city_state_zip"_s) : copy->text(0);
            QVERIFY(held.contains(u"Pueblo, CO 81003"));
        }
        const std::weak_ptr<QSPDFDocument> document = m_model->openPDF()->form().document;
        m_desktop->answers = {dontSave};
        m_desktop->whileAsking = [&] { // another form comes while the panel stands
            m_model->openSaved(m_model->filledPDFs()->constFirst());
            QTest::qWait(300);
            QVERIFY(!document.expired() && m_desktop->questions.isEmpty());
        };
        m_model->printForm();
        QTRY_COMPARE(m_desktop->printedPDFs, QStringList{u"Vell Practice Form"_s});
        QTRY_COMPARE(m_model->message(), u"Sent to the printer."_s);
        QTRY_COMPARE(m_model->openPDF()->form().title, u"W-9"_s);
    }

    void answersThatAreCutAreAskedAbout()
    {
        constexpr int showMe = 0;
        constexpr int anyway = 1;
        m_model->openPractice();
        type(u"phone"_s, u"555 0100 "_s.repeated(40));
        QSignalSpy wanted(m_model.get(), &AppModel::fieldWanted);
        m_desktop->answers = {cancel, showMe, anyway};
        m_model->printForm();
        QTRY_COMPARE(m_desktop->questions.size(), 1);
        const QSDesktop::Question &question = m_desktop->questions.constFirst();
        QCOMPARE(question.text, u"1 answer is cut on page 1."_s);
        QVERIFY(question.detail.startsWith(u"\"Phone\" on page 1: \"555"));
        QCOMPARE(question.buttons, (QStringList{u"Show Me"_s, u"Print Anyway"_s, u"Cancel"_s}));
        QCOMPARE(question.cancel, cancel);
        QTRY_VERIFY(!m_model->busy());
        m_model->printForm();
        QTRY_COMPARE(wanted.size(), 1);
        QCOMPARE(wanted.at(0).at(0).toInt(), 3);
        QVERIFY(m_desktop->printedPDFs.isEmpty());
        QTRY_VERIFY(!m_model->busy());
        const QString path = m_user->path(u"cut.pdf"_s);
        m_desktop->savePaths = {path};
        m_model->exportForm(AppModel::FormExport::flattened);
        QTRY_COMPARE(m_model->message(), u"Saved cut.pdf"_s);
        QVERIFY(QSPDFDocument::open(contents(path))->text(0).contains(u'…'));
        QCOMPARE(m_desktop->questions.constLast().buttons.at(anyway), u"Export Anyway"_s);
    }

    void aSiteThatCannotBeReachedIsASentence()
    {
        m_model->openPractice();
        type(u"full_name"_s, u"Rosa"_s);
        m_agencies->goAway();
        m_model->open(ss4()); // nothing is asked: the open form stays
        QTRY_VERIFY(m_model->message());
        m_agencies->comeBack();
        QVERIFY2(m_model->message()->endsWith(
                     u"An internet connection is needed the first time a form is opened."),
                 qPrintable(*m_model->message()));
        QVERIFY(!m_model->busy());
        QVERIFY(m_model->openPDF()->hasUnsavedChanges());
    }

    void workThatEndsLeavesTheTextOfWhatStillRuns()
    {
        Answer slow = Answer::pdf(m_form);
        slow.delay = std::chrono::seconds(1);
        m_agencies->answer(w9().url, {slow});
        m_model->recheck(w9());
        const auto checking = m_model->busy();
        m_model->openSaved(QSStore::shared()->saveFilledPDF(u"us-ss-4"_s, u"SS-4"_s, m_form));
        QCOMPARE(m_model->busy(), u"Opening \"SS-4\"\u2026"_s);
        m_model->emptyCache();
        QVERIFY(m_model->message());
        QTRY_COMPARE(m_model->busy(), checking);
        QTRY_VERIFY(!m_model->busy());
    }

    void copiesOfOneTitleAreHandedOutApart()
    {
        const auto saved = [](const QByteArray &pdf) {
            return QSStore::shared()->saveFilledPDF(u"us-w-9"_s, u"W-9"_s, pdf);
        };
        const QString first = m_model->handOut(saved("%PDF first"));
        QCOMPARE(contents(m_model->handOut(saved("%PDF second"))), "%PDF second");
        QCOMPARE(contents(first), "%PDF first");
        QVERIFY(first.endsWith(u"/W-9.pdf"));
    }

    void aRecheckTellsTheScreens()
    {
        m_model->open(ss4());
        QTRY_VERIFY(m_model->openPDF());
        QSignalSpy revisions(m_model.get(), &AppModel::revisionChanged);
        m_model->recheck(ss4());
        QCOMPARE(m_model->busy(), u"Checking the official site for a newer version\u2026"_s);
        QTRY_COMPARE(m_model->message(),
                     u"Checked with the official site just now: no newer version."_s);
        QVERIFY(!revisions.isEmpty());
        m_model->showSavedCopy(ss4());
        QCOMPARE(m_desktop->shownInFolder, QStringList{QSCache::fileURL(ss4())});
    }

    void aCheckOfAllLinksIsRecordedAndSummed()
    {
        m_agencies->answer(ss4().url, {Answer::refusal(404)});
        QSignalSpy progress(m_model.get(), &AppModel::checkingChanged);
        m_model->checkAllLinks();
        const int total = m_model->checking()->total;
        QVERIFY(total > 200);
        m_model->checkAllLinks(); // one at a time
        QTRY_VERIFY_WITH_TIMEOUT(!m_model->checking(), 60000);
        QVERIFY(progress.size() > 2);
        QVERIFY2(m_model->message()->contains(u" of %1 official links need attention. They are "
                                              "marked on this screen."_s.arg(total)),
                 qPrintable(*m_model->message()));
        QCOMPARE(QSStore::shared()->linkChecks().size(), total);
        QCOMPARE(m_model->linkStatus(ss4()).level, 2);
        QCOMPARE(m_model->linkStatus(w9()).level, 0);
    }

    void aCheckThatCannotBeRecordedSaysSo()
    {
        m_agencies->answer(ss4().url, {Answer::refusal(404)});
        QSStore::shared()->db().exec(u"CREATE TRIGGER full BEFORE INSERT ON link_checks BEGIN "
                                     "SELECT RAISE(ABORT, 'disk is full'); END"_s);
        const QString said = checkLinks();
        QVERIFY2(QRegularExpression(
                     u"^[1-9]\\d* of \\d+ official links need attention. The results could not be "
                     "saved, so this screen does not show them. The database reported a problem: "
                     "disk is full$"_s)
                     .match(said)
                     .hasMatch(),
                 qPrintable(said));
        QCOMPARE(m_model->linkStatus(ss4()).level, 0);
    }

    void withoutANetworkNoLinkIsMarked()
    {
        m_agencies->goAway();
        QCOMPARE(checkLinks(), u"None of the official sites could be reached. Check your internet "
                               "connection; no link was marked. Reason: the site could not be "
                               "reached."_s);
        m_agencies->comeBack();
        QVERIFY(QSStore::shared()->linkChecks().isEmpty());
    }

    void aCheckOfAllLinksStops()
    {
        Answer silent = Answer::pdf(m_form);
        silent.delay = std::chrono::minutes(1);
        m_agencies->answerOthers(silent);
        m_model->checkAllLinks();
        m_model->stopChecking();
        QTRY_VERIFY(!m_model->checking());
        QCOMPARE(m_model->message(), u"The check was stopped after 0 links."_s);
        m_agencies->answerOthers(Answer::pdf(m_form, "\"1\""));
    }

    void aHitShowsItsEntryUnderItsState()
    {
        m_model->setFormCategory(QSCategory::w9);
        const QList<QSEntry> texas = QSDirectory::shared().entriesFor(u"TX");
        m_model->openHit({QSSearchHit::Kind::form, texas.constFirst().id, {}, {}});
        QCOMPARE(m_model->screen(), Screen::forms);
        QCOMPARE(m_model->state(), u"TX"_s);
        QCOMPARE(m_model->selectedEntryID(), texas.constFirst().id);
        QVERIFY(!m_model->formCategory());
        m_model->openHit({QSSearchHit::Kind::form, w9().id, {}, {}});
        QCOMPARE(m_model->state(), u"TX"_s); // federal forms belong to every state
    }

private:
    static qsizetype threads()
    {
        return QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
    }

    /// What is said at the end of a check of all links.
    QString checkLinks()
    {
        m_model->checkAllLinks();
        const bool ended = QTest::qWaitFor([this] { return !m_model->checking(); }, 60000);
        return ended ? m_model->message().value_or(QString()) : QString();
    }

    void type(const QString &name, const QString &text)
    {
        for (const FormField &field : m_model->openPDF()->document().fields()) {
            if (field.name == name) {
                m_model->setFormValue(field.id, {.text = text, .on = false, .chosen = {}});
                return;
            }
        }
        QFAIL(qPrintable(u"no field "_s + name));
    }

    qsizetype m_threads = 0;
    QByteArray m_form;
    std::unique_ptr<AgencyServer> m_agencies;
};

QTEST_MAIN(TestAppModelForms)
#include "tst_appmodelforms.moc"
