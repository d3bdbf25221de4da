#include "FieldControls.h"

#include "FieldText.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScrollBar>
#include <QTextDocument>

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr double usualSize = 12;   ///< points, where the form leaves the size open
constexpr double lineShare = 0.75; ///< of a field's height, for what stands on one line
constexpr double leastSize = 6;    ///< to which a long text shrinks

/// The letters' size in points: the field's own, or what fits its height.
double lineSize(const FormField &field)
{
    return field.fontSize > 0 ? field.fontSize
                              : qBound(4.0, field.rect.height() * lineShare, usualSize);
}

double blockSize(const FormField &field)
{
    return field.fontSize > 0 ? field.fontSize : usualSize;
}

/// A button whose whole field can be clicked and that paints nothing.
template <typename Button>
class WholeField final : public Button
{
public:
    using Button::Button;

protected:
    [[nodiscard]] bool hitButton(const QPoint &at) const override
    {
        return this->rect().contains(at);
    }
    void paintEvent(QPaintEvent *) override {}
};

QAbstractButton *makeButton(const FormField &field, QWidget *page)
{
    if (field.kind == FormField::Kind::radio) {
        return new WholeField<QRadioButton>(page);
    }
    return new WholeField<QCheckBox>(page);
}
} // namespace

// A line of text

LineControl::LineControl(const FormField &field, QWidget *page)
    : FieldControl(field, new QLineEdit(page)), m_line(qobject_cast<QLineEdit *>(widget()))
{
    m_line->setFrame(false);
    m_line->setAlignment(field.alignment);
    if (field.password) {
        m_line->setEchoMode(QLineEdit::Password);
    }
    auto *limit = new FieldText::Limit(field.maxLength, m_line);
    m_line->setValidator(limit);
    connect(limit, &FieldText::Limit::exceeded, this,
            [this](const QString &text, int cursor) { m_whole.emplace(text, cursor); });
    connect(m_line, &QLineEdit::textEdited, this, &LineControl::textEdited);
    connect(m_line, &QLineEdit::textChanged, this, [this] { fit(m_scale); });
}

void LineControl::setValue(const FormValue &value)
{
    if (m_line->text() != value.text) {
        m_line->setText(value.text);
        m_whole.reset(); // set, not typed
    }
}

void LineControl::textEdited(const QString &text)
{
    if (const auto whole = std::exchange(m_whole, {})) {
        Q_EMIT exceeded(whole->first, whole->second);
    } else {
        Q_EMIT edited({.text = text, .on = {}, .chosen = {}});
    }
}

bool LineControl::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && m_line->text().isEmpty() &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Backspace) {
        Q_EMIT steppedBack();
    }
    return FieldControl::eventFilter(watched, event);
}

void LineControl::fit(double scale)
{
    m_scale = scale;
    if (field().comb && field().maxLength > 0) {
        fitComb(scale);
        return;
    }
    setFontSize(lineSize(field()), scale);
    const double needed = m_line->fontMetrics().horizontalAdvance(m_line->text());
    const double room = m_line->width() * 0.95;
    if (needed > room) {
        const double size = lineSize(field());
        setFontSize(qMax(qMin(size, leastSize), size * room / needed), scale);
    }
}

void LineControl::fitComb(double scale)
{
    const double cell = field().rect.width() * scale / field().maxLength;
    // of a comb's letters the widest has to stand within its cell
    const double size = qMin(lineSize(field()), cell / scale / 0.65);
    setFontSize(size, scale);
    QFont font = m_line->font();
    font.setFamilies({u"Liberation Mono"_s, u"Courier New"_s, u"Courier"_s});
    font.setLetterSpacing(QFont::AbsoluteSpacing, 0);
    const double letter = QFontMetricsF(font).horizontalAdvance(u'0');
    font.setLetterSpacing(QFont::AbsoluteSpacing, cell - letter);
    m_line->setFont(font);
    // the room that follows the last letter lies outside: it must not scroll the first one away
    const int left = qMax(0, qRound((cell - letter) / 2) - 2);
    m_line->setTextMargins(left, 0, -qRound(cell), 0);
}

// Several lines

AreaControl::AreaControl(const FormField &field, QWidget *page)
    : FieldControl(field, new QPlainTextEdit(page)),
      m_area(qobject_cast<QPlainTextEdit *>(widget()))
{
    m_area->setFrameShape(QFrame::NoFrame);
    m_area->setTabChangesFocus(true);
    m_area->setUndoRedoEnabled(false);
    m_area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QTextOption option = m_area->document()->defaultTextOption();
    option.setAlignment(field.alignment);
    m_area->document()->setDefaultTextOption(option);
    addPart(m_area->viewport());
    addPart(m_area->verticalScrollBar());
    connect(m_area, &QPlainTextEdit::textChanged, this, &AreaControl::textChanged);
}

void AreaControl::setValue(const FormValue &value)
{
    if (text() != value.text) {
        const QSignalBlocker quiet(m_area);
        m_shown = value.text;
        m_area->setPlainText(value.text);
        m_area->moveCursor(QTextCursor::End);
    }
}

QString AreaControl::text() const
{
    // toPlainText() would turn no-break spaces into plain ones
    return m_area->document()
        ->toRawText()
        .replace(QChar::ParagraphSeparator, u'\n')
        .replace(QChar::LineSeparator, u'\n');
}

void AreaControl::textChanged()
{
    const QString whole = text();
    const int cursor = m_area->textCursor().position();
    cutToLimit();
    const QString now = text();
    if (now.size() < whole.size()) {
        m_shown = now;
        Q_EMIT exceeded(whole, cursor);
    } else if (now != m_shown) {
        m_shown = now;
        Q_EMIT edited({.text = now, .on = {}, .chosen = {}});
    }
}

