#include "QSTemplates.h"
#include "VxZoom.h"
#include "WindowFixture.h"
#include "formwindow/FormView.h"
#include "formwindow/FormWindow.h"

#include <QComboBox>
#include <QLineEdit>
#include <QScrollArea>

using namespace Qt::Literals::StringLiterals;

namespace {
bool isInside(const QWidget *inner, const QWidget *outer)
{
    return inner == outer || outer->isAncestorOf(inner);
}

/// What of a label or control can't be read, in words; empty when all of it can.
QString cutOff(const QWidget &widget)
{
    const QSize room = widget.size();
    QSize needed = widget.minimumSizeHint();
    if (const auto *label = qobject_cast<const QLabel *>(&widget)) {
        if (label->text().isEmpty()) {
            return {};
        }
        needed =
            label->wordWrap() ? QSize(0, label->heightForWidth(room.width())) : label->sizeHint();
    } else if (const auto *button = qobject_cast<const QAbstractButton *>(&widget)) {
        needed = button->sizeHint();
    } else if (!qobject_cast<const QComboBox *>(&widget) &&
               !qobject_cast<const QLineEdit *>(&widget)) {
        return {};
    }
    return needed.width() > room.width() || needed.height() > room.height()
               ? u"%1 \"%2\" %3 has %4x%5 and needs %6x%7"_s
                     .arg(QLatin1StringView(widget.metaObject()->className()),
                          widget.accessibleName(), widget.property("text").toString().left(40))
                     .arg(room.width())
                     .arg(room.height())
                     .arg(needed.width())
                     .arg(needed.height())
               : QString();
}

/// Everything shown in a window that is cut off, or lies over something beside it.
QStringList faults(const QWidget &window)
{
    QStringList found;
    QList<const QWidget *> shown;
    for (const QWidget *each : window.findChildren<QWidget *>()) {
        const bool counts =
            each->isVisible() && !each->visibleRegion().isEmpty() &&
            (qobject_cast<const QLabel *>(each) || qobject_cast<const QAbstractButton *>(each) ||
             qobject_cast<const QComboBox *>(each) || qobject_cast<const QLineEdit *>(each));
        const FormView *pages = window.findChild<FormView *>(); // have their own zoom
        const bool inLine = qobject_cast<const QLineEdit *>(each->parentWidget()); // Qt's own
        if (!counts || inLine || (pages && isInside(each, pages))) {
            continue;
        }
        found.append(cutOff(*each));
        const QRect at(each->mapTo(&window, QPoint()), each->size());
        for (const QWidget *other : shown) {
            const QRect there(other->mapTo(&window, QPoint()), other->size());
            if (other->parentWidget() == each->parentWidget() && at.intersects(there)) {
                found.append(u"%1 lies over %2"_s.arg(each->property("text").toString(),
                                                      other->property("text").toString()));
            }
        }
        shown.append(each);
    }
    for (const QScrollArea *area : window.findChildren<QScrollArea *>()) {
        const bool scrolls = area->horizontalScrollBarPolicy() != Qt::ScrollBarAlwaysOff;
        if (area->isVisible() && !scrolls && area->widget()->width() > area->viewport()->width()) {
            found.append(u"%1 is wider than its room"_s.arg(area->accessibleName()));
        }
    }
    found.removeAll(QString());
    return found;
}
} // namespace

/// Every screen at several sizes of the interface: nothing is cut off, and nothing lies over
/// something else. The zoom changes while the window is open.
class TestZoom final : public QObject, private WindowFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        setLook();
        QVERIFY(begin());
        m_window->resize(1366, 700);
        m_model->setFinderTask(u"llc"_s);
        m_model->selectEntry(u"us-w9"_s);
    }

    void cleanupTestCase() { end(); }

    void nothingIsCutOff_data()
    {
        QTest::addColumn<double>("zoom");
        for (double zoom : {1.0, 0.85, 1.5, 2.0}) {
            QTest::addRow("%d %%", qRound(zoom * 100)) << zoom;
        }
    }
    void nothingIsCutOff()
    {
        QFETCH(const double, zoom);
        VxZoom::setValue(zoom);
        QStringList found;
        const auto look = [&](const QString &place, const QWidget &window) {
            QTest::qWait(20);
            for (const QString &fault : faults(window)) {
                found.append(place + u": "_s + fault);
            }
        };
        for (const Screens::Info &info : Screens::all) {
            m_model->show(info.screen);
            look(info.id.toString(), *m_window);
        }
        m_model->setSearch(u"claim"_s);
        look(u"search"_s, *m_window);
        m_model->newDocument(QSTemplates::all().constFirst());
        look(u"editor"_s, *m_window);
        QVERIFY(m_model->closeEditor());
        m_model->openPractice();
        for (const QWidget *each : QApplication::topLevelWidgets()) {
            if (qobject_cast<const FormWindow *>(each)) {
                look(u"form"_s, *each);
            }
        }
        QVERIFY(m_model->closeForm());
        QVERIFY2(found.isEmpty(), qPrintable(found.join(u'\n')));
    }
};

QTEST_MAIN(TestZoom)
#include "tst_zoom.moc"
