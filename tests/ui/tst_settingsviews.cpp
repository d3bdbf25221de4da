#include "QSDate.h"
#include "QSDirectory.h"
#include "QSNet.h"
#include "TestFiles.h"
#include "VxMessageBar.h"
#include "VxZoom.h"
#include "WindowFixture.h"
#include "screens/LastCheckedView.h"
#include "screens/LegalAidView.h"
#include "screens/SettingsView.h"

#include <QComboBox>
#include <QProgressBar>
#include <QTableView>
#include <QTextEdit>

using namespace Qt::Literals::StringLiterals;

namespace {
const QSEntry &form()
{
    return *QSDirectory::shared().entry(u"us-w-9");
}

void saveCopy()
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    QSCacheMeta meta;
    meta.entryID = form().id;
    meta.downloadedAt = now;
    meta.lastCheckedAt = now;
    writeFile(QSCache::fileURL(form()), "%PDF-1.7\n");
    QSCache::saveMeta(meta);
    QSStore::shared()->touch();
}
} // namespace

/// Forms Last Checked, Legal Aid & Help and Backup & Settings.
class TestSettingsViews final : public QObject, private WindowFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        setLook();
        QSNet::setTestRoute(QSNet::TestRoute{.port = 9, .authorityFile = {}}); // nobody listens
    }
    void init() { QVERIFY(begin()); }
    void cleanup()
    {
        m_view.reset();
        end();
    }

    void lastCheckedListsAndFindsWhatIsKnown()
    {
        QVERIFY(open<LastCheckedView>());
        const QString today = QSDate::longFormat(QDate::currentDate());
        const QString listed = QSDate::longText(QSDirectory::shared().checked);
        QVERIFY(rows().filter(u" (Federal), Listed & checked "_s + listed).size() > 1);
        QVERIFY(rows().filter(u" (California), Checked by hand "_s + listed).size() > 1);
        QCOMPARE(rows().filter(u", Saved copy"_s).size(), 0);
        saveCopy(); // and the link has a problem, as one has that is no form's
        const QString page = QSDirectory::shared().jurisdiction(u"CO")->selfHelp;
        const QDateTime now = QDateTime::currentDateTimeUtc();
        QSStore::shared()->recordLinkCheck({form().url, now, 404, false, {}, {}, {}});
        QSStore::shared()->recordLinkCheck({page, now, 0, false, {}, {}, u"no answer"_s});
        for (const QSDirectory::Link &link : QSDirectory::shared().allLinks()) {
            if (link.skip) { // such a site turns programs away, which is no problem
                QSStore::shared()->recordLinkCheck(
                    {link.url, now, 403, false, {}, {}, u"blocked"_s});
            }
        }
        QSStore::shared()->touch();
        const QString broken =
            u"%1 (Federal), Link checked online %2, Saved copy downloaded %2, Link problem"_s.arg(
                form().displayTitle(), today);
        choose(u"Sort by"_s, u"Status"_s);
        QVERIFY(rows().constFirst().startsWith(broken));
        choose(u"Show"_s, u"Only what needs attention"_s);
        QVERIFY(texts().contains(
            u"%1 item(s) need attention (marked below)."_s.arg(table()->model()->rowCount())));
        QCOMPARE(rows().size(), 2);
        QVERIFY(rows().constLast().startsWith(u"Colorado self-help, Link checked online "_s));
        QVERIFY(rows().constLast().endsWith(u"Reason: no answer"_s));
        table()->setFocus();
        press(Qt::Key_End, Qt::ControlModifier);
        QVERIFY(texts().contains(rows().constLast()));
        press(Qt::Key_Return); // it is on no screen of the program
        QCOMPARE(m_desktop->browsed, QList<QUrl>{QUrl(page)});
        press(Qt::Key_Home, Qt::ControlModifier);
        named<QPushButton>(u"Show, %1 (Federal)"_s.arg(form().displayTitle()))->click();
        QCOMPARE(m_model->screen(), Screen::forms);
        QCOMPARE(m_model->selectedEntryID(), form().id);
    }

    void theCheckOfAllLinksCanBeStopped()
    {
        QVERIFY(open<LastCheckedView>());
        QPushButton *check = button(u"Check all official links now"_s);
        check->setFocus();
        press(Qt::Key_Space);
        QCOMPARE(shown<QProgressBar>()->maximum(), m_model->checking()->total);
        const auto *bar = m_window->findChild<VxMessageBar *>();
        QVERIFY(bar->isVisible());
        m_model->show(Screen::lastChecked);
        QVERIFY(!bar->isVisible());
        QVERIFY(!check->isEnabled());
        QCOMPARE(focused(), button(u"Stop"_s));
        press(Qt::Key_Return);
        QTRY_VERIFY(!m_model->checking());
        QVERIFY(m_model->message()->startsWith(u"The check was stopped after "_s));
        QVERIFY(!shown<QProgressBar>());
        QCOMPARE(focused(), check);
        press(Qt::Key_Return);
        QTRY_VERIFY(!m_model->checking());
        QVERIFY(m_model->message()->startsWith(u"None of the official sites could be reached."));
        QCOMPARE(rows().filter(u", Link problem "_s).size(), 0);
    }

    void legalAidFollowsTheState()
    {
        m_model->setState(u"CO"_s);
        QVERIFY(open<LegalAidView>());
        QCOMPARE(texts().count(u"LawHelp.org"_s), 1); // in Colorado's list and the federal one
        m_model->setState(u"TX"_s);
        const auto all = m_view->findChildren<QPushButton *>();
        QCOMPARE(all.size(), 11); // the self-help center, six of Texas and four federal ones
        all.at(1)->setFocus();
        for (int i = 1; i < all.size(); ++i) { // rows made for the second state, too
            QCOMPARE(focused(), all.at(i));
            press(Qt::Key_Tab);
        }
        named<QPushButton>(u"Open website, Lone Star Legal Aid"_s)->click();
        QCOMPARE(m_desktop->browsed.constLast().host(), u"www.lonestarlegal.org"_s);
    }

    void theCacheIsEmptiedAfterAsking()
    {
        saveCopy();
        QVERIFY(open<SettingsView>());
        QPushButton *empty = button(u"Empty the forms cache"_s);
        m_model->recheck(form());
        empty->click(); // not while a form is being fetched
        QVERIFY(m_desktop->questions.isEmpty());
        QTRY_VERIFY(!m_model->busy());
        m_desktop->answers = {0, 1};
        empty->click();
        QCOMPARE(QSCache::copyCount(), 1);
        empty->click();
        QCOMPARE(m_model->message(), u"1 official form was removed."_s);
        QVERIFY(texts().contains(u"No official form is in the cache now."_s));
    }

    void settingsShowPlacesAndLook()
    {
        QVERIFY(open<SettingsView>());
        QCOMPARE(named<QTextEdit>(u"Saved documents"_s)->toPlainText(), ScratchUser::database());
        named<QPushButton>(u"Show in Finder, Saved documents"_s)->click();
        QCOMPARE(m_desktop->openedFiles, QStringList{QSInfo::dataFolder().absolutePath()});
        choose(u"Theme"_s, u"Brushed Gray"_s);
        QCOMPARE(VellThemes::currentID(), u"brushed-gray"_s);
        VxZoom::setValue(1.45); // between two levels
        QCOMPARE(named<QComboBox>(u"Interface size"_s)->currentText(), u"145%"_s);
        choose(u"Interface size"_s, u"100%"_s);
        QCOMPARE(VxZoom::value(), 1.0);
        QCOMPARE(named<QComboBox>(u"Interface size"_s)->findText(u"145%"_s), -1);
    }

private:
    [[nodiscard]] QWidget *window() const override { return m_view.get(); }
    [[nodiscard]] QTableView *table() const { return named<QTableView>(u"Official links"_s); }

    template <typename View>
    bool open()
    {
        m_view = std::make_unique<View>(*m_model);
        m_view->show();
        m_view->activateWindow();
        return QTest::qWaitForWindowActive(m_view.get());
    }

    /// The rows as a screen reader has them.
    [[nodiscard]] QStringList rows() const
    {
        QStringList found;
        for (int row = 0; row < table()->model()->rowCount(); ++row) {
            found.append(table()->model()->index(row, 0).data(Qt::AccessibleTextRole).toString());
        }
        return found;
    }

    void choose(const QString &list, const QString &text) const
    {
        auto *box = named<QComboBox>(list);
        box->setFocus();
        press(Qt::Key_Home);
        while (box->currentText() != text && box->currentIndex() + 1 < box->count()) {
            press(Qt::Key_Down);
        }
    }

    std::unique_ptr<QWidget> m_view;
};

QTEST_MAIN(TestSettingsViews)
#include "tst_settingsviews.moc"
