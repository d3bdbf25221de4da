#include "DocumentsFolder.h"
#include "QSCache.h"
#include "QSDirectory.h"
#include "QSPDF.h"
#include "TestFiles.h"
#include "VxMessageBar.h"
#include "WindowFixture.h"
#include "screens/FormsModel.h"

#include <QAccessible>
#include <QAction>
#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>
#include <QTextEdit>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Nobody listens there: what asks it is refused at once, and nothing leaves the machine.
const QString site = u"https://127.0.0.1:9/"_s;

struct Entry
{
    QString id;
    QString category;
    QString title;
    QString kind;
    bool fillable = false;
    QString number = {};
    QString checked = {}; ///< empty for the directory's own date
    bool browserOnly = false;
    QString host = site;
};

const QList<Entry> entries = {
    {u"co-claim"_s, u"smallClaims"_s, u"Notice of Claim"_s, u"pdf"_s, true, u"JDF 250"_s},
    {u"co-llc"_s, u"llc"_s, u"Articles of Organization"_s, u"online"_s},
    {u"co-guide"_s, u"smallClaims"_s, u"Guide to Claims"_s, u"pdf"_s},
    {u"co-letter"_s, u"nameChange"_s, u"Letter of Consent"_s, u"document"_s},
    {u"co-decree"_s, u"divorce"_s, u"Decree"_s, u"pdf"_s, true, {}, {}, true},
    {u"co-law"_s, u"divorce"_s, u"Law of Divorce"_s, u"statute"_s, false, {}, u"2020-01-02"_s},
    {u"ca-claim"_s,
     u"smallClaims"_s,
     u"Plaintiff's Claim"_s,
     u"pdf"_s,
     true,
     u"SC-100"_s,
     {},
     false,
     u"https://www.courts.ca.gov/"_s},
    {u"us-ein"_s, u"ein"_s, u"Employer Number"_s, u"page"_s},
};

QByteArray directory()
{
    QJsonArray places;
    for (const auto &[code, name] :
         {std::pair(u"CO"_s, u"Colorado"_s), std::pair(u"CA"_s, u"California"_s),
          std::pair(u"US"_s, u"United States"_s)}) {
        QJsonObject place{{u"code"_s, code},
                          {u"name"_s, name},
                          {u"offices"_s, QJsonObject{{u"smallClaims"_s, u"The county court."_s}}},
                          {u"legalAid"_s, QJsonArray()}};
        for (const QString &page :
             {u"selfHelp"_s, u"courtForms"_s, u"courtFees"_s, u"business"_s, u"businessFees"_s}) {
            place.insert(page, site + code + page);
        }
        places.append(place);
    }
    QJsonArray forms;
    for (const Entry &entry : entries) {
        QJsonObject form{{u"id"_s, entry.id},
                         {u"j"_s, entry.id.left(2).toUpper()},
                         {u"cat"_s, entry.category},
                         {u"title"_s, entry.title},
                         {u"number"_s, entry.number},
                         {u"agency"_s, u"Judicial Branch"_s},
                         {u"kind"_s, entry.kind},
                         {u"fillable"_s, entry.fillable},
                         {u"url"_s, entry.host + entry.id},
                         {u"info"_s, entry.host + u"about/"_s + entry.id},
                         {u"rev"_s, QString()},
                         {u"note"_s, QString()},
                         {u"browserOnly"_s, entry.browserOnly}};
        if (!entry.checked.isEmpty()) {
            form.insert(u"checked"_s, entry.checked);
        }
        forms.append(form);
    }
    const QString today = QDate::currentDate().toString(Qt::ISODate);
    return QJsonDocument(QJsonObject{{u"format"_s, u"test"_s},
                                     {u"version"_s, 1},
                                     {u"checked"_s, today},
                                     {u"note"_s, QString()},
                                     {u"jurisdictions"_s, places},
                                     {u"entries"_s, forms}})
        .toJson();
}

const QSEntry &entry(QStringView id)
{
    return *QSDirectory::shared().entry(id);
}

