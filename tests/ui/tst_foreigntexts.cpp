#include "../pdf/SmallPDF.h"
#include "QSDirectory.h"
#include "QSPDF.h"
#include "QtDesktop.h"
#include "WindowFixture.h"
#include "formwindow/FieldControl.h"
#include "formwindow/FormView.h"
#include "formwindow/FormWindow.h"

#include <QAbstractItemView>
#include <QTextDocumentFragment>
#include <QTimer>
#include <QWindow>

using namespace Qt::Literals::StringLiterals;

namespace {
/// What Qt's own rules would read as letters in bold, a sign, and the mark of unsaved changes.
const QString foreign = u"Car <b>rusty</b> &lt; 5 & [*] more"_s;

/// What a person reads of a text whose format Qt guesses.
QString read(const QString &text)
{
    return Qt::mightBeRichText(text) ? QTextDocumentFragment::fromHtml(text).toPlainText() : text;
}

/// The tips of a window's lists and controls that hold an altered foreign text, or none at all.
QStringList wrongTips(const QWidget &window)
{
    QStringList tips;
    for (const QWidget *each : window.findChildren<QWidget *>()) {
        tips.append(each->toolTip());
    }
    for (const QAbstractItemView *view : window.findChildren<QAbstractItemView *>()) {
        const QAbstractItemModel *model = view->isVisible() ? view->model() : nullptr;
        for (int row = 0; model && row < model->rowCount(); ++row) {
            for (int column = 0; column < model->columnCount(); ++column) {
                tips.append(model->index(row, column).data(Qt::ToolTipRole).toString());
            }
        }
    }
    tips.removeIf([](const QString &tip) { return !tip.contains(u"rusty"_s); });
    if (tips.isEmpty()) {
        return {u"no tip"_s};
    }
    tips.removeIf([](const QString &tip) { return read(tip).contains(foreign); });
    return tips;
}

/// The labels that show a foreign text otherwise than it stands.
QStringList wrongLabels(const QWidget &window)
{
    QStringList wrong;
    for (const QLabel *label : window.findChildren<QLabel *>()) {
        const bool isPlain = label->textFormat() == Qt::PlainText;
        const QString shown = isPlain ? label->text() : read(label->text());
        if (label->text().contains(u"rusty"_s) && !shown.contains(foreign)) {
            wrong.append(label->text());
        }
    }
    return wrong;
}
} // namespace

/// Titles, labels and notes that others wrote show as they stand, whatever they look like: a form
/// whose field is labelled with the markup of a picture must not have that picture fetched.
class TestForeignTexts final : public QObject, private WindowFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setLook(); }

    void init() { QVERIFY(begin()); }
    void cleanup() { end(); }

    void titlesInLists()
    {
        keepDocument();
        QSStore::shared()->saveFilledPDF(u"us-test"_s, foreign, QSPDF::practiceForm());
        m_model->show(Screen::documents);
        QCOMPARE(wrongTips(*m_window), QStringList());
        m_model->setSearch(u"Car"_s);
        QVERIFY(texts().contains(foreign));
        QCOMPARE(wrongLabels(*m_window), QStringList());
        m_model->setSearch(foreign);
        QCOMPARE(wrongLabels(*m_window), QStringList());
    }

    void notesOfLinks()
    {
        QSLinkCheck check;
        check.url = QSDirectory::shared().entries.constFirst().url;
        check.checked = QDateTime::currentDateTime();
        check.status = 200;
        check.note = foreign;
        QSStore::shared()->recordLinkCheck(check);
        m_model->show(Screen::lastChecked);
        QCOMPARE(wrongTips(*m_window), QStringList());
        QCOMPARE(wrongLabels(*m_window), QStringList());
    }

    void labelsOfFields()
    {
        const QSFilledPDF record = QSStore::shared()->saveFilledPDF(
            u"us-test"_s, foreign,
            smallPDF({"/FT/Tx/T(a)/TU(" + foreign.toLatin1() + ")/Rect[10 160 110 175]" + helv}));
        m_model->openSaved(record);
        QTRY_VERIFY(m_model->openPDF());
        const FormWindow *form = formWindow();
        QVERIFY(form);
        QCOMPARE(wrongTips(*form), QStringList());
        // as the window manager is told it
        QVERIFY2(form->windowHandle()->title().contains(foreign),
                 qPrintable(form->windowHandle()->title()));

        auto *view = form->findChild<FormView *>();
        view->focusField(0, Qt::OtherFocusReason);
        QTest::keyClicks(focused(), QString(120, u'w'));
        view->setFocus();
        QVERIFY(view->control(0)->fault());
        QCOMPARE(wrongTips(*form), QStringList());
        QCOMPARE(m_model->message(), view->control(0)->fault()->sentence());
        QCOMPARE(wrongLabels(*form), QStringList());
        m_desktop->answers = {dontSave};
        QVERIFY(m_model->closeForm());
    }

    void questions()
    {
        QtDesktop desktop;
        desktop.setWindow(m_window.get());
        QStringList wrong = {u"never asked"_s};
        QTimer::singleShot(0, this, [&wrong] {
            QWidget *box = QApplication::activeModalWidget();
            wrong = wrongLabels(*box);
            box->close();
        });
        QCOMPARE(desktop.ask({foreign, foreign, {u"Cancel"_s, u"Delete"_s}, 0}), 0);
        QCOMPARE(wrong, QStringList());
    }

private:
    static void keepDocument()
    {
        QSDocument document;
        document.templateID = u"rent-receipt"_s;
        document.title = foreign;
        QSStore::shared()->save(document);
    }

    static const FormWindow *formWindow()
    {
        for (const QWidget *each : QApplication::topLevelWidgets()) {
            if (const auto *form = qobject_cast<const FormWindow *>(each)) {
                return form;
            }
        }
        return nullptr;
    }
};

QTEST_MAIN(TestForeignTexts)
#include "tst_foreigntexts.moc"
