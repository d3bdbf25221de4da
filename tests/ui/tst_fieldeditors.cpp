#include "editor/FieldEditor.h"

#include <QAbstractItemView>
#include <QCalendarWidget>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QToolButton>

using namespace Qt::Literals::StringLiterals;

namespace {
QSField field(QSFieldKind kind)
{
    return {u"key"_s, u"Label"_s, kind, u"fullName"_s, true};
}

/// The line below the control; empty when none is shown.
QString hint(const FieldEditor &editor)
{
    for (const QLabel *label : editor.findChildren<QLabel *>()) {
        if (label->property("role").toString() == u"note"_s && !label->isHidden()) {
            return label->text();
        }
    }
    return {};
}
} // namespace

class TestFieldEditors final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKindKeepsWhatItIsGiven_data()
    {
        QTest::addColumn<QSFieldKind>("kind");
        QTest::addColumn<QString>("given");
        QTest::addColumn<QString>("kept");
        QTest::newRow("text") << QSFieldKind::text << u"Nguy\u1EC5n \u5F20\u4F1F"_s
                              << u"Nguy\u1EC5n \u5F20\u4F1F"_s;
        QTest::newRow("lines") << QSFieldKind::multiline << u"one\n\n  two\u00A0"_s
                               << u"one\n\n  two\u00A0"_s;
        QTest::newRow("number") << QSFieldKind::number << u"12.50"_s << u"12.50"_s;
        QTest::newRow("a state's name is its code")
            << QSFieldKind::state << u"new york"_s << u"NY"_s;
        QTest::newRow("no state, but typed once")
            << QSFieldKind::state << u"Ontario"_s << u"Ontario"_s;
        QTest::newRow("not a date") << QSFieldKind::date << u"next May"_s << u"next May"_s;
        QTest::newRow("not money") << QSFieldKind::money << u"about 20"_s << u"about 20"_s;
    }

    void everyKindKeepsWhatItIsGiven()
    {
        QFETCH(QSFieldKind, kind);
        QFETCH(QString, given);
        QFETCH(QString, kept);
        QWidget parent;
        FieldEditor *editor = FieldEditor::make(field(kind), &parent);
        const QSignalSpy edited(editor, &FieldEditor::edited);
        editor->setValue(given);
        QCOMPARE(editor->value(), kept);
        QCOMPARE(edited.count(), 0); // shown, not edited
        editor->setValue({});
        QCOMPARE(editor->value(), QString());
    }

    void amountsAndDatesSayHowTheyPrint_data()
    {
        QTest::addColumn<QSFieldKind>("kind");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("said");
        QTest::newRow("amount") << QSFieldKind::money << u"1500"_s << u"Prints as $1,500.00"_s;
        QTest::newRow("words") << QSFieldKind::money << u"a lot"_s
                               << u"This is not a plain amount, so it prints as typed."_s;
        QTest::newRow("plain already") << QSFieldKind::money << u"$1,500.00"_s << QString();
        QTest::newRow("date") << QSFieldKind::date << u"2027-03-01"_s
                              << u"Prints as March 1, 2027"_s;
        QTest::newRow("no such day")
            << QSFieldKind::date << u"2027-02-30"_s
            << u"This is not a date in the form YYYY-MM-DD, so it prints as typed."_s;
        QTest::newRow("empty") << QSFieldKind::date << u" "_s << QString();
    }

    void amountsAndDatesSayHowTheyPrint()
    {
        QFETCH(QSFieldKind, kind);
        QFETCH(QString, typed);
        QFETCH(QString, said);
        QWidget parent;
        FieldEditor *editor = FieldEditor::make(field(kind), &parent);
        const QSignalSpy edited(editor, &FieldEditor::edited);
        auto *line = editor->findChild<QLineEdit *>();
        QTest::keyClicks(line, typed);
        QCOMPARE(edited.count(), typed.size());
        QCOMPARE(edited.last().at(1).toString(), typed);
        QCOMPARE(hint(*editor), said);
        QVERIFY(line->accessibleDescription().endsWith(said)); // and for those who hear it
    }

    void theCalendarPicksADayByKeyboard()
    {
        QWidget parent;
        FieldEditor *editor = FieldEditor::make(field(QSFieldKind::date), &parent);
        editor->setValue(u"2027-03-01"_s);
        parent.show();
        bool opened = false;
        QTimer::singleShot(0, &parent, [&opened] {
            QWidget *menu = QApplication::activePopupWidget();
            auto *calendar = menu ? menu->findChild<QCalendarWidget *>() : nullptr;
            if (!calendar) {
                return;
            }
            opened = calendar->selectedDate() == QDate(2027, 3, 1);
            auto *days = calendar->findChild<QAbstractItemView *>();
            QTest::keyClick(days, Qt::Key_Right);
            QTest::keyClick(days, Qt::Key_Return);
        });
        QTest::keyClick(editor->findChild<QToolButton *>(), Qt::Key_Space);
        QVERIFY(opened);
        QCOMPARE(editor->value(), u"2027-03-02"_s);
    }

    void controlsAreNamedForScreenReaders()
    {
        for (int kind = 0; kind < static_cast<int>(fieldKindWords.size()); ++kind) {
            QWidget parent;
            FieldEditor *editor = FieldEditor::make(field(static_cast<QSFieldKind>(kind)), &parent);
            QCOMPARE(editor->controls().constFirst()->accessibleName(), u"Label, required"_s);
            QCOMPARE(editor->controls().constFirst()->accessibleDescription(),
                     u"Fills from My Profile."_s);
        }
    }

    void tabLeavesATextOfSeveralLines()
    {
        QWidget parent;
        FieldEditor *editor = FieldEditor::make(field(QSFieldKind::multiline), &parent);
        auto *next = new QLineEdit(&parent);
        next->move(0, 400);
        parent.show();
        QVERIFY(QTest::qWaitForWindowActive(&parent));
        editor->controls().constFirst()->setFocus();
        QTest::keyClick(editor->findChild<QPlainTextEdit *>(), Qt::Key_Tab);
        QVERIFY(next->hasFocus());
        QCOMPARE(editor->value(), QString());
    }
};

QTEST_MAIN(TestFieldEditors)
#include "tst_fieldeditors.moc"