/// As if it had been downloaded a moment ago: opening it asks no site.
void saveCopy(const QSEntry &form, const QByteArray &bytes)
{
    writeFile(QSCache::fileURL(form), bytes);
    const QDateTime now = QDateTime::currentDateTimeUtc();
    QSCache::saveMeta({.entryID = form.id,
                       .url = form.url,
                       .finalURL = form.url,
                       .downloadedAt = now,
                       .lastCheckedAt = now,
                       .etag = {},
                       .lastModified = {},
                       .sha256 = QSCache::sha(bytes),
                       .bytes = bytes.size(),
                       .contentType = u"application/pdf"_s});
}
} // namespace

/// Official Forms and what leads to it, on a small directory of the test's own.
class TestFormsView final : public QObject, private WindowFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const QDir shipped = *QSInfo::resourceFolder();
        for (const QString &folder : {u"icons"_s, u"templates"_s}) {
            QVERIFY(QFile::link(shipped.absoluteFilePath(folder), m_resources.filePath(folder)));
        }
        QVERIFY(QDir(m_resources.path()).mkpath(u"data"_s));
        writeFile(m_resources.filePath(u"data/directory.json"_s), directory());
        QSInfo::setResourceFolderOverride(m_resources.path());
        QCOMPARE(QSDirectory::loadError(), QString());
        setLook();
    }

    void init()
    {
        QVERIFY(begin());
        press(Qt::Key_2, Qt::ControlModifier);
    }

    void cleanup() { end(); }

    void theListFollowsStateAndCategory()
    {
        const QStringList federal = {u"[EIN (employer ID number)]"_s, u"Employer Number"_s};
        const QStringList claims = {u"[Small claims]"_s, u"JDF 250 \u2014 Notice of Claim"_s,
                                    u"Guide to Claims"_s};
        const QStringList before = {u"[Form an LLC]"_s, u"Articles of Organization"_s};
        const QStringList after = {u"[Divorce / dissolution]"_s, u"Decree"_s, u"Law of Divorce"_s,
                                   u"[Name change]"_s, u"Letter of Consent"_s};
        QCOMPARE(lines(), before + claims + after + federal);
        choose(u"Category"_s, u"Small claims"_s);
        QCOMPARE(lines(), claims);
        choose(u"State"_s, u"California"_s);
        QCOMPARE(m_model->state(), u"CA"_s);
        const QStringList inCalifornia = {u"[Small claims]"_s,
                                          u"SC-100 \u2014 Plaintiff's Claim"_s};
        QCOMPARE(lines(), inCalifornia);
        choose(u"Category"_s, u"All categories"_s);
        QCOMPARE(lines(), inCalifornia + federal);

        // a category that the next state lacks stays chosen, and the list says so
        choose(u"State"_s, u"Colorado"_s);
        choose(u"Category"_s, u"Divorce / dissolution"_s);
        choose(u"State"_s, u"California"_s);
        QVERIFY(!list()->isVisible());
        QVERIFY(
            texts().contains(u"The directory lists no form in this category for California."_s));
    }

    void theSelectionStaysInViewAndHomeGoesToTheFirstForm()
    {
        m_model->selectEntry(u"co-decree"_s);
        QCoreApplication::processEvents(); // the screen takes its size
        list()->scrollToTop();
        const int before = list()->height();
        m_window->resize(m_window->minimumSize());
        QTRY_VERIFY(list()->height() < before);
        QVERIFY(list()->viewport()->rect().contains(list()->visualRect(list()->currentIndex())));
        list()->setFocus();
        press(Qt::Key_Home);
        QCOMPARE(m_model->selectedEntryID(), u"co-llc"_s);
        QCOMPARE(list()->verticalScrollBar()->value(), 0); // its heading in view
    }

    void rowsSayEverythingAndTellStatusesApart()
    {
        QSStore::shared()->recordLinkCheck({.url = entry(u"co-llc").url,
                                            .checked = QDateTime::currentDateTimeUtc(),
                                            .status = 404,
                                            .ok = false,
                                            .finalURL = {},
                                            .contentType = {},
                                            .note = {}});
        QSStore::shared()->touch();
        QList<QImage> marks;
        for (const auto &[id, status] : {std::pair(u"co-guide"_s, u"Checked "_s),
                                         std::pair(u"co-law"_s, u"Last checked January 2, 2020"_s),
                                         std::pair(u"co-llc"_s, u"Link problem"_s)}) {
            m_model->selectEntry(id);
            const QModelIndex row = list()->currentIndex();
            const QString read = row.data(Qt::AccessibleTextRole).toString();
            QVERIFY2(read.startsWith(entry(id).displayTitle() + u", Judicial Branch"_s),
                     qPrintable(read));
            QVERIFY2(read.contains(u", "_s + status), qPrintable(read));
            QCOMPARE(read.contains(u" \u00B7 print and fill by hand, "_s), id == u"co-guide"_s);
            const QStringList marked = texts().filter(status);
            QCOMPARE(marked.size(), 1); // beside the list as well
            const QIcon icon = row.data(FormsModel::statusIconRole).value<QIcon>();
            marks.append(icon.pixmap(32, 32).toImage().createAlphaMask()); // shapes, not colours
        }
        QVERIFY(marks.at(0) != marks.at(1) && marks.at(1) != marks.at(2));
        QVERIFY(marks.at(0) != marks.at(2));
    }

    void theMainActionGoesByTheKind_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("way");
        QTest::newRow("PDF with fields: form window")
            << u"co-claim"_s << u"Open, fill & print"_s << u"window"_s;
        QTest::newRow("PDF without fields: form window")
            << u"co-guide"_s << u"Open & print"_s << u"window"_s;
        QTest::newRow("Word document: the desktop's program")
            << u"co-letter"_s << u"Open & print"_s << u"program"_s;
        QTest::newRow("PDF for the browser only: browser")
            << u"co-decree"_s << u"Open in browser"_s << u"browser"_s;
        QTest::newRow("law text: browser") << u"co-law"_s << u"Open in browser"_s << u"browser"_s;
    }

    void theMainActionGoesByTheKind()
    {
        QFETCH(const QString, id);
        QFETCH(const QString, way);
        QFETCH(const QString, label);
        const bool downloads = way != u"browser"_s;
        const DocumentsFolder documents;
        if (downloads) {
            saveCopy(entry(id), QSPDF::practiceForm());
        }
        m_model->selectEntry(id);
        QPushButton *main = button(label);
        QVERIFY(button(u"Official page"_s));

        const QSignalSpy busy(m_model.get(), &AppModel::busyChanged);
        main->setFocus();
        press(Qt::Key_Space);
        QCOMPARE(focused(), main);
        if (downloads) { // a hurried second press goes nowhere else and asks for nothing
            press(Qt::Key_Space);
        }
        QTRY_VERIFY(!m_model->busy());
        QCOMPARE(busy.count(), downloads ? 2 : 0);
        QCOMPARE(m_model->openPDF().has_value(), way == u"window"_s);
        QCOMPARE(m_desktop->openedFiles.size(), way == u"program"_s ? 1 : 0);
        QCOMPARE(m_desktop->browsed.size(), way == u"browser"_s ? 1 : 0);
        QVERIFY(m_model->closeForm());

        QTest::keyClick(list(), Qt::Key_Return); // does the same
        QTRY_COMPARE(m_desktop->openedFiles.size() + m_desktop->browsed.size() +
                         (m_model->openPDF() ? 2 : 0),
                     2);
        QVERIFY(m_model->closeForm());
    }

    void theDetailTellsAboutTheSavedCopy()
    {
        const QString id = u"co-claim"_s;
        QVERIFY(texts().contains(u"Choose a form on the left."_s));
        m_model->selectEntry(id);
        QVERIFY(texts().contains(u"Not downloaded yet"_s));
        QVERIFY(texts().contains(u"The county court."_s));
        QVERIFY(!button(u"Show saved copy in Finder"_s)->isEnabled());
        QVERIFY(!button(u"Check for a newer version now"_s)->isEnabled());

        saveCopy(entry(id), "%PDF-1.7\n");
        QSStore::shared()->touch();
        QVERIFY(!texts().contains(u"Not downloaded yet"_s));
        button(u"Show saved copy in Finder"_s)->click();
        QCOMPARE(m_desktop->shownInFolder, QStringList{QSCache::fileURL(entry(id))});
        for (QToolButton *each : m_window->findChildren<QToolButton *>()) {
            if (each->text() == u"More details"_s) {
                each->click();
            }
        }
        const QString details = shown<QTextEdit>()->toPlainText();
        QVERIFY(details.contains(entry(id).url) && details.contains(entry(id).info));
        QVERIFY(details.contains(QSCache::sha("%PDF-1.7\n")));

        // the site does not answer: the copy stays, and the message says so
        const QSignalSpy busy(m_model.get(), &AppModel::busyChanged);
        button(u"Check for a newer version now"_s)->setFocus();
        press(Qt::Key_Space);
        press(Qt::Key_Space);
        QCOMPARE(focused(), button(u"Check for a newer version now"_s));
        QTRY_VERIFY(!m_model->busy());
        QCOMPARE(busy.count(), 2);
        QVERIFY(texts().contains(m_model->message().value()));
        QVERIFY(button(u"Show saved copy in Finder"_s)->isEnabled());
    }

    void searchShowsAnEntryOfAnotherState()
    {
        m_model->setFormCategory(QSCategory::llc);
        m_model->show(Screen::profile);
        press(Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(focused(), u"plaintiff"_s);
        button(u"Show"_s)->setFocus();
        press(Qt::Key_Return);
        QCOMPARE(named<QComboBox>(u"State"_s)->currentText(), u"California"_s);
        QCOMPARE(named<QComboBox>(u"Category"_s)->currentText(), u"All categories"_s);
        QCOMPARE(list()->currentIndex().data(FormsModel::idRole).toString(), u"ca-claim"_s);
        QVERIFY(list()->viewport()->rect().contains(list()->visualRect(list()->currentIndex())));
        QVERIFY(list()->hasFocus());
        QVERIFY(button(u"Open, fill & print"_s));
    }

    /// Of alerts the desktop's screen readers hear nothing.
    void aMessageIsANotification()
    {
        VxMessageBar bar;
        bar.displayMessage(u"Saved."_s);
        const QAccessibleInterface *read = QAccessible::queryAccessibleInterface(&bar);
        QCOMPARE(read->role(), QAccessible::Notification);
        QCOMPARE(read->text(QAccessible::Name), u"Saved."_s);
    }

    void theCheckOfAllLinksShowsItsProgress()
    {
        VxMessageBar bar;
        const QSignalSpy stops(&bar, &VxMessageBar::stopWanted);
        bar.displayWork(
            {.text = u"Checking official links"_s, .done = 12, .total = 250, .stoppable = true});
        QVERIFY(std::ranges::any_of(bar.findChildren<QLabel *>(), [](const QLabel *label) {
            return label->text() == u"Checking official links: 12 of 250"_s;
        }));
        bar.findChild<QPushButton *>()->click();
        QCOMPARE(stops.count(), 1);

        QAction *check = command(u"Check All Official &Links"_s);
        check->trigger();
        QVERIFY(m_model->checking() && !check->isEnabled());
        QVERIFY(!texts().filter(u"Checking official links: "_s).isEmpty());
        QVERIFY(button(u"Stop"_s));
        QTRY_VERIFY(!m_model->checking());
        QVERIFY(check->isEnabled());
        // nothing answered, which says nothing about the links
        QVERIFY(m_model->message()->startsWith(u"None of the official sites could be reached."));
        m_model->selectEntry(u"co-guide"_s);
        QCOMPARE(list()->currentIndex().data(FormsModel::levelRole).toInt(), 0);
    }

    void filledPDFsAreOpenedPrintedAndDeleted()
    {
        press(Qt::Key_4, Qt::ControlModifier);
        const QString none = u"No filled PDFs yet. Open a fillable official form, fill it in, and "
                             "choose Save Filled Copy."_s;
        QVERIFY(texts().contains(none));
        QSStore::shared()->saveFilledPDF(u"co-claim"_s, u"My claim"_s, QSPDF::practiceForm());
        auto *table = named<QTableView>(u"Filled official PDFs"_s);
        QVERIFY(table->isVisible());
        QStringList cells;
        for (int column = 0; column < 2; ++column) {
            cells.append(table->model()->index(0, column).data().toString());
        }
        QCOMPARE(cells, QStringList({u"My claim"_s, u"JDF 250 \u2014 Notice of Claim"_s}));
        table->setFocus();
        press(Qt::Key_Return);
        QTRY_VERIFY(m_model->openPDF());
        QVERIFY(m_model->closeForm());
        RecordButtons buttons(table->parentWidget());
        buttons.click(u"Print\u2026"_s);
        QTRY_COMPARE(m_desktop->printedPDFs, QStringList{u"My claim"_s});
        m_desktop->savePaths = {m_user->path(u"handed-over.pdf"_s)};
        buttons.exportAs(u"PDF with fields (still editable)"_s);
        QTRY_VERIFY(contents(m_user->path(u"handed-over.pdf"_s)).startsWith("%PDF"));
        m_desktop->answers = {1};
        buttons.click(u"Delete"_s);
        QVERIFY(texts().contains(none));
    }

    void tabWalksThroughTheScreen()
    {
        saveCopy(entry(u"co-claim"), "%PDF-1.7\n");
        m_model->selectEntry(u"co-claim"_s);
        named(u"State"_s)->setFocus();
        QStringList walked;
        while (walked.size() < 20 && focused() != button(u"Disclaimer"_s)) {
            const auto *pressed = qobject_cast<QAbstractButton *>(focused());
            walked.append(pressed ? pressed->text() : focused()->accessibleName());
            press(Qt::Key_Tab);
        }
        const QStringList all = {u"State"_s,
                                 u"Search forms and templates"_s,
                                 u"Category"_s,
                                 u"Official forms"_s,
                                 u"The selected form"_s,
                                 u"Open, fill && print"_s,
                                 u"Official page"_s,
                                 u"Check for a newer version now"_s,
                                 u"Show saved copy in Finder"_s,
                                 u"More details"_s};
        QCOMPARE(walked.join(u'\n'), all.join(u'\n'));
    }

private:
    /// The buttons of one list of records.
    struct RecordButtons
    {
        explicit RecordButtons(QWidget *list) : m_all(list->findChildren<QPushButton *>()) {}

        [[nodiscard]] QPushButton *find(const QString &text) const
        {
            const auto found = std::ranges::find(m_all, text, &QPushButton::text);
            return found == m_all.end() ? nullptr : *found;
        }
        void click(const QString &text) const { find(text)->click(); }
        void exportAs(const QString &format) const
        {
            for (QAction *action : find(u"Export"_s)->menu()->actions()) {
                if (action->text() == format) {
                    action->trigger();
                }
            }
        }

        QList<QPushButton *> m_all;
    };

    [[nodiscard]] QListView *list() const { return named<QListView>(u"Official forms"_s); }

    /// The list's rows, headings in brackets.
    [[nodiscard]] QStringList lines() const
    {
        QStringList found;
        for (int row = 0; row < list()->model()->rowCount(); ++row) {
            const QModelIndex index = list()->model()->index(row, 0);
            const QString text = index.data().toString();
            found.append(index.flags().testFlag(Qt::ItemIsSelectable) ? text : u'[' + text + u']');
        }
        return found;
    }

    /// Chooses with the arrow keys.
    void choose(const QString &menu, const QString &text) const
    {
        auto *box = named<QComboBox>(menu);
        box->setFocus();
        press(Qt::Key_Home);
        for (int i = 0; i < box->count() && box->currentText() != text; ++i) {
            press(Qt::Key_Down);
        }
        QCOMPARE(box->currentText(), text);
    }

    [[nodiscard]] QAction *command(const QString &text) const
    {
        for (QAction *menu : m_window->menuBar()->actions()) {
            for (QAction *action : menu->menu()->actions()) {
                if (action->text() == text) {
                    return action;
                }
            }
        }
        qFatal("no command %s", qPrintable(text));
    }

    QTemporaryDir m_resources;
};

QTEST_MAIN(TestFormsView)
#include "tst_formsview.moc"
