#include "AppModel.h"
#include "FakeDesktop.h"
#include "QSDrafts.h"
#include "QSError.h"
#include "QSTemplates.h"
#include "ScratchUser.h"
#include "SmallDisk.h"
#include "TestFiles.h"

#include <QTest>
#include <QTimer>

#include <chrono>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int openAgain = 0;
constexpr int deleteIt = 1;
constexpr int dontSave = 1;
const QString key = u"tenant_name"_s;

QStringList drafts()
{
    return QSInfo::draftsFolder().entryList(QDir::Files, QDir::Name);
}
} // namespace

/// What is typed and not saved outlives the program.
class TestDrafts final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_user = std::make_unique<ScratchUser>();
        m_desktop = std::make_unique<FakeDesktop>();
        crashAndStart();
    }

    void cleanup()
    {
        QVERIFY2(m_desktop->settled(), qPrintable(m_desktop->unexpected.join(u'\n')));
        m_model.reset();
        QSStore::setShared(nullptr);
        m_user.reset();
    }

    void aDocumentComesBackUntilItIsSaved()
    {
        m_model->newDocument(*QSTemplates::templateById(u"rent-receipt"_s));
        m_model->keepDrafts();
        QCOMPARE(drafts(), QStringList()); // nothing was typed
        m_model->setEditedValue(key, u"Rosa"_s);
        QTRY_COMPARE(drafts(), QStringList{u"document.json"_s}); // by itself, after a while
        m_desktop->answers = {openAgain};
        crashAndStart();
        QCOMPARE(m_desktop->questions.constLast().text,
                 u"\"%1\" was not saved when the program last ended."_s.arg(
                     QSTemplates::templateById(u"rent-receipt"_s)->title));
        QVERIFY(m_model->editing()->hasUnsavedChanges());
        QCOMPARE(m_model->editing()->document().values.value(key), u"Rosa"_s);
        QVERIFY(m_model->saveEdited());
        QCOMPARE(drafts(), QStringList());

        const std::optional<qint64> id = m_model->editing()->document().id;
        m_model->setEditedValue(key, u"Rosa Delgado"_s);
        m_model->keepDrafts();
        m_desktop->answers = {openAgain};
        crashAndStart();
        QCOMPARE(m_model->editing()->document().id, id); // a draft of what is saved already
        QSStore::shared()->deleteDocument(id.value());
        m_desktop->answers = {deleteIt};
        crashAndStart();
        QVERIFY(!m_model->editing());
        QCOMPARE(drafts(), QStringList());
    }

    void aFormComesBackWithEveryAnswer()
    {
        m_model->openPractice();
        type(0, u"Rosa"_s);
        m_model->keepDrafts();
        QTRY_COMPARE(drafts(), QStringList({u"form.json"_s, u"form.pdf"_s}));
        type(1, u"Calle Ñ 5"_s);
        m_model->keepDrafts();
        m_desktop->answers = {openAgain};
        crashAndStart();
        QTRY_VERIFY(m_model->openPDF());
        const QSPDFDocument &document = m_model->openPDF()->document();
        QCOMPARE(document.value(0).text, u"Rosa"_s);
        QCOMPARE(document.value(1).text, u"Calle Ñ 5"_s);
        QVERIFY(m_model->openPDF()->hasUnsavedChanges());
        QVERIFY(m_model->saveForm());
        QCOMPARE(drafts(), QStringList());

        type(2, u"Pueblo"_s);
        m_model->keepDrafts();
        QTRY_COMPARE(drafts().size(), 2);
        m_desktop->answers = {openAgain};
        crashAndStart();
        QTRY_VERIFY(m_model->openPDF());
        QVERIFY(m_model->openPDF()->form().saved); // the copy that it came from
        m_desktop->answers = {dontSave};
        QVERIFY(m_model->closeForm());
        QCOMPARE(drafts(), QStringList());
    }

    void aFormThatCannotBeOpenedAgainIsSetAside()
    {
        leaveAForm();
        writeFile(QSDrafts::formPDF(), "broken");
        m_desktop->answers = {openAgain};
        crashAndStart();
        const QStringList aside{u"form set aside 1.json"_s, u"form set aside 1.pdf"_s};
        QTRY_COMPARE(drafts(), aside);
        QVERIFY(m_model->message()->endsWith(QSInfo::draftsFolder().filePath(aside.first())));
        leaveAForm(); // the next one has its draft all the same
        QCOMPARE(drafts().size(), 4);
    }

    void aDamagedDraftIsSetAsideAndSaid_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("document") << u"document"_s;
        QTest::newRow("profile") << u"profile"_s;
        QTest::newRow("form") << u"form"_s;
    }

    void aDamagedDraftIsSetAsideAndSaid()
    {
        QFETCH(const QString, name);
        const QByteArray damaged = "{\"values\": {\"tenant_name\": \"Ros";
        writeFile(QSInfo::draftsFolder().filePath(name + u".json"_s), damaged);
        crashAndStart();
        const QString aside = name + u" set aside 1.json"_s;
        QCOMPARE(drafts(), QStringList{aside});
        const QString path = QSInfo::draftsFolder().filePath(aside);
        QCOMPARE(contents(path), damaged);
        QVERIFY2(m_model->message()->endsWith(path), qPrintable(*m_model->message()));
    }

    void whatCannotBeSetAsideStaysAndNothingIsKeptOverIt()
    {
        leaveAForm();
        const QByteArray typed = contents(QSInfo::draftsFolder().filePath(u"form.json"_s));
        QVERIFY(QFile::remove(QSDrafts::formPDF()));
        // a folder of the PDF's name, which a full folder keeps from being moved
        QVERIFY(QDir().mkpath(QSDrafts::formPDF()));
        const SmallDisk inUse(QSDrafts::formPDF(), 64 * 1024);
        if (!inUse.mounted()) {
            QSKIP("This process may not mount a small file system");
        }
        m_desktop->answers = {openAgain};
        crashAndStart();
        QTRY_VERIFY(m_model->message());
        QVERIFY2(m_model->message()->startsWith(u"What you type is in memory alone"),
                 qPrintable(*m_model->message()));
        m_model->setProfileValue(u"name"_s, u"Rosa"_s);
        m_model->keepDrafts();
        QCOMPARE(drafts(), QStringList{u"form.json"_s});
        QCOMPARE(contents(QSInfo::draftsFolder().filePath(u"form.json"_s)), typed);
    }

    void draftsAreKeptWhileSomebodyTypesOnAndSoonAfter()
    {
        static constexpr std::chrono::milliseconds betweenKeys{300};
        m_model->newDocument(*QSTemplates::templateById(u"rent-receipt"_s));
        int keys = 0;
        QTimer hand;
        connect(&hand, &QTimer::timeout, this,
                [&] { m_model->setEditedValue(key, QString::number(++keys)); });
        hand.start(betweenKeys);
        QTRY_VERIFY_WITH_TIMEOUT(QSDrafts::document(), 10'000);
        QVERIFY(keys > 3); // not after each key
        hand.stop();
        m_model->setEditedValue(key, u"the last"_s);
        QTRY_COMPARE_WITH_TIMEOUT(QSDrafts::document()->values.value(key), u"the last"_s, 2'500);
    }

    void aFormOpenedMeanwhileKeepsItsPlace()
    {
        leaveAForm();
        m_desktop->answers = {openAgain};
        crashAndStart();
        m_model->openPractice(); // before the other one is read
        type(0, u"Quang"_s);
        QTRY_COMPARE(m_model->filledPDFs()->size(), 1);
        QCOMPARE(m_model->openPDF()->document().value(0).text, u"Quang"_s);
        const QSFilledPDF copy = m_model->filledPDFs()->constFirst();
        QCOMPARE(copy.entryID, u"practice"_s);
        const auto saved =
            QSPDFDocument::open(contents(QSInfo::filledFolder().filePath(copy.fileName)));
        QCOMPARE(saved->value(0).text, u"Rosa"_s);
        QTRY_VERIFY(drafts().contains(u"form.json"_s));
    }

    void theProfileComesBack()
    {
        m_model->setProfileValue(u"name"_s, u"Rosa"_s);
        m_model->keepDrafts();
        crashAndStart();
        QVERIFY(m_model->hasUnsavedProfile());
        QCOMPARE(m_model->profile().value(u"name"_s), u"Rosa"_s);
        QVERIFY(m_model->saveProfile());
        QCOMPARE(drafts(), QStringList());
    }

    void whatWentWrongAtTheStartIsKeptAndAddedTo()
    {
        const QString problem = u"Your documents database could not be opened."_s;
        m_model->setProfileValue(u"name"_s, u"Rosa"_s);
        leaveAForm();
        writeFile(QSDrafts::formPDF(), "broken");
        m_model.reset();
        QSStore::setShared(nullptr);
        m_model = std::make_unique<AppModel>(*m_desktop);
        m_model->tellOfStart(problem);
        m_desktop->answers = {openAgain};
        m_model->startDrafts();
        QTRY_COMPARE(m_model->message()->count(u'\n'), 2);
        const QStringList said = m_model->message()->split(u'\n');
        QCOMPARE(said.at(0), problem);
        QVERIFY(said.at(1).startsWith(u"What was typed on the My Profile screen "));
        QVERIFY(said.at(2).startsWith(
            u"What was typed into \"Vell Practice Form\" could not be opened again: "));
        QVERIFY(!said.at(2).contains(problem));

        m_model->setMessage(u"Stopped."_s); // of something that the person did
        QCOMPARE(m_model->message(), u"Stopped."_s);
        QVERIFY(!m_model->saveProfile());
        QCOMPARE(m_model->message(), problem); // the cause
    }

    void aDraftThatCannotBeKeptIsSaidOnce()
    {
        QVERIFY(QSInfo::draftsFolder().removeRecursively());
        writeFile(QSInfo::dataFolder().filePath(u"Drafts"_s), "in the way");
        m_model->setProfileValue(u"name"_s, u"Rosa"_s);
        m_model->keepDrafts();
        QVERIFY(m_model->message()->startsWith(u"What you type is in memory alone"));
        m_model->setMessage(std::nullopt);
        m_model->keepDrafts();
        QVERIFY(!m_model->message());
    }

private:
    /// The program ends without closing anything, and starts again.
    void crashAndStart()
    {
        m_model.reset();
        QSStore::setShared(nullptr);
        QSStore::setShared(std::make_unique<QSStore>(QSInfo::databaseURL()));
        m_model = std::make_unique<AppModel>(*m_desktop);
        m_model->startDrafts();
    }

    void leaveAForm()
    {
        m_model->openPractice();
        type(0, u"Rosa"_s);
        m_model->keepDrafts();
        QTRY_VERIFY(drafts().contains(u"form.json"_s));
    }

    void type(int field, const QString &text)
    {
        m_model->setFormValue(field, {.text = text, .on = false, .chosen = {}});
    }

    std::unique_ptr<ScratchUser> m_user;
    std::unique_ptr<FakeDesktop> m_desktop;
    std::unique_ptr<AppModel> m_model;
};

QTEST_MAIN(TestDrafts)
#include "tst_drafts.moc"
