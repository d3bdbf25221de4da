#include "QSThemes.h"
#include "ScratchUser.h"
#include "VellThemeRoot.h"
#include "VxButton.h"
#include "VxFlow.h"
#include "VxIconLabel.h"
#include "VxPanel.h"
#include "VxText.h"
#include "VxZoom.h"
#include "VxZoomCommands.h"
#include "VxZoomHost.h"

#include <QApplication>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Where everything in a window is.
QStringList places(const QWidget &window)
{
    QStringList found;
    for (const QWidget *each : window.findChildren<QWidget *>()) {
        if (!each->isVisible()) {
            continue;
        }
        const QRect at(each->mapTo(&window, QPoint()), each->size());
        found.append(
            u"%1 %2,%3 %4x%5 %6pt"_s.arg(QLatin1StringView(each->metaObject()->className()))
                .arg(at.x())
                .arg(at.y())
                .arg(at.width())
                .arg(at.height())
                .arg(each->font().pointSizeF()));
    }
    return found;
}
} // namespace

/// Themes and the interface's zoom, as the preferences name them and as windows follow.
class TestLook final : public QObject
{
    Q_OBJECT

    std::unique_ptr<ScratchUser> m_user;

private Q_SLOTS:
    void initTestCase()
    {
        VellThemes::registerThemes(QSThemes::extras());
        VellThemes::setDefaultID(QSThemes::graphiteID);
        new VellThemeRoot(*qApp);
    }

    void init()
    {
        m_user.reset();
        m_user = std::make_unique<ScratchUser>();
        VellThemeRoot::refresh();
    }

    void everyThemeCanBeRead()
    {
        QCOMPARE(VellThemes::all().size(), 7);
        for (const VellTheme &theme : VellThemes::all()) {
            QVERIFY2(VellTheme::contrast(theme.text, theme.bg) >= 7, qPrintable(theme.name));
            QVERIFY2(VellTheme::contrast(theme.dim, theme.bg) >= 4.5, qPrintable(theme.name));
            QVERIFY2(VellTheme::contrast(theme.readableOn(theme.accent), theme.accent) >= 4.5,
                     qPrintable(theme.name));
        }
        QCOMPARE(VellThemes::all().last().id, QSThemes::graphiteID);
        QVERIFY(qAbs(VellTheme::contrast(VellTheme::RGB(0), VellTheme::RGB(0xFFFFFF)) - 21) < 1e-9);
    }

    void anUnknownThemeShowsTheDefaultAndStaysStored()
    {
        QCOMPARE(VellThemes::current().id, QSThemes::graphiteID);
        VellThemes::setCurrentID(u"from-another-version"_s);
        QCOMPARE(VellThemeRoot::theme().id, QSThemes::graphiteID);
        QCOMPARE(VellThemes::currentID(), u"from-another-version"_s);
    }

    void zoomIsWithinItsLimits_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<double>("value");
        QTest::addColumn<double>("in");
        QTest::addColumn<double>("out");
        QTest::newRow("absent") << QVariant() << 1.0 << 1.15 << 0.85;
        QTest::newRow("zero") << QVariant(0) << 1.0 << 1.15 << 0.85;
        QTest::newRow("too large") << QVariant(5.0) << 2.0 << 2.0 << 1.85;
        QTest::newRow("too small") << QVariant(0.5) << 0.85 << 1.0 << 0.85;
        QTest::newRow("near the top") << QVariant(1.9) << 1.9 << 2.0 << 1.75;
        QTest::newRow("near the bottom") << QVariant(0.9) << 0.9 << 1.05 << 0.85;
        QTest::newRow("between hundredths") << QVariant(1.1549) << 1.15 << 1.3 << 1.0;
        QTest::newRow("no number") << QVariant(u"large"_s) << 1.0 << 1.15 << 0.85;
    }
    void zoomIsWithinItsLimits()
    {
        QFETCH(const QVariant, stored);
        const auto store = [&stored] { QSPrefs::settings()->setValue(u"vell.zoom"_s, stored); };
        store();
        QTEST(VxZoom::value(), "value");
        VxZoom::zoomIn();
        QTEST(VxZoom::value(), "in");
        store();
        VxZoom::zoomOut();
        QTEST(VxZoom::value(), "out");
    }

    void levelsAreTickedInTheMenu()
    {
        QMenu menu;
        VxZoomCommands::fillLevels(&menu);
        menu.actions().at(3)->trigger();
        QCOMPARE(VxZoom::value(), 1.3);
        VxZoom::setValue(1.45); // none of them
        Q_EMIT menu.aboutToShow();
        for (const QAction *level : menu.actions()) {
            QVERIFY2(!level->isChecked(), qPrintable(level->text()));
        }
    }

    void anOpenWindowGrowsAsAWholeAndShrinksBack()
    {
        QMainWindow window;
        auto *panel = new VxPanel;
        panel->column()->addWidget(VxText::make(u"A title"_s, VxText::Role::title, panel));
        panel->column()->addWidget(new VxIconLabel(u"folder.fill"_s, panel));
        auto *flow = new VxFlow;
        panel->column()->addLayout(flow);
        QPushButton *button = VxButton::make(u"Open"_s, u"folder.fill"_s, panel);
        flow->addWidget(button);
        window.setCentralWidget(new VxZoomHost(panel, {20, 14}, &window));
        window.resize(900, 700);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        const QStringList before = places(window);
        const QSize buttonBefore = button->sizeHint();
        const int titleBefore = panel->findChild<QLabel *>()->fontMetrics().height();
        VxZoom::setValue(2);
        QCoreApplication::processEvents();
        QVERIFY(qAbs(panel->findChild<QLabel *>()->fontMetrics().height() - 2 * titleBefore) <= 2);
        QVERIFY(qAbs(button->sizeHint().height() - 2 * buttonBefore.height()) <=
                4); // lines stay thin

        for (double zoom : {0.85, 1.15, 0.85, 1.3, 1.75, 1.45, 1.0}) { // rounding does not add up
            VxZoom::setValue(zoom);
        }
        QCoreApplication::processEvents();
        QCOMPARE(places(window), before);
    }

    void whatNoWindowHasRoomForScrolls()
    {
        VxZoom::setValue(1);
        QMainWindow window;
        auto *content = new QWidget;
        auto *host = new VxZoomHost(content, {200, 20}, &window);
        window.setCentralWidget(host);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QCOMPARE(content->width(), 200 * window.fontMetrics().height());
        VxZoom::setValue(2);
        QCoreApplication::processEvents();
        QCOMPARE(content->width(), 200 * window.fontMetrics().height());
        QVERIFY(window.width() < window.screen()->availableGeometry().width());
    }
};

QTEST_MAIN(TestLook)
#include "tst_look.moc"
