#include "AccessibleTree.h"
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

#include <QDeadlineTimer>
#include <QTimer>

using namespace Qt::Literals::StringLiterals;

/// Every place of the program, for those who hear it, use it by keys, or need strong contrasts.
class TestAccessibility final : public QObject, private WindowFixture
{
    Q_OBJECT

    using Check = QStringList (*)(QWidget &window);

    struct Place
    {
        QString name;
        const char *window; ///< its class
        std::function<void()> enter;
    };

private Q_SLOTS:
    void initTestCase()
    {
        setLook();
        QVERIFY(begin());
        m_window->resize(QSize(74, 70) * m_window->fontMetrics().height());
        VellHelp::setTopics(QSHelp::topics());
        for (const QString &title : {u"Rent for May"_s, u"Rent for June"_s}) {
            QSDocument document;
            document.templateID = u"rent-receipt"_s;
            document.title = title;
            QSStore::shared()->save(document);
            QSStore::shared()->saveFilledPDF(u"us-test"_s, title, QSPDF::practiceForm());
        }
        for (const Screens::Info &info : Screens::all) {
            m_places.append({info.id.toString(), "MainWindow", [this, &info] {
                                 m_model->show(info.screen);
                                 m_model->selectEntry(
                                     QSDirectory::shared().entries.constFirst().id);
                                 m_model->selectTemplate(u"rent-receipt"_s);
                             }});
        }
        addPlacesOnScreens();
        addWindows();
    }
    void cleanupTestCase() { end(); }

    void controlsHaveNamesAndRoles_data() { addRows({QSThemes::graphiteID}); }
    void controlsHaveNamesAndRoles() { expectNothing(AccessibleTree::wrongNames); }

    void tabReachesEverythingInOrder_data() { addRows({QSThemes::graphiteID}); }
    void tabReachesEverythingInOrder() { expectNothing(AccessibleTree::wrongTabs); }

    void keysHaveOneMeaning_data() { addRows({QSThemes::graphiteID}); }
    void keysHaveOneMeaning()
    {
        expectNothing([](QWidget &window) {
            return AccessibleTree::collidingKeys(window) + AccessibleTree::collidingLetters(window);
        });
    }

    void textsStandOut_data() { addRows(themes()); }
    void textsStandOut() { expectNothing(Legibility::faint); }

    void theKeyboardsPlaceShows_data() { addRows(themes()); }
    void theKeyboardsPlaceShows()
    {
        expectNothing([](QWidget &window) {
            QStringList without;
            for (QWidget *stop : AccessibleTree::tabStops(window)) {
                if (Legibility::ringSize(window, stop) < window.fontMetrics().height()) {
                    without.append(AccessibleTree::describe(stop));
                }
            }
            return without;
        });
    }

private:
    void addPlacesOnScreens()
    {
        const auto add = [this](const QString &name, const std::function<void()> &enter) {
            m_places.append({name, "MainWindow", enter});
        };
        add(u"a task"_s, [this] {
            m_model->show(Screen::finder);
            m_model->setFinderTask(QSFinder::tasks.constFirst().id);
        });
        add(u"a message"_s, [this] { m_model->setMessage(u"Profile saved."_s); });
        add(u"search results"_s, [this] { m_model->setSearch(u"rent"_s); });
        add(u"nothing found"_s, [this] { m_model->setSearch(u"zzz"_s); });
        add(u"document editor"_s,
            [this] { m_model->newDocument(*QSTemplates::templateById(u"rent-receipt")); });
    }

    void addWindows()
    {
        m_places.append({u"form window"_s, "FormWindow", [this] { m_model->openPractice(); }});
        m_places.append({u"help"_s, "VellHelpWindow", [] { VellHelp::show(); }});
        m_places.append({u"about"_s, "QDialog", [this] { VellAbout::show(m_window.get()); }});
        m_places.append({u"disclaimer"_s, "QDialog", [this] { m_model->setShowDisclaimer(true); }});
        m_places.append({u"question"_s, "QDialog", [this] {
                             QtDesktop desktop;
                             desktop.setWindow(m_window.get());
                             const QStringList buttons = {u"Save"_s, u"Don't Save"_s, u"Cancel"_s};
                             const QString detail = u"They are lost otherwise."_s;
                             QCOMPARE(desktop.ask({u"Save changes?"_s, detail, buttons, 2}), 2);
                         }});
        m_places.append({u"a menu"_s, "QMenu", [this] {
                             QMenu *go = m_window->menuBar()->actions().at(3)->menu();
                             go->popup({});
                             go->setActiveAction(go->actions().at(1));
                         }});
    }

    static QStringList themes()
    {
        QStringList ids;
        for (const VellTheme &theme : VellThemes::all()) {
            ids.append(theme.id);
        }
        return ids;
    }

    void addRows(const QStringList &inThemes)
    {
        QTest::addColumn<qsizetype>("place");
        QTest::addColumn<QString>("theme");
        for (const QString &theme : inThemes) {
            for (qsizetype i = 0; i < m_places.size(); ++i) {
                QTest::addRow("%s in %s", qPrintable(m_places.at(i).name), qPrintable(theme))
                    << i << theme;
            }
        }
    }

    /// Goes to the row's place, expects nothing wrong there, and leaves it.
    void expectNothing(Check wrongIn)
    {
        QFETCH(const qsizetype, place);
        QFETCH(const QString, theme);
        VellThemes::setCurrentID(theme);
        std::optional<QStringList> wrong;
        const QDeadlineTimer deadline(5000);
        QTimer timer; // a dialog may have its own loop of events, inside of enter() or later
        connect(&timer, &QTimer::timeout, this, [&] {
            QWidget *window = shownWindow(m_places.at(place).window);
            if (window || deadline.hasExpired()) {
                timer.stop();
                wrong = window ? wrongIn(settled(*window)) : QStringList(u"never came"_s);
                leave(window ? window : QApplication::activeModalWidget());
            }
        });
        timer.start(0);
        m_places.at(place).enter();
        QTRY_VERIFY_WITH_TIMEOUT(wrong, 20000);
        QVERIFY2(wrong->isEmpty(), qPrintable(u'\n' + wrong->join(u'\n')));
    }

    static QWidget *shownWindow(const char *type)
    {
        const QWidgetList all = QApplication::topLevelWidgets();
        const auto found = std::ranges::find_if(
            all, [type](QWidget *each) { return each->isVisible() && each->inherits(type); });
        return found == all.end() ? nullptr : *found;
    }

    static QWidget &settled(QWidget &window)
    {
        window.activateWindow();
        if (window.windowType() != Qt::Popup && !QTest::qWaitForWindowActive(&window)) {
            QTest::qFail("The window never had the keyboard", __FILE__, __LINE__);
        }
        QCoreApplication::processEvents(); // layouts
        return window;
    }

    void leave(QWidget *window)
    {
        if (window && window != m_window.get()) {
            window->close();
        }
        m_model->setMessage(std::nullopt);
        m_model->setSearch({});
        QVERIFY(m_model->closeEditor() && !m_model->openPDF());
    }

    QList<Place> m_places;
};

QTEST_MAIN(TestAccessibility)
#include "tst_accessibility.moc"
