#include "../pdf/SmallPDF.h"
#include "FormWindowFixture.h"
#include "QSDirectory.h"
#include "TestFiles.h"
#include "VxMessageBar.h"

#include <QBuffer>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QListWidget>
#include <QMenuBar>
#include <QPainter>
#include <QPdfWriter>
#include <QPushButton>
#include <QScrollBar>
#include <QWheelEvent>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString official = u"Official form \u2014 not legal advice"_s;

const QHash<QChar, Qt::Key> keysOfSigns = {
    {u'\n', Qt::Key_Return}, {u'\u2190', Qt::Key_Left}, {u'\u2193', Qt::Key_Down}};

/// One field of every kind; ids are positions.
enum Field { name, code, lines, cat, dog, boxA, boxB, state, other, colours, fixed, fieldCount };

QByteArray everyKind()
{
    const QByteArray radio = "/Parent 7 0 R/AS/Off/AP<</N<</s";
    const QByteArray choice = "/FT/Ch/Ff 131072/T(state)/TU(State)/Opt[[(1)(One)][(2)(Two)]]";
    return smallPDF({"/FT/Tx/T(name)/TU(Your name)/Ff 2/Rect[10 180 110 195]",
                     "/FT/Tx/T(code)/TU(Code)/MaxLen 4/Rect[10 160 110 175]",
                     "/FT/Tx/T(lines)/TU(Story)/Ff 4096/MaxLen 9/Rect[10 120 110 155]",
                     "/FT/Btn/T(pet)/TU(Pet)/Ff 49152/Kids[8 0 R 9 0 R]",
                     radio + "1 3 0 R>>>>/Rect[10 100 20 110]",
                     radio + "2 3 0 R>>>>/Rect[30 100 40 110]",
                     "/FT/Btn/T(box)/TU(Agree)/Rect[50 100 60 110]",
                     "/FT/Btn/T(box)/TU(Agree)/Rect[70 100 80 110]", choice + "/Rect[10 80 110 95]",
                     "/FT/Ch/Ff 393216/T(other)/TU(Other)/Opt[(One)(Two)]/Rect[10 60 110 75]",
                     "/FT/Ch/Ff 2097152/T(colours)/TU(Colours)/Opt[(red)(blue)]/Rect[10 20 110 55]",
                     "/FT/Tx/Ff 1/T(fixed)/TU(Fixed)/V(kept)/Rect[120 20 190 40]"});
}

QByteArray withoutFields()
{
    QByteArray pdf;
    QBuffer buffer(&pdf);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    QPainter(&writer).drawText(100, 100, u"Petition"_s);
    return pdf;
}
} // namespace

