#include "AccessibleTree.h"
#include "DisclaimerSheet.h"
#include "Legibility.h"
#include "QSDirectory.h"
#include "QSFinder.h"
#include "QSPDF.h"
#include "QSTemplates.h"
#include "QtDesktop.h"
#include "VellAbout.h"
#include "VellHelp.h"
#include "WindowFixture.h"
#include "help/QSHelp.h"

#include <QTimer>

using namespace Qt::Literals::StringLiterals;

/// Every place of the program, for those who hear it, use it by keys, or need strong contrasts.
class TestAccessibility final : public QObject, private WindowFixture
{
    Q_OBJECT

    using Check = std::function<void(QWidget &)>;

private Q_SLOTS:
    void initTestCase()
    {
        setLook();
        QVERIFY(begin());
        m_window->resize(QSize(74, 70) * m_window->fontMetrics().height());
        for (const QString &title : {u"Rent for May"_s, u"Rent for June"_s}) {
            QSDocument document;
            document.templateID = u"rent-receipt"_s;
            document.title = title;
            QSStore::shared()->save(document);
            QSStore::shared()->saveFilledPDF(u"us-test"_s, title, QSPDF::practiceForm());
        }
    }
    void cleanupTestCase() { end(); }

    void controlsHaveNamesAndRoles_data() { addPlaces(); }
    void controlsHaveNamesAndRoles()
    {
        at([](QWidget &window) { return AccessibleTree::wrongNames(window); });
    }

    void tabReachesEverythingInOrder_data() { addPlaces(); }
    void tabReachesEverythingInOrder()
    {
        at([](QWidget &window) { return AccessibleTree::wrongTabs(window); });
    }

    void keysHaveOneMeaning_data() { addPlaces(); }
    void keysHaveOneMeaning()
    {
        at([](QWidget &window) {
            return AccessibleTree::collidingKeys(window) + AccessibleTree::collidingLetters(window);
        });
    }

    void textsStandOut_data() { addPlacesInThemes(); }
    void textsStandOut()
    {
        at([](QWidget &window) { return faint(Legibility::measure(window)); });
    }

    void theKeyboardsPlaceShows_data() { addPlacesInThemes(); }
    void theKeyboardsPlaceShows() { at(withoutRing); }

private:
    static QStringList places()
    {
        QStringList all;
        for (const Screens::Info &info : Screens::all) {
            all.append(info.id.toString());
        }
        return all + QStringList{u"a task"_s,        u"a message"_s,       u"search results"_s,
                                 u"nothing found"_s, u"document editor"_s, u"form window"_s,
                                 u"help"_s,          u"about"_s,           u"disclaimer"_s,
                                 u"question"_s,      u"a menu"_s};
    }

    static void addPlaces(const QStringList &themes = {QSThemes::graphiteID})
    {
        QTest::addColumn<QString>("place");
        QTest::addColumn<QString>("theme");
        for (const QString &theme : themes) {
            for (const QString &place : places()) {
                QTest::addRow("%s in %s", qPrintable(place), qPrintable(theme)) << place << theme;
            }
        }
    }

    static void addPlacesInThemes()
    {
        QStringList themes;
        for (const VellTheme &theme : VellThemes::all()) {
            themes.append(theme.id);
        }
        addPlaces(themes);
    }

    static QStringList faint(const QList<Legibility::Measured> &all)
    {
        QStringList wrong = all.isEmpty() ? QStringList{u"no text"_s} : QStringList();
        for (const Legibility::Measured &each : all) {
            if (each.contrast < each.needed) {
                wrong.append(u"%1 of %2 in \"%3\""_s.arg(each.contrast, 0, 'f', 2)
                                 .arg(each.needed)
                                 .arg(each.text.what.left(30)));
            }
        }
        return wrong;
    }

    static QStringList withoutRing(QWidget &window)
    {
        QStringList wrong;
        for (QWidget *stop : AccessibleTree::tabStops(window)) {
            if (Legibility::ringSize(window, stop) < window.fontMetrics().height()) {
                wrong.append(
                    AccessibleTree::describe(*QAccessible::queryAccessibleInterface(stop)));
            }
        }
        return wrong;
    }

