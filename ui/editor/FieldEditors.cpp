#include "FieldEditors.h"

#include "QSDate.h"
#include "QSMoney.h"
#include "QSStates.h"
#include "VxCalendarButton.h"

#include <QAbstractTextDocumentLayout>
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QWheelEvent>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString printsAs = u"Prints as %1"_s;

/// A list that leaves the wheel to the pane around it: scrolling past must not change an answer.
class QuietComboBox final : public QComboBox
{
public:
    using QComboBox::QComboBox;

protected:
    void wheelEvent(QWheelEvent *event) override { event->ignore(); }
};
} // namespace

/// A text area that is as tall as its text, between three and twelve lines.
class GrowingTextEdit final : public QPlainTextEdit
{
public:
    explicit GrowingTextEdit(QWidget *parent) : QPlainTextEdit(parent)
    {
        setTabChangesFocus(true);
        connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged,
                this, [this] { fit(); });
        fit();
    }

protected:
    void changeEvent(QEvent *event) override
    {
        QPlainTextEdit::changeEvent(event);
        if (event->type() == QEvent::FontChange) {
            fit();
        }
    }

private:
    void fit()
    {
        static constexpr int fewest = 3;
        static constexpr int most = 12;
        const int lines = qRound(document()->size().height());
        const int shown = qBound(fewest, lines, most);
        const int around = height() - viewport()->height();
        setFixedHeight(shown * fontMetrics().lineSpacing() + fontMetrics().height() +
                       qMax(0, qMin(around, fontMetrics().height())));
    }
};

// Text, number

LineFieldEditor::LineFieldEditor(const QSField &field, QWidget *parent)
    : FieldEditor(field, parent), m_line(new QLineEdit(this))
{
    setControl(m_line);
    connect(m_line, &QLineEdit::textChanged, this, &LineFieldEditor::controlChanged);
}

QString LineFieldEditor::value() const
{
    return m_line->text();
}

void LineFieldEditor::showValue(const QString &value)
{
    m_line->setText(value);
    m_line->setCursorPosition(0);
}

// Money

MoneyFieldEditor::MoneyFieldEditor(const QSField &field, QWidget *parent)
    : LineFieldEditor(field, parent)
{
    line()->setPlaceholderText(u"Amount, for example 1500.00"_s);
    connect(line(), &QLineEdit::textChanged, this, &MoneyFieldEditor::check);
}

void MoneyFieldEditor::check()
{
    const QString typed = value().trimmed();
    const std::optional<QString> amount = QSMoney::currency(typed);
    if (typed.isEmpty() || amount == typed) {
        setHint({});
    } else {
        setHint(amount ? printsAs.arg(*amount)
                       : u"This is not a plain amount, so it prints as typed."_s);
    }
}

// Date

DateFieldEditor::DateFieldEditor(const QSField &field, QWidget *parent)
    : LineFieldEditor(field, parent), m_calendar(new VxCalendarButton(this))
{
    line()->setPlaceholderText(u"YYYY-MM-DD"_s);
    m_calendar->setAccessibleName(u"Calendar for %1"_s.arg(field.label));
    addBeside(m_calendar);
    connect(line(), &QLineEdit::textChanged, this, &DateFieldEditor::check);
    connect(m_calendar, &VxCalendarButton::picked, line(),
            [this](QDate date) { line()->setText(QSDate::iso(date)); });
}

void DateFieldEditor::check()
{
    const QString typed = value().trimmed();
    const std::optional<QDate> date = QSDate::parseISO(typed);
    m_calendar->setDate(date.value_or(QDate()));
    if (typed.isEmpty()) {
        setHint({});
    } else {
        setHint(date ? printsAs.arg(QSDate::longFormat(*date))
                     : u"This is not a date in the form YYYY-MM-DD, so it prints as typed."_s);
    }
}

// Several lines

MultilineFieldEditor::MultilineFieldEditor(const QSField &field, QWidget *parent)
    : FieldEditor(field, parent), m_text(new GrowingTextEdit(this))
{
    setControl(m_text);
    connect(m_text, &QPlainTextEdit::textChanged, this, &MultilineFieldEditor::controlChanged);
}

QString MultilineFieldEditor::value() const
{
    // toPlainText() would turn no-break spaces into plain ones
    QStringList lines;
    for (QTextBlock line = m_text->document()->begin(); line.isValid(); line = line.next()) {
        lines.append(line.text());
    }
    return lines.join(u'\n');
}

void MultilineFieldEditor::showValue(const QString &value)
{
    m_text->setPlainText(value);
}

// State

StateFieldEditor::StateFieldEditor(const QSField &field, QWidget *parent)
    : FieldEditor(field, parent), m_box(new QuietComboBox(this))
{
    m_box->setFocusPolicy(Qt::StrongFocus);
    m_box->addItem(u"Choose a state"_s, QString());
    for (const QSStates::State &state : QSStates::all) {
        m_box->addItem(state.name.toString(), state.code.toString());
    }
    setControl(m_box);
    connect(m_box, &QComboBox::currentIndexChanged, this, &StateFieldEditor::controlChanged);
}

QString StateFieldEditor::value() const
{
    return m_box->currentData().toString();
}

void StateFieldEditor::showValue(const QString &value)
{
    const QString code = QSStates::code(value).value_or(value);
    int row = m_box->findData(code);
    if (row < 0) {
        m_box->addItem(value, value);
        row = m_box->count() - 1;
    }
    m_box->setCurrentIndex(row);
}
