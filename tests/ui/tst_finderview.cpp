#include "QSDirectory.h"
#include "QSPDF.h"
#include "TestFiles.h"
#include "WindowFixture.h"
#include "screens/FinderView.h"

#include <QListView>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>

using namespace Qt::Literals::StringLiterals;

/// The guided finder, in a window of its own, on the directory that the program comes with.
class TestFinderView final : public QObject, private WindowFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setLook(); }

    void init()
    {
        QVERIFY(begin());
        m_view = std::make_unique<FinderView>(*m_model);
        m_view->resize(m_view->fontMetrics().height() * QSize(50, 30));
        m_view->show();
        QVERIFY(QTest::qWaitForWindowActive(m_view.get()));
        m_view->setFocus();
    }

    void cleanup()
    {
        m_view.reset();
        end();
    }

    void tasksAreChosenWithTheKeyboard()
    {
        QVERIFY(!m_model->finderTaskID()); // having the keyboard alone chooses none
        QVERIFY(texts().contains(u"Choose a task on the left."_s));
        press(Qt::Key_Down);
        QCOMPARE(m_model->finderTaskID(), u"llc"_s);
        QCoreApplication::processEvents();
        QScrollBar *bar = m_view->findChild<QScrollArea *>()->verticalScrollBar();
        bar->setValue(bar->maximum());
        QVERIFY(bar->value() > 0);
        QTest::keyClicks(focused(), u"sue"_s);
        QCOMPARE(m_model->finderTaskID(), u"small-claims"_s);
        QCOMPARE(bar->value(), 0);

        FinderView again(*m_model);
        again.show();
        QCOMPARE(again.findChild<QListView *>()->currentIndex().row(), 3);
    }

    void theParts_data()
    {
        QTest::addColumn<QString>("task");
        QTest::addColumn<QString>("parts"); // after the introduction
        QTest::newRow("state forms before federal ones")
            << u"llc"_s << u"Official forms: Colorado.*Official forms: Federal.*Filed with"_s;
        QTest::newRow("a task of federal forms lacks none")
            << u"ein"_s << u"Official forms: Federal.*Filed with.*Fees.*self-help.*Legal aid"_s;
        QTest::newRow("no form")
            << u"lend"_s
            << u"This directory has no official Colorado form for this task. The Vell.*self-help"_s;
        QTest::newRow("the state's law instead of a form")
            << u"poa"_s << u"Statutory form for Colorado.*self-help.*templates.*Legal aid"_s;
    }

    void theParts()
    {
        QFETCH(const QString, task);
        QFETCH(const QString, parts);
        m_model->setFinderTask(task);
        const QString said = texts().join(u'|');
        QVERIFY2(QRegularExpression(u"web browser\\.\\|"_s + parts).match(said).hasMatch(),
                 qPrintable(said));
    }

    void aFormIsOpenedByTheKeyboard()
    {
        const QSEntry form = QSDirectory::shared().entriesFor(u"US", QSCategory::ein).at(0);
        const QByteArray pdf = QSPDF::practiceForm();
        writeFile(QSCache::fileURL(form), pdf);
        QSCacheMeta copy; // checked just now: no site is asked
        copy.entryID = form.id;
        copy.lastCheckedAt = QDateTime::currentDateTimeUtc();
        copy.sha256 = QSCache::sha(pdf);
        QSCache::saveMeta(copy);
        m_model->setFinderTask(u"ein"_s);
        auto *open = named<QPushButton>(u"Open, "_s + form.displayTitle());
        open->setFocus();
        const QSignalSpy busy(m_model.get(), &AppModel::busyChanged);
        press(Qt::Key_Space);
        press(Qt::Key_Space); // hurried, and asks for nothing more
        QTRY_VERIFY(m_model->openPDF());
        QCOMPARE(busy.count(), 2);
        QVERIFY(m_model->closeForm());

        // a check of the link shows at once, and the keyboard stays
        QSLinkCheck check;
        check.url = form.url;
        QSStore::shared()->recordLinkCheck(check);
        QSStore::shared()->touch();
        QCOMPARE(texts().filter(u"Link problem at last check"_s).size(), 1);
        QCOMPARE(m_view->focusWidget(), open);
    }

    void linksOpenInTheBrowserAndTemplatesInTheEditor()
    {
        m_model->setFinderTask(u"small-claims"_s);
        button(u"Colorado court fees"_s)->click();
        QCOMPARE(m_desktop->browsed,
                 QList<QUrl>{QUrl(QSDirectory::shared().jurisdiction(u"CO")->courtFees)});
        named<QPushButton>(u"Start, Demand Letter"_s)->click();
        QCOMPARE(m_model->editing()->document().templateID, u"demand-letter"_s);
        m_model->setState(u"OH"_s);
        m_model->setFinderTask(u"poa"_s);
        QCOMPARE(texts().filter(u"This version of the app lists statutory power"_s), texts());
    }

private:
    [[nodiscard]] QWidget *window() const override { return m_view.get(); }

    std::unique_ptr<FinderView> m_view;
};

QTEST_MAIN(TestFinderView)
#include "tst_finderview.moc"