/// The form window as a person uses it; what is checked is what the model's document holds.
class TestFormWindow final : public QObject, private FormWindowFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setLook(); }

    void init() { begin(); }
    void cleanup() { end(); }

    void aDrawingWithoutEndCanBeStopped()
    {
        QByteArray pdf = everyKind();
        const QByteArray lines = QByteArray("0 0 m 600 700 l S ").repeated(400'000);
        pdf.replace("/MediaBox", "/Contents 90 0 R/MediaBox");
        pdf.replace("trailer", "90 0 obj <</Length " + QByteArray::number(lines.size()) +
                                   ">> stream\n" + lines + "\nendstream endobj\ntrailer");
        open(pdf);
        auto *bar = m_window->findChild<VxMessageBar *>();
        const auto stop = [bar] {
            const QList<QPushButton *> buttons = bar->findChildren<QPushButton *>();
            const auto found = std::ranges::find_if(buttons, [](const QPushButton *button) {
                return button->isVisible() && button->text().contains(u"Stop"_s);
            });
            return found == buttons.end() ? nullptr : *found;
        };
        QTRY_VERIFY_WITH_TIMEOUT(stop(), 10'000);
        stop()->click();
        QTRY_VERIFY(!stop());
        QCOMPARE(m_model->message(),
                 u"The drawing of page 1 was stopped. At another zoom it is tried again."_s);
    }

    void aCutAnswerIsMarkedAsSoonAsItIsLeft()
    {
        open(everyKind());
        FieldControl *control = m_view->control(name);
        m_view->focusField(name, Qt::TabFocusReason);
        QTest::keyClicks(focused(), QString(120, u'w'));
        QVERIFY(!m_model->message());
        press(Qt::Key_Tab);
        QVERIFY(control->fault());
        QCOMPARE(m_model->message(), control->fault()->sentence());
        QCOMPARE(control->widget()->accessibleDescription(), u"1 word too long"_s);
        QVERIFY(control->widget()->toolTip().endsWith(u"\n1 word too long"));
        Q_EMIT m_model->fieldWanted(name);
        QCOMPARE(focused(), control->widget());
        QTest::keyClicks(focused(), u"w"_s);
        QTest::keyClick(focused(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(focused(), u"short"_s);
        QVERIFY(!control->fault() && control->widget()->accessibleDescription().isEmpty());
        discard();
    }

    void typingReachesTheDocument_data()
    {
        QTest::addColumn<int>("field");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QString>("held");
        QTest::newRow("a line") << int(name) << u"Rosa"_s << u"Rosa"_s;
        QTest::newRow("no more than the limit") << int(code) << u"abcdef"_s << u"abcd"_s;
        QTest::newRow("several lines") << int(lines) << u"a\nb"_s << u"a\nb"_s;
        QTest::newRow("several lines within the limit")
            << int(lines) << u"abcdefghijk"_s << u"abcdefghi"_s;
        QTest::newRow("a space that doesn't break") << int(lines) << u"a\u00A0b"_s << u"a\u00A0b"_s;
        QTest::newRow("a radio button") << int(dog) << u" "_s << u"on"_s;
        QTest::newRow("a radio button off again") << int(dog) << u"  "_s << u"off"_s;
        QTest::newRow("a check box") << int(boxA) << u" "_s << u"on"_s;
        QTest::newRow("a choice by its first letter") << int(state) << u"T"_s << u"1"_s;
        QTest::newRow("a text of one's own") << int(other) << u"Tw"_s << u"Tw"_s;
        QTest::newRow("in the middle of one's own text")
            << int(other) << u"Ad\u2190bc"_s << u"Abcd"_s;
        QTest::newRow("in the middle of a choice")
            << int(other) << u"\u2193\u2190xy"_s << u"Onxye"_s;
        QTest::newRow("two of a list") << int(colours) << u"rb"_s << u"0 1"_s;
    }

    void typingReachesTheDocument()
    {
        QFETCH(const int, field);
        QFETCH(const QString, keys);
        open(everyKind());
        m_view->focusField(field, Qt::TabFocusReason);
        for (const QChar key : keys) {
            if (keysOfSigns.contains(key)) {
                press(keysOfSigns.value(key));
            } else {
                QTest::keyClick(focused(), key.toLatin1());
            }
            if (field == colours) { // or two letters would be one entry's beginning
                QTest::qWait(QApplication::keyboardInputInterval() + 10);
            }
        }
        QTEST(held(field), "held");
        QCOMPARE(m_window->isWindowModified(), held(field) != u"off"_s);
        for (int i = 0; i < keys.size(); ++i) {
            undo();
        }
        QVERIFY(!m_window->isWindowModified());
        m_model->closeForm();
    }

    void pastingKeepsToTheLimit_data()
    {
        QTest::addColumn<int>("field");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("pasted"); // before the last letter
        QTest::addColumn<QString>("held");
        QTest::newRow("what stood there stays") << int(code) << u"yz"_s << u"abcd"_s << u"yabz"_s;
        QTest::newRow("a letter of two units counts once")
            << int(code) << u"z"_s << u"\U0001F600\U0001F601\U0001F602\U0001F603"_s
            << u"\U0001F600\U0001F601\U0001F602z"_s;
        QTest::newRow("lines in a line become spaces")
            << int(code) << u"z"_s << u"a\nb"_s << u"a bz"_s;
        QTest::newRow("in several lines")
            << int(lines) << u"yz"_s << u"ab\ncdefghi"_s << u"yab\ncdefz"_s;
    }

    void pastingKeepsToTheLimit()
    {
        QFETCH(const int, field);
        QFETCH(const QString, before);
        QFETCH(const QString, pasted);
        open(everyKind());
        m_view->focusField(field, Qt::TabFocusReason);
        QTest::keyClicks(focused(), before);
        press(Qt::Key_Left);
        QGuiApplication::clipboard()->setText(pasted);
        press(Qt::Key_V, Qt::ControlModifier);
        QTEST(held(field), "held");
        QCOMPARE(shownIn(field), held(field));
        discard();
    }

    void tabWalksTheFieldsAndLeaves()
    {
        open(everyKind());
        QList<int> walked;
        m_pages->setFocus();
        press(Qt::Key_Tab);
        while (m_view->isAncestorOf(focused()) && walked.size() < 99) {
            walked.append(openField());
            press(Qt::Key_Tab);
        }
        QCOMPARE(walked, document().tabOrder());
        QVERIFY(!walked.contains(int(fixed)));
        QCOMPARE(focused(), button(u"Save Changes"_s));
        press(Qt::Key_Backtab);
        QCOMPARE(openField(), walked.last());
        m_view->focusField(walked.first(), Qt::TabFocusReason);
        press(Qt::Key_Backtab);
        QVERIFY(!m_view->isAncestorOf(focused()));
        m_model->closeForm();
    }

    void tabReachesFieldsOfRealFormsOutOfSight_data()
    {
        QTest::addColumn<QString>("file");
        QTest::newRow("W-9") << u"w-9-xfa-comb.pdf"_s;
        QTest::newRow("I-912") << u"i-912-encrypted-xfa.pdf"_s;
        QTest::newRow("groups over five pages") << u"groups-over-five-pages.pdf"_s;
    }

    void tabReachesFieldsOfRealFormsOutOfSight()
    {
        QFETCH(const QString, file);
        const QDir forms(QStringLiteral(QS_FORMS));
        if (!forms.exists()) {
            QSKIP("The folder with real forms is not beside the project.");
        }
        open(contents(forms.filePath(file)));
        QList<int> walked;
        m_pages->setFocus();
        press(Qt::Key_Tab);
        while (m_view->isAncestorOf(focused()) && walked.size() < 999) {
            walked.append(openField());
            const QPoint middle = focused()->rect().center();
            QVERIFY(
                m_view->viewport()->rect().contains(focused()->mapTo(m_view->viewport(), middle)));
            if (auto *line = qobject_cast<QLineEdit *>(focused())) {
                QTest::keyClicks(line, u"7"_s);
                QVERIFY(document().value(walked.last()).text.contains(u'7'));
            }
            press(Qt::Key_Tab);
        }
        QCOMPARE(walked, document().tabOrder());
        discard();
    }

    void everyFieldSaysWhatItIs()
    {
        open(everyKind());
        const QHash<int, QString> names = {{name, u"Your name, required"_s},
                                           {lines, u"Story"_s},
                                           {boxA, u"Agree"_s},
                                           {fixed, u"Fixed"_s}};
        for (const auto &[field, text] : names.asKeyValueRange()) {
            QCOMPARE(m_view->control(field)->widget()->accessibleName(), text);
            QCOMPARE(m_view->control(field)->widget()->toolTip(), text);
        }
        QVERIFY(!m_view->control(fixed)->widget()->isEnabled());
        m_model->closeForm();
    }

    void buttonsAreToldApartByTheWordsBesideThem()
    {
        const QByteArray kid = "/Parent 7 0 R/AP<</N<</";
        const QByteArray words =
            "BT /F 8 Tf 1 0 0 1 34 181 Tm (Cat or) Tj 60 0 Td (Far away) Tj -84 -20 Td (Dog) Tj "
            "24 -20 Td (Yes) Tj 0 -20 Td (Yes) Tj ET";
        QByteArray pdf = smallPDF(
            {"/FT/Btn/T(c1)/Rect[20 140 30 150]", "/FT/Btn/T(c2)/Rect[20 120 30 130]",
             "/FT/Btn/T(c3)/TU(Smoker)/Rect[60 140 70 150]",
             "/FT/Btn/T(r)/TU(Pet)/Ff 49152/Kids[8 0 R 9 0 R 10 0 R]",
             kid + "1 3 0 R>>>>/Rect[20 180 30 190]", kid + "2 3 0 R>>>>/Rect[30 160 40 170]",
             kid + "Fish 3 0 R>>>>/Rect[20 20 30 30]",
             "/Type/Font/Subtype/Type1/BaseFont/Helvetica/Parent 7 0 R"},
            "/Contents 12 0 R/Resources<</Font<</F 11 0 R>>>>");
        pdf.insert(pdf.indexOf("trailer"), "12 0 obj <</Length " +
                                               QByteArray::number(words.size()) + ">> stream\n" +
                                               words + "\nendstream endobj\n");
        open(pdf);
        QStringList names;
        for (const FormField &field : document().fields()) {
            names.append(m_view->control(field.id)->widget()->accessibleName());
        }
        const QStringList expected = {u"Yes, 1 of 2"_s, u"Yes, 2 of 2"_s, u"Smoker"_s,
                                      u"Pet: Cat or"_s, u"Pet: Dog"_s,    u"Pet: Fish"_s};
        QCOMPARE(names, expected);
        m_model->closeForm();
    }

    void buttonsThatBelongTogetherFollow()
    {
        open(everyKind());
        const auto click = [this](int field) {
            QTest::mouseClick(m_view->control(field)->widget(), Qt::LeftButton);
        };
        const auto states = [this] {
            QString text;
            for (const int field : {cat, dog, boxA, boxB}) {
                auto *shown = qobject_cast<QAbstractButton *>(m_view->control(field)->widget());
                text += held(field) == u"on"_s ? u'1' : u'0';
                text += shown->isChecked() ? u'1' : u'0';
            }
            return text;
        };
        click(cat);
        QCOMPARE(states(), u"11000000"_s);
        click(dog);
        click(boxB);
        QCOMPARE(states(), u"00111111"_s);
        undo();
        undo();
        QCOMPARE(states(), u"11000000"_s);
        undo();
        QCOMPARE(states(), u"00000000"_s);
        press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(states(), u"11000000"_s);
        discard();
    }

    void typingIsUndoneFieldByField()
    {
        open(everyKind());
        m_view->focusField(name, Qt::TabFocusReason);
        QTest::keyClicks(focused(), u"Rosa"_s);
        m_view->focusField(lines, Qt::TabFocusReason);
        QTest::keyClicks(focused(), u"abc"_s);
        m_view->focusField(state, Qt::TabFocusReason);
        undo();
        QCOMPARE(held(lines), QString());
        QCOMPARE(openField(), int(lines)); // seen where it happens
        undo();
        QCOMPARE(held(name), QString());
        QCOMPARE(shownIn(name), QString());
        undo(); // nothing left, and the line has no undoing of its own
        QCOMPARE(shownIn(name), QString());
        QVERIFY(!m_window->isWindowModified());
        press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(held(name), u"Rosa"_s);
        QTest::keyClicks(focused(), u"!"_s);
        undo();
        QCOMPARE(held(name), u"Rosa"_s);
        discard();
    }

    void theWheelChangesNoAnswer()
    {
        open(everyKind());
        m_view->focusField(state, Qt::TabFocusReason);
        QTest::keyClick(focused(), 'O');
        for (int i = 0; i < 12; ++i) {
            m_view->zoomIn();
        }
        QWidget *combo = m_view->control(state)->widget();
        m_view->verticalScrollBar()->setValue(0);
        QWheelEvent turn(combo->rect().center(), combo->mapToGlobal(combo->rect().center()), {},
                         {0, -120}, {}, {}, Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&turn); // only a person's goes on to what lies below
        qApp->notify(combo, &turn);
        QCOMPARE(held(state), u"0"_s);
        QVERIFY(m_view->verticalScrollBar()->value() > 0);
        discard();
    }

    void whatWasTypedIsDrawn()
    {
        open(everyKind());
        const QImage empty = paper();
        m_view->focusField(name, Qt::TabFocusReason);
        QTest::keyClicks(focused(), u"WWWWW"_s);
        m_view->focusField(state, Qt::TabFocusReason); // its text is the page's drawing alone now
        const QRect line = m_view->control(name)->widget()->geometry();
        QTRY_VERIFY(!m_view->control(name)->coversPage());
        QVERIFY(paper().copy(line) != empty.copy(line));
        discard();
    }

    void savingNamesWhatItDoesNext()
    {
        m_model->openPractice();
        find();
        QCOMPARE(m_window->windowTitle(), u"Vell Practice Form[*]"_s);
        QVERIFY(!button(u"Official page"_s)->isEnabled());
        m_view->focusField(0, Qt::TabFocusReason);
        QTest::keyClicks(focused(), u"Rosa"_s);
        QVERIFY(texts().contains(u"This form has fill-in fields: click a field and type. Save "
                                 "Filled Copy keeps it in My Documents."_s));
        QVERIFY(!texts().contains(official)); // this one is the program's own
        button(u"Save Filled Copy"_s)->click();
        QVERIFY(!m_window->isWindowModified());
        QVERIFY(texts().contains(*m_model->message()));
        QVERIFY(m_model->message()->startsWith(u"Saved to My Documents as"_s));
        press(Qt::Key_S, Qt::ControlModifier);
        QVERIFY(button(u"Save Changes"_s));
        QVERIFY(texts().contains(u"This form has fill-in fields: click a field and type. Save "
                                 "Changes keeps it in My Documents."_s));
        QCOMPARE(m_model->filledPDFs()->size(), 1);
        undo(); // is still there after saving
        QCOMPARE(document().value(0).text, QString());
        discard();
    }

    void anOfficialFormSaysThatItIsOne()
    {
        const QSEntry &entry = QSDirectory::shared().entries.constFirst();
        m_model->openSaved(QSStore::shared()->saveFilledPDF(entry.id, u"Petition"_s, everyKind()));
        QTRY_VERIFY(m_model->openPDF());
        QVERIFY(texts().contains(official));
        m_model->closeForm();
    }

    void closingAsks_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("closes");
        QTest::addColumn<QString>("kept");
        QTest::newRow("save") << save << true << u"Rosa"_s;
        QTest::newRow("don't save") << dontSave << true << QString();
        QTest::newRow("cancel") << cancel << false << QString();
    }

    void closingAsks()
    {
        QFETCH(const int, answer);
        QFETCH(const bool, closes);
        open(everyKind());
        m_view->focusField(name, Qt::TabFocusReason);
        QTest::keyClicks(focused(), u"Rosa"_s);
        m_desktop->answers = {answer};
        press(Qt::Key_W, Qt::ControlModifier);
        QCOMPARE(m_window->isVisible(), !closes);
        QCOMPARE(m_model->openPDF().has_value(), !closes);
        const QSFilledPDF record = m_model->filledPDFs()->constFirst();
        const auto copy =
            QSPDFDocument::open(contents(QSInfo::filledFolder().filePath(record.fileName)));
        QTEST(copy->value(name).text, "kept");
        if (!closes) {
            discard();
        }
    }

    void whatIsBeingComposedIsKept_data()
    {
        QTest::addColumn<int>("field");
        QTest::newRow("in a line") << int(name);
        QTest::newRow("in several lines") << int(lines);
        QTest::newRow("in a choice") << int(other);
    }

    /// No input method runs here, so that none commits what it composes.
    void whatIsBeingComposedIsKept()
    {
        QFETCH(const int, field);
        open(everyKind());
        const auto compose = [field, this] {
            m_view->focusField(field, Qt::TabFocusReason);
            QInputMethodEvent composing(u"\u304B"_s, {});
            QApplication::sendEvent(focused(), &composing);
        };
        compose();
        QCOMPARE(held(field), QString());
        QVERIFY(m_model->saveForm());
        QCOMPARE(held(field), u"\u304B"_s);
        compose();
        m_desktop->answers = {cancel};
        QVERIFY(!m_window->close());
        QCOMPARE(held(field), u"\u304B\u304B"_s);
        compose();
        m_pages->setFocus();
        QCOMPARE(held(field), u"\u304B\u304B\u304B"_s);
        discard();
    }

    void aPDFWithoutFieldsSaysSo()
    {
        open(withoutFields());
        QVERIFY(texts().contains(
            u"This PDF has no fill-in fields. Print it and fill it in by hand."_s));
        m_pages->setFocus();
        press(Qt::Key_Tab);
        QCOMPARE(focused(), m_view); // to be scrolled by keys
        press(Qt::Key_Tab);
        QVERIFY(focused() != m_view);
        QVERIFY(m_window->close());
        QVERIFY(!m_model->openPDF());
    }

    void anotherFormTakesThePlace()
    {
        open(everyKind());
        m_view->focusField(name, Qt::TabFocusReason);
        QTest::keyClicks(focused(), u"Rosa"_s);
        m_desktop->answers = {dontSave};
        m_model->openPractice();
        QVERIFY(m_window->isVisible());
        QCOMPARE(m_window->windowTitle(), u"Vell Practice Form[*]"_s);
        undo();
        QVERIFY(!m_window->isWindowModified());
        m_model->closeForm();
    }
};

QTEST_MAIN(TestFormWindow)
#include "tst_formwindow.moc"