    /// Goes to the row's place, and expects nothing wrong there.
    void at(const std::function<QStringList(QWidget &)> &check)
    {
        QFETCH(const QString, place);
        QFETCH(const QString, theme);
        VellThemes::setCurrentID(theme);
        QStringList wrong = {u"never came"_s};
        open(place, [&](QWidget &window) {
            window.activateWindow();
            QVERIFY(window.windowType() == Qt::Popup || QTest::qWaitForWindowActive(&window));
            QCoreApplication::processEvents(); // layouts settle
            wrong = check(window);
        });
        QVERIFY2(wrong.isEmpty(), qPrintable(u'\n' + wrong.join(u'\n')));
    }

    void open(const QString &place, const Check &check)
    {
        const auto known = std::ranges::find(Screens::all, place, &Screens::Info::id);
        if (known != Screens::all.end()) {
            m_model->show(known->screen);
            select();
            check(*m_window);
        } else if (place == u"a task"_s) {
            m_model->show(Screen::finder);
            m_model->setFinderTask(QSFinder::tasks.constFirst().id);
            check(*m_window);
        } else if (place == u"a message"_s) {
            m_model->setMessage(u"Profile saved."_s);
            check(*m_window);
            m_model->setMessage(std::nullopt);
        } else if (place == u"search results"_s || place == u"nothing found"_s) {
            m_model->setSearch(place == u"search results"_s ? u"rent"_s : u"zzz"_s);
            check(*m_window);
            m_model->setSearch({});
        } else if (place == u"document editor"_s) {
            m_model->newDocument(*QSTemplates::templateById(u"rent-receipt"));
            check(*m_window);
            QVERIFY(m_model->closeEditor());
        } else {
            openWindow(place, check);
        }
    }

    /// What there is to select on a screen.
    void select()
    {
        m_model->selectEntry(QSDirectory::shared().entries.constFirst().id);
        m_model->selectTemplate(u"rent-receipt"_s);
    }

    void openWindow(const QString &place, const Check &check)
    {
        if (place == u"form window"_s) {
            m_model->openPractice();
            QTRY_VERIFY(m_model->openPDF());
            check(*top("FormWindow"));
            QVERIFY(m_model->closeForm());
        } else if (place == u"help"_s) {
            VellHelp::setTopics(QSHelp::topics());
            VellHelp::show();
            check(*top("VellHelpWindow"));
            top("VellHelpWindow")->close();
        } else if (place == u"about"_s) {
            VellAbout::show(m_window.get());
            check(*top("QDialog"));
            top("QDialog")->close();
        } else if (place == u"a menu"_s) {
            auto *go = qobject_cast<QMenu *>(m_window->menuBar()->actions().at(3)->menu());
            go->popup({});
            go->setActiveAction(go->actions().at(1));
            check(*go);
            go->close();
        } else if (place == u"disclaimer"_s) {
            whileOpen(check);
            m_model->setShowDisclaimer(true);
            QTRY_VERIFY(!m_model->showDisclaimer());
        } else {
            QtDesktop desktop;
            desktop.setWindow(m_window.get());
            whileOpen(check);
            QCOMPARE(desktop.ask({u"Save changes to \"Rent\"?"_s,
                                  u"They are lost otherwise."_s,
                                  {u"Save"_s, u"Don't Save"_s, u"Cancel"_s},
                                  2}),
                     2);
        }
    }

    /// Checks the dialog that comes up next, then closes it.
    void whileOpen(const Check &check)
    {
        QTimer::singleShot(100, this, [check] {
            QWidget *dialog = QApplication::activeModalWidget();
            check(*dialog);
            dialog->close();
        });
    }

    static QWidget *top(const char *name)
    {
        for (QWidget *each : QApplication::topLevelWidgets()) {
            if (each->isVisible() && each->inherits(name)) {
                return each;
            }
        }
        qFatal("no %s", name);
    }
};

QTEST_MAIN(TestAccessibility)
#include "tst_accessibility.moc"