void AreaControl::cutToLimit()
{
    QString rest = text();
    QTextCursor cursor = m_area->textCursor();
    const int end = cursor.position();
    int start = end;
    const qsizetype before = rest.size();
    FieldText::cut(rest, start, field().maxLength);
    if (rest.size() < before) {
        const QSignalBlocker quiet(m_area);
        cursor.setPosition(start);
        cursor.setPosition(end, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
    }
}

void AreaControl::fit(double scale)
{
    setFontSize(blockSize(field()), scale);
    m_area->document()->setDocumentMargin(2 * scale);
}

bool AreaControl::scrolls() const
{
    return m_area->verticalScrollBar()->maximum() > 0;
}

// Check boxes and radio buttons

MarkControl::MarkControl(const FormField &field, QWidget *page)
    : FieldControl(field, makeButton(field, page)),
      m_button(qobject_cast<QAbstractButton *>(widget()))
{
    m_button->setCheckable(true);
    m_button->setAutoExclusive(false); // the form knows which buttons belong together
    // A button that is on goes off again: a choice made by mistake need not stand on the paper.
    connect(m_button, &QAbstractButton::clicked, this,
            [this](bool on) { Q_EMIT edited({.text = {}, .on = on, .chosen = {}}); });
}

void MarkControl::setValue(const FormValue &value)
{
    m_button->setChecked(value.on);
}

// Choices

ComboControl::ComboControl(const FormField &field, QWidget *page)
    : FieldControl(field, new QComboBox(page)), m_combo(qobject_cast<QComboBox *>(widget()))
{
    m_combo->setFrame(false);
    for (const FormField::Choice &choice : field.choices) {
        m_combo->addItem(choice.label);
    }
    m_combo->setCurrentIndex(-1);
    m_combo->view()->setFont(QApplication::font()); // to be read at every zoom
    connect(m_combo, &QComboBox::activated, this,
            [this](int index) { Q_EMIT edited({.text = {}, .on = {}, .chosen = {index}}); });
    if (field.editable) {
        m_combo->setEditable(true);
        m_combo->setInsertPolicy(QComboBox::NoInsert);
        m_combo->setCompleter(nullptr); // what is printed is what was typed
        m_combo->lineEdit()->setValidator(new FieldText::Limit(field.maxLength, m_combo));
        addPart(m_combo->lineEdit());
        connect(m_combo->lineEdit(), &QLineEdit::textEdited, this, [this](const QString &text) {
            Q_EMIT edited({.text = text, .on = {}, .chosen = {}});
        });
    }
}

void ComboControl::setValue(const FormValue &value)
{
    const int index = value.chosen.isEmpty() ? -1 : value.chosen.constFirst();
    const QString text = index < 0 ? value.text : m_combo->itemText(index);
    const bool sameText = m_combo->currentText() == text;
    if (m_combo->currentIndex() == index && sameText) {
        return;
    }
    const QSignalBlocker quiet(m_combo);
    QLineEdit *line = m_combo->lineEdit();
    const int cursor = line ? line->cursorPosition() : 0;
    m_combo->setCurrentIndex(index);
    if (line && index < 0) {
        line->setText(text);
        if (sameText) { // typed just now, perhaps into the text of a choice
            line->setCursorPosition(cursor);
        }
    }
}

void ComboControl::fit(double scale)
{
    setFontSize(lineSize(field()), scale);
    const QFontMetrics metrics(QApplication::font());
    int widest = m_combo->width();
    for (const FormField::Choice &choice : field().choices) {
        widest = qMax(widest, metrics.horizontalAdvance(choice.label) + 3 * metrics.height());
    }
    m_combo->view()->setMinimumWidth(widest);
}

// Lists

ListControl::ListControl(const FormField &field, QWidget *page)
    : FieldControl(field, new QListWidget(page)), m_list(qobject_cast<QListWidget *>(widget()))
{
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setSelectionMode(field.multiSelect ? QAbstractItemView::MultiSelection
                                               : QAbstractItemView::SingleSelection);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setTabKeyNavigation(false);
    for (const FormField::Choice &choice : field.choices) {
        m_list->addItem(choice.label);
    }
    addPart(m_list->viewport());
    addPart(m_list->verticalScrollBar());
    connect(m_list, &QListWidget::itemSelectionChanged, this,
            [this] { Q_EMIT edited({.text = {}, .on = {}, .chosen = chosen()}); });
}

QList<int> ListControl::chosen() const
{
    QList<int> rows;
    for (int row = 0; row < m_list->count(); ++row) {
        if (m_list->item(row)->isSelected()) {
            rows.append(row);
        }
    }
    return rows;
}

void ListControl::setValue(const FormValue &value)
{
    if (chosen() == value.chosen) {
        return;
    }
    const QSignalBlocker quiet(m_list);
    m_list->clearSelection();
    for (const int row : value.chosen) {
        if (QListWidgetItem *item = m_list->item(row)) {
            item->setSelected(true);
            m_list->setCurrentItem(item, QItemSelectionModel::NoUpdate);
        }
    }
}

void ListControl::fit(double scale)
{
    setFontSize(blockSize(field()), scale);
}

bool ListControl::scrolls() const
{
    return m_list->verticalScrollBar()->maximum() > 0;
}

// What is not filled in here

BlankControl::BlankControl(const FormField &field, QWidget *page)
    : FieldControl(field, new QWidget(page))
{
}
