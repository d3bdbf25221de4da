#include "../pdf/SmallPDF.h"
#include "FormWindowFixture.h"
#include "TestFiles.h"

#include <QClipboard>
#include <QDir>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Three combs in a row; then on the same line, but farther, another; and fields of other kinds.
enum Field { three, two, four, apart, plain, besidePlain, lines };

QByteArray boxes()
{
    const QByteArray comb = "/FT/Tx/Ff 16777216";
    return smallPDF(
        {comb + "/T(a)/MaxLen 3/Rect[10 160 40 175]", comb + "/T(b)/MaxLen 2/Rect[50 160 70 175]",
         comb + "/T(c)/MaxLen 4/Rect[80 160 120 175]",
         comb + "/T(d)/MaxLen 4/Rect[140 160 180 175]", "/FT/Tx/T(e)/MaxLen 4/Rect[10 130 50 145]",
         "/FT/Tx/T(f)/MaxLen 4/Rect[52 130 92 145]",
         "/FT/Tx/T(g)/Ff 4096/MaxLen 4/Rect[10 80 110 120]"},
        "/Tabs/R");
}
} // namespace

/// Fields that take so many characters and no more: nothing of what is typed goes without a word.
class TestCombs final : public QObject, private FormWindowFixture
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setLook(); }

    void init() { begin(); }
    void cleanup() { end(); }

    void aNumberGoesOnFromBoxToBox_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("held"); // of the first four
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("said");
        const QString one = u"1 character did not fit."_s;
        QTest::newRow("digits") << u"123456789"_s << u"123|45|6789|"_s << int(four) << QString();
        QTest::newRow("with the signs that the form prints")
            << u"123-45-6789"_s << u"123|45|6789|"_s << int(four) << QString();
        QTest::newRow("a part of it") << u"123-45"_s << u"123|45||"_s << int(two) << QString();
        QTest::newRow("one box is no row") << u"12"_s << u"12|||"_s << int(three) << QString();
        QTest::newRow("too long") << u"1234567890"_s << u"123|45|6789|"_s << int(four) << one;
        QTest::newRow("signs between letters count")
            << u"O'Brien-X"_s << u"O'B|ri|en-X|"_s << int(four) << QString();
    }

    void aNumberGoesOnFromBoxToBox()
    {
        QFETCH(const QString, text);
        QFETCH(const int, end);
        QFETCH(const QString, said);
        open(boxes());
        m_view->focusField(three, Qt::TabFocusReason);
        for (const QChar each : text) {
            QTest::keyClick(focused(), each.toLatin1());
        }
        expect(end, said);
        discardAnswers();

        m_view->focusField(three, Qt::TabFocusReason);
        paste(text);
        expect(end, said);
        undo();
        QCOMPARE(row(), u"|||"_s);
        QCOMPARE(openField(), int(three));
        press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QTEST(row(), "held");
        discard();
    }

    void aWholeNumberTakesThePlaceOfAnother()
    {
        open(boxes());
        m_view->focusField(three, Qt::TabFocusReason);
        paste(u" 123-45-6789\n"_s);
        QCOMPARE(row(), u"123|45|6789|"_s);
        m_view->focusField(three, Qt::TabFocusReason);
        press(Qt::Key_Delete); // the marked text of the first box
        paste(u"9876"_s);
        QCOMPARE(row(), u"987|45|6789|"_s); // what stands there stays
        QCOMPARE(m_model->message(), u"1 character did not fit."_s);
        press(Qt::Key_A, Qt::ControlModifier);
        paste(u"987654321"_s);
        QCOMPARE(row(), u"987|65|4321|"_s);
        undo();
        QCOMPARE(row(), u"987|45|6789|"_s);
        discard();
    }

    void backspaceGoesBack()
    {
        open(boxes());
        m_view->focusField(three, Qt::TabFocusReason);
        QTest::keyClicks(focused(), u"123"_s);
        QTest::keyClick(focused(), '4');
        QCOMPARE(openField(), int(two));
        press(Qt::Key_Backspace);
        QCOMPARE(row(), u"123|||"_s);
        press(Qt::Key_Backspace);
        QCOMPARE(row(), u"12|||"_s);
        QCOMPARE(openField(), int(three));
        m_view->focusField(apart, Qt::TabFocusReason);
        press(Qt::Key_Backspace);
        QCOMPARE(openField(), int(apart));
        discard();
    }

    void whatDoesNotFitIsSaid_data()
    {
        QTest::addColumn<int>("field");
        QTest::newRow("beside another answer") << int(plain);
        QTest::newRow("several lines") << int(lines);
    }

    void whatDoesNotFitIsSaid()
    {
        QFETCH(const int, field);
        open(boxes());
        m_view->focusField(field, Qt::TabFocusReason);
        QTest::keyClicks(focused(), u"abcd"_s);
        QVERIFY(!m_model->message());
        QTest::keyClick(focused(), 'e');
        QCOMPARE(m_model->message(), u"1 character did not fit."_s);
        paste(u"xyz"_s);
        QCOMPARE(m_model->message(), u"3 characters did not fit."_s);
        QCOMPARE(held(field), u"abcd"_s);
        QCOMPARE(held(besidePlain), QString());
        QCOMPARE(openField(), field);
        discard();
    }

    void aRealFormTakesWholeNumbers()
    {
        const QDir forms(QStringLiteral(QS_FORMS));
        if (!forms.exists()) {
            QSKIP("The folder with real forms is not beside the project.");
        }
        open(contents(forms.filePath(u"w-9-xfa-comb.pdf"_s)));
        const auto pasteInto = [this](const QString &name, const QString &text) {
            for (const FormField &field : document().fields()) {
                if (field.name.endsWith(name)) {
                    m_view->focusField(field.id, Qt::TabFocusReason);
                    paste(text);
                }
            }
        };
        pasteInto(u"f1_11[0]"_s, u"123-45-6789"_s);
        pasteInto(u"f1_14[0]"_s, u"12-3456789"_s);
        QStringList answers;
        for (const FormField &field : document().fields()) {
            if (field.comb) {
                answers.append(document().value(field.id).text);
            }
        }
        QCOMPARE(answers.join(u' '), u"123 45 6789 12 3456789"_s);
        QVERIFY(!m_model->message());
        discard();
    }

private:
    void paste(const QString &text) const
    {
        QGuiApplication::clipboard()->setText(text);
        press(Qt::Key_V, Qt::ControlModifier);
    }

    [[nodiscard]] QString row() const
    {
        QStringList texts;
        for (const int field : {three, two, four, apart}) {
            texts.append(held(field));
            if (shownIn(field) != texts.last()) {
                return u"%1 shows %2"_s.arg(texts.last(), shownIn(field));
            }
        }
        return texts.join(u'|');
    }

    void expect(int end, const QString &said) const
    {
        QTEST(row(), "held");
        QCOMPARE(openField(), end);
        QCOMPARE(m_model->message().value_or(QString()), said);
    }

    void discardAnswers()
    {
        for (const int field : {three, two, four, apart}) {
            m_model->setFormValue(field, {});
        }
        m_model->setMessage(std::nullopt);
    }
};

QTEST_MAIN(TestCombs)
#include "tst_combs.moc"
