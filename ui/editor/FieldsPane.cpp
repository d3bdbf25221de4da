#include "FieldsPane.h"

#include "FieldEditor.h"

#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

FieldsPane::FieldsPane(QWidget *parent) : QScrollArea(parent)
{
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(u"Fields"_s);
}

void FieldsPane::setTemplate(const QSTemplate &source)
{
    const int em = fontMetrics().height();
    auto *content = new QWidget(this);
    content->setProperty("clear", true);
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, em, em);
    column->setSpacing(em * 3 / 4);
    m_editors.clear();
    for (const QSField &field : source.fields) {
        FieldEditor *editor = FieldEditor::make(field, content);
        connect(editor, &FieldEditor::edited, this, &FieldsPane::edited);
        column->addWidget(editor);
        m_editors.append(editor);
    }
    column->addStretch();
    setWidget(content);
    viewport()->setAutoFillBackground(false);
}

void FieldsPane::setValues(const QSValues &values)
{
    for (FieldEditor *editor : m_editors) {
        editor->setValue(values.value(editor->field().key));
    }
}

QStringList FieldsPane::emptyFields() const
{
    QStringList labels;
    for (const FieldEditor *editor : m_editors) {
        if (editor->value().trimmed().isEmpty()) {
            labels.append(editor->field().label);
        }
    }
    return labels;
}

void FieldsPane::chainTabOrder(QWidget *before, QWidget *after)
{
    for (FieldEditor *editor : m_editors) {
        for (QWidget *control : editor->controls()) {
            QWidget::setTabOrder(before, control);
            before = control;
        }
    }
    QWidget::setTabOrder(before, after);
}

void FieldsPane::focusFirst(const QSValues &values)
{
    if (m_editors.isEmpty()) {
        return;
    }
    const auto empty = std::ranges::find_if(m_editors, [&values](const FieldEditor *editor) {
        return values.value(editor->field().key).isEmpty();
    });
    FieldEditor *first = empty == m_editors.end() ? m_editors.constFirst() : *empty;
    first->controls().constFirst()->setFocus();
    // once the pane has its size
    QMetaObject::invokeMethod(
        first, [this, first] { ensureWidgetVisible(first); }, Qt::QueuedConnection);
}
