#include "FieldControl.h"

#include "FieldControls.h"
#include "VxText.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {
template <typename Control>
FieldControl *makeControl(const FormField &field, QWidget *page)
{
    return new Control(field, page); // its own widget is a child of the page and owns it
}

using Maker = FieldControl *(*)(const FormField &, QWidget *);
/// In the order of FormField::Kind.
constexpr std::array<Maker, 7> makers = {
    makeControl<LineControl>,  makeControl<MarkControl>, makeControl<MarkControl>,
    makeControl<ComboControl>, makeControl<ListControl>, makeControl<BlankControl>,
    makeControl<BlankControl>,
};

/// Keys that scroll the pages where a field has no use for them.
constexpr std::array scrollKeys = {Qt::Key_PageUp, Qt::Key_PageDown};

bool isUndoOrRedo(const QKeyEvent &key)
{
    return key.matches(QKeySequence::Undo) || key.matches(QKeySequence::Redo);
}

QString nameFor(const FormField &field)
{
    const QString name =
        field.label.isEmpty() ? u"Field on page %1"_s.arg(field.page + 1) : field.label;
    return field.required ? name + u", required"_s : name;
}
} // namespace

FieldControl *FieldControl::make(const FormField &field, QWidget *page)
{
    FieldControl *control = field.kind == FormField::Kind::text && field.multiLine
                                ? makeControl<AreaControl>(field, page)
                                : makers.at(static_cast<std::size_t>(field.kind))(field, page);
    control->widget()->show();
    return control;
}

FieldControl::FieldControl(const FormField &field, QWidget *widget)
    : QObject(widget), m_field(field), m_widget(widget)
{
    // The form has an order of its own for Tab, and goes beyond the fields that have a control yet.
    widget->setFocusPolicy(field.isSettable() ? Qt::ClickFocus : Qt::NoFocus);
    widget->setEnabled(field.isSettable());
    widget->setAccessibleName(nameFor(field));
    widget->setToolTip(VxText::asItStands(nameFor(field)));
    addPart(widget);
}

void FieldControl::setFault(const std::optional<FormFault> &fault)
{
    if (fault == m_fault) {
        return;
    }
    m_fault = fault;
    const QString words = fault ? fault->inShort() : QString();
    m_widget->setAccessibleDescription(words);
    const QString name = nameFor(m_field);
    m_widget->setToolTip(VxText::asItStands(words.isEmpty() ? name : name + u'\n' + words));
    showParts();
}

void FieldControl::addPart(QWidget *part)
{
    m_parts.append(part);
    part->setAutoFillBackground(false);
    part->installEventFilter(this);
}

void FieldControl::place(double scale)
{
    const QRectF &at = m_field.rect;
    m_widget->setGeometry(QRectF(at.topLeft() * scale, at.size() * scale).toAlignedRect());
    fit(scale);
}

void FieldControl::setFontSize(double points, double scale)
{
    QFont font = m_widget->font();
    font.setFamilies({u"Liberation Sans"_s, u"Arial"_s, u"Helvetica"_s});
    // a font's point is that of the screen, the paper's is scale pixels long
    font.setPointSizeF(qMax(1.0, points * scale * 72 / m_widget->logicalDpiY()));
    m_widget->setFont(font);
}

void FieldControl::setPending(bool pending)
{
    if (std::exchange(m_pending, pending) != pending) {
        showParts();
    }
}

void FieldControl::showParts()
{
    m_widget->parentWidget()->update(m_widget->geometry());
    for (QWidget *part : std::as_const(m_parts)) {
        part->update();
    }
}

bool FieldControl::coversPage() const
{
    const bool hasText = m_field.kind == FormField::Kind::text ||
                         m_field.kind == FormField::Kind::comboBox ||
                         m_field.kind == FormField::Kind::listBox;
    return hasText && (m_open || m_pending);
}

void FieldControl::setOpen(bool open)
{
    if (std::exchange(m_open, open) != open) {
        Q_EMIT openChanged();
        showParts();
    }
}

void FieldControl::commitInput()
{
    if (!m_composed.isEmpty()) {
        QInputMethodEvent typed;
        typed.setCommitString(m_composed);
        QCoreApplication::sendEvent(m_widget, &typed);
        QGuiApplication::inputMethod()->reset();
    }
}

bool FieldControl::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Paint:
        return !m_open && !m_pending;
    case QEvent::FocusIn:
        setOpen(true);
        return false;
    case QEvent::InputMethod:
        m_composed = static_cast<QInputMethodEvent *>(event)->preeditString();
        return false;
    case QEvent::FocusOut: {
        commitInput(); // the widget would drop what the input method has not committed
        // a menu or the list of a choice is part of editing
        const auto reason = static_cast<QFocusEvent *>(event)->reason();
        setOpen(reason == Qt::PopupFocusReason || reason == Qt::MenuBarFocusReason);
        return false;
    }
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
        return filterKey(event);
    case QEvent::Wheel:
        // Turning the wheel over a form scrolls the form; no answer changes by it.
        event->ignore();
        return !(m_open && scrolls());
    case QEvent::ContextMenu:
        return filterMenu(watched, event);
    default:
        return false;
    }
}

bool FieldControl::filterKey(QEvent *event) const
{
    auto *key = static_cast<QKeyEvent *>(event);
    if (isUndoOrRedo(*key)) { // the form's, not the control's own
        event->setAccepted(event->type() == QEvent::KeyPress);
        return true;
    }
    const bool scrollsPages =
        std::ranges::find(scrollKeys, key->key()) != scrollKeys.end() && !scrolls();
    if (scrollsPages) {
        event->ignore();
    }
    return scrollsPages;
}

bool FieldControl::filterMenu(QObject *watched, QEvent *event) const
{
    auto *line = qobject_cast<QLineEdit *>(watched);
    if (!line) {
        return false;
    }
    QMenu *menu = line->createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (QAction *action : menu->actions()) { // those that the form has for all its fields
        if (action->objectName() == u"edit-undo"_s || action->objectName() == u"edit-redo"_s) {
            menu->removeAction(action);
        }
    }
    menu->popup(static_cast<QContextMenuEvent *>(event)->globalPos());
    return true;
}
