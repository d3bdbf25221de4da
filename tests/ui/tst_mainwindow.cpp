#include "QSTemplates.h"
#include "TestFiles.h"
#include "WindowFixture.h"
#include "editor/FieldsPane.h"
#include "editor/PaperPreview.h"

#include <QDropEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTableView>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

/// The window as a person uses it: keys and clicks go in, and what is checked is what is shown.
class TestMainWindow final : public QObject, private WindowFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(QSTemplates::templateById(u"rent-receipt"), "no templates");
        setLook();
    }

    void init() { QVERIFY(begin()); }
    void cleanup() { end(); }

    void fromTemplateToSavedDocumentByKeyboardAlone()
    {
        press(Qt::Key_3, Qt::ControlModifier);
        named(u"Templates"_s)->setFocus();
        for (int i = 0; i < 40 && m_model->selectedTemplateID() != u"rent-receipt"_s; ++i) {
            press(Qt::Key_Down);
        }
        for (int i = 0; i < 40 && m_model->selectedTemplateID() != u"rent-receipt"_s; ++i) {
            press(Qt::Key_Up);
        }
        QCOMPARE(m_model->selectedTemplateID(), u"rent-receipt"_s);
        press(Qt::Key_Return);
        QVERIFY(m_model->editing());

        // the keyboard stands in a field; from the name, Tab goes through all of them in their
        // order
        QVERIFY(shown<FieldsPane>()->isAncestorOf(focused()));
        named(u"Document name"_s)->setFocus();
        const QSTemplate *receipt = QSTemplates::templateById(u"rent-receipt");
        QStringList walked;
        for (int i = 0; i < 60 && walked.size() < receipt->fields.size(); ++i) {
            const QString name = focused()->accessibleName();
            for (const QSField &field : receipt->fields) {
                if (name == field.label || name == field.label + u", required"_s) {
                    walked.append(field.key);
                    type(field);
                }
            }
            press(Qt::Key_Tab);
        }
        QStringList expected;
        for (const QSField &field : receipt->fields) {
            expected.append(field.key);
        }
        QCOMPARE(walked, expected);

        press(Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(shownMessage(), u"Saved to My Documents."_s);
        press(Qt::Key_W, Qt::ControlModifier);
        QVERIFY(!m_model->editing());

        // a new start finds it in My Documents, and by a word typed in it
        QVERIFY(restart());
        press(Qt::Key_4, Qt::ControlModifier);
        auto *table = shown<QTableView>();
        QCOMPARE(table->model()->rowCount(), 1);
        table->setFocus();
        press(Qt::Key_Return);
        QCOMPARE(m_model->editing()->document().values.value(u"tenant_name"_s),
                 u"Zephyrine tenant_name"_s);
        press(Qt::Key_W, Qt::ControlModifier);
        press(Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(focused(), u"zephyr"_s);
        press(Qt::Key_Return); // into the results
        QCOMPARE(qobject_cast<QPushButton *>(focused())->text(), u"Show"_s);
        press(Qt::Key_Space);
        QVERIFY(m_model->editing());
    }

    void thePreviewFollowsEveryKeystroke()
    {
        start(u"residential-lease");
        auto *preview = shown<PaperPreview>();
        QImage before = preview->grab().toImage();
        auto *pane = shown<FieldsPane>();
        auto *line = pane->findChild<QLineEdit *>();
        for (const QChar letter : u"2027-03-01"_s) {
            QTest::keyClick(line, letter.toLatin1());
            const QImage after = preview->grab().toImage();
            QVERIFY(after != before);
            before = after;
        }
        // a change far down is brought into view
        const QList<QPlainTextEdit *> texts = pane->findChildren<QPlainTextEdit *>();
        QCOMPARE(preview->verticalScrollBar()->value(), 0);
        QTest::keyClicks(texts.last(), u"x"_s);
        QVERIFY(preview->verticalScrollBar()->value() > 0);
    }

    void charactersWithoutAFontAreNamed()
    {
        start(u"rent-receipt");
        auto *line = shown<FieldsPane>()->findChild<QLineEdit *>();
        line->setText(u"Nguy\u1EC5n"_s);
        const QString warning = u"No font on this computer can print these characters: "_s;
        QVERIFY(texts().filter(warning).isEmpty());
        line->setText(u"\U000F1234"_s); // of the private use area
        QVERIFY(texts().contains(warning + u"\U000F1234"_s));
        m_desktop->answers = {dontSave};
        QVERIFY(m_model->closeEditor());
    }

    void fieldsStillEmptyAreListed()
    {
        start(u"rent-receipt");
        const auto listed = [this] {
            return texts().filter(u"Still empty (printed as blank lines):"_s).join(u' ');
        };
        QVERIFY(listed().contains(u"Received from (tenant)"_s));
        m_model->setProfileValue(u"fullName"_s, u"Rosa"_s);
        QVERIFY(listed().contains(u"Landlord's name"_s));
        button(u"Fill from profile"_s)->click();
        QVERIFY(!listed().contains(u"Landlord's name"_s));
        QVERIFY(listed().contains(u"Received from (tenant)"_s));
        m_model->saveProfile();
        m_desktop->answers = {dontSave};
        QVERIFY(m_model->closeEditor());
    }

    void closingTheWindowAsksAboutUnsavedChanges()
    {
        start(u"rent-receipt");
        QTest::keyClicks(shown<FieldsPane>()->findChild<QLineEdit *>(), u"7"_s);
        QVERIFY(m_window->isWindowModified());
        m_desktop->answers = {cancel};
        QVERIFY(!m_window->close());
        QVERIFY(m_window->isVisible());
        m_desktop->answers = {dontSave};
        QVERIFY(m_window->close());
        QCOMPARE(m_model->documents()->size(), 0);

        QVERIFY(openWindow());
        start(u"rent-receipt");
        QTest::keyClicks(shown<FieldsPane>()->findChild<QLineEdit *>(), u"7"_s);
        m_desktop->answers = {save};
        QVERIFY(m_window->close());
        QCOMPARE(m_model->documents()->size(), 1);
    }

    void aBackupDroppedOnTheWindowIsRestoredAfterTheQuestion()
    {
        m_model->setProfileValue(u"fullName"_s, u"Rosa"_s);
        QVERIFY(m_model->saveProfile());
        const QString backup = m_user->path(u"mine.qsbackup"_s);
        m_desktop->savePaths = {backup};
        m_model->backupNow();
        QTRY_COMPARE(shownMessage(), u"Saved mine.qsbackup"_s);
        m_model->setProfileValue(u"fullName"_s, u"Somebody else"_s);
        QVERIFY(m_model->saveProfile());

        drop(m_user->path(u"preferences.ini"_s)); // anything else is not taken
        m_desktop->answers = {0};                 // Cancel
        drop(backup);
        QTRY_COMPARE(m_desktop->questions.size(), 1);
        QCOMPARE(m_model->profile().value(u"fullName"_s), u"Somebody else"_s);
        m_desktop->answers = {1}; // Restore
        drop(backup);
        QTRY_COMPARE(shownMessage(), u"Restored from mine.qsbackup"_s);
        QCOMPARE(m_model->profile().value(u"fullName"_s), u"Rosa"_s);
    }

    void theWindowComesBackInItsSizeAtTheFinder()
    {
        m_window->resize(m_window->size() + QSize(40, 30));
        const QSize size = m_window->size();
        press(Qt::Key_7, Qt::ControlModifier);
        QVERIFY(m_window->close());
        QVERIFY(restart());
        QCOMPARE(m_window->size(), size);
        QCOMPARE(m_model->screen(), Screen::finder);
        QCOMPARE(named<QListWidget>(u"Screens"_s)->currentItem()->text(), u"What do you need?"_s);
    }

    void savedCopiesHaveAMenuAndCanBeDraggedOut()
    {
        const QByteArray pdf = "%PDF-1.7\n%%EOF\n";
        QSStore::shared()->saveFilledPDF(u"co-x"_s, u"My petition: 2"_s, pdf);
        press(Qt::Key_4, Qt::ControlModifier);
        auto *table = named<QTableView>(u"Filled official PDFs"_s);
        const std::unique_ptr<QMimeData> dragged(
            table->model()->mimeData({table->model()->index(0, 0)}));
        QCOMPARE(dragged->urls().size(), 1);
        const QString path = dragged->urls().constFirst().toLocalFile();
        QCOMPARE(QFileInfo(path).fileName(), u"My petition- 2.pdf"_s);
        QCOMPARE(contents(path), pdf);

        Q_EMIT table->customContextMenuRequested(table->visualRect(table->currentIndex()).center());
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu);
        m_desktop->answers = {1}; // Delete
        for (QAction *action : menu->actions()) {
            if (action->text() == u"Delete"_s) {
                action->trigger();
            }
        }
        menu->close();
        QCOMPARE(table->model()->rowCount(), 0);
    }

    void theSidebarStaysWhereTheUserStays()
    {
        start(u"rent-receipt");
        QTest::keyClicks(shown<FieldsPane>()->findChild<QLineEdit *>(), u"7"_s);
        auto *list = named<QListWidget>(u"Screens"_s);
        m_desktop->answers = {cancel};
        const QRect row = list->visualItemRect(list->item(static_cast<int>(Screen::documents)));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
        QTRY_COMPARE(m_desktop->questions.size(), 1);
        QTest::qWait(0);
        QCOMPARE(m_desktop->questions.size(), 1); // asked once
        QCOMPARE(list->currentRow(), static_cast<int>(Screen::finder));
        QVERIFY(m_model->editing());
        m_desktop->answers = {dontSave};
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
        QTRY_COMPARE(m_model->screen(), Screen::documents);
    }

    void searchResultsReplaceTheScreenAndGiveItBack()
    {
        press(Qt::Key_5, Qt::ControlModifier);
        press(Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(focused(), u"zzqx"_s);
        QVERIFY(texts().contains(u"Nothing found for \"zzqx\""_s));
        press(Qt::Key_Escape);
        QVERIFY(texts().contains(u"Details used to fill templates"_s));
        QTest::keyClicks(focused(), u"small claims"_s);
        QVERIFY(texts().contains(u"Official form (Colorado)"_s));
        QVERIFY(!texts().contains(u"Details used to fill templates"_s));
    }

    void deletingFromTheListAsks()
    {
        QSDocument document;
        document.templateID = u"rent-receipt"_s;
        document.title = u"May rent"_s;
        QSStore::shared()->save(document);
        press(Qt::Key_4, Qt::ControlModifier);
        auto *table = shown<QTableView>();
        table->setFocus();
        m_desktop->answers = {1};
        press(Qt::Key_Delete);
        QVERIFY(texts().contains(u"No documents yet. Start one from the Vell Templates screen."_s));
        QVERIFY(!button(u"Open"_s)->isEnabled());
    }

    void theSelectionGoesWithAChangedDocument()
    {
        for (const QString &title : {u"older"_s, u"newer"_s}) {
            QSDocument document;
            document.templateID = u"rent-receipt"_s;
            document.title = title;
            QSStore::shared()->save(document);
        }
        press(Qt::Key_4, Qt::ControlModifier);
        auto *table = shown<QTableView>();
        table->selectRow(1);
        table->setFocus();
        press(Qt::Key_Return);
        QCOMPARE(m_model->editing()->document().title, u"older"_s);
        press(Qt::Key_S, Qt::ControlModifier);
        press(Qt::Key_W, Qt::ControlModifier);
        QCOMPARE(focused(), table);
        QCOMPARE(table->currentIndex().data().toString(), u"older"_s);
    }

    void tabGoesFromTheHeaderThroughThePageToTheFooter()
    {
        press(Qt::Key_5, Qt::ControlModifier);
        QCOMPARE(focused()->accessibleName(), u"Full legal name"_s);
        press(Qt::Key_Backtab);
        QCOMPARE(focused(), named(u"Search forms and templates"_s));
        QTest::keyClicks(focused(), u"small claims"_s);
        press(Qt::Key_Tab);
        for (int i = 0; i < 100 && focused() != button(u"Disclaimer"_s); ++i) {
            QVERIFY(focused()->accessibleName().startsWith(u"Show "_s));
            press(Qt::Key_Tab);
        }
        QCOMPARE(focused(), button(u"Disclaimer"_s));
    }

    void theSidebarLeadsBackFromTheEditor()
    {
        start(u"rent-receipt");
        auto *list = named<QListWidget>(u"Screens"_s);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualItemRect(list->item(1)).center());
        QTRY_VERIFY(!m_model->editing());
    }

    void theDisclaimerComesUntilItIsAccepted()
    {
        QSPrefs::setDisclaimerAccepted(false);
        for (const int key : {Qt::Key_Escape, Qt::Key_Return}) {
            bool shownAtStart = false;
            QTimer look; // until the sheet is up
            connect(&look, &QTimer::timeout, this, [&shownAtStart, &look, key] {
                if (QWidget *sheet = QApplication::activeModalWidget()) {
                    look.stop();
                    shownAtStart = sheet->findChild<QPushButton *>()->text() == u"I understand"_s;
                    QTest::keyClick(sheet, static_cast<Qt::Key>(key));
                }
            });
            look.start(1);
            QVERIFY(openWindow());
            QTRY_VERIFY(shownAtStart);
        }
        QVERIFY(QSPrefs::disclaimerAccepted());
    }

private:
    /// Lets a file fall on the window from another program.
    void drop(const QString &path)
    {
        QMimeData dragged;
        dragged.setUrls({QUrl::fromLocalFile(path)});
        const QPointF middle = m_window->rect().center();
        QDragEnterEvent enter(middle.toPoint(), Qt::CopyAction, &dragged, Qt::LeftButton, {});
        QApplication::sendEvent(m_window.get(), &enter);
        QDropEvent event(middle, Qt::CopyAction, &dragged, Qt::LeftButton, {});
        QApplication::sendEvent(m_window.get(), &event);
    }

    void start(QStringView templateID)
    {
        m_model->newDocument(*QSTemplates::templateById(templateID));
        QCoreApplication::processEvents();
    }

    /// Types something fitting into the field that has the keyboard.
    static void type(const QSField &field)
    {
        switch (field.kind) {
        case QSFieldKind::date:
            QTest::keyClicks(focused(), u"2027-03-01"_s);
            break;
        case QSFieldKind::money:
            QTest::keyClicks(focused(), u"1500"_s);
            break;
        case QSFieldKind::state:
            QTest::keyClicks(focused(), u"Colo"_s);
            break;
        default:
            QTest::keyClicks(focused(), u"Zephyrine "_s + field.key);
        }
    }

    [[nodiscard]] QString shownMessage() const
    {
        return texts().contains(m_model->message().value_or(QString())) ? *m_model->message()
                                                                        : QString();
    }
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
