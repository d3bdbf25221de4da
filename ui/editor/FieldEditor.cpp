#include "FieldEditor.h"

#include "FieldEditors.h"
#include "VxIconLabel.h"
#include "VxText.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::Literals::StringLiterals;

FieldEditor *FieldEditor::make(const QSField &field, QWidget *parent)
{
    switch (field.kind) {
    case QSFieldKind::multiline:
        return new MultilineFieldEditor(field, parent);
    case QSFieldKind::state:
        return new StateFieldEditor(field, parent);
    case QSFieldKind::date:
        return new DateFieldEditor(field, parent);
    case QSFieldKind::money:
        return new MoneyFieldEditor(field, parent);
    case QSFieldKind::text:
    case QSFieldKind::number:
        break;
    }
    return new LineFieldEditor(field, parent);
}

FieldEditor::FieldEditor(const QSField &field, QWidget *parent)
    : QWidget(parent),
      m_field(field),
      m_label(VxText::make(field.required ? field.label + u" *"_s : field.label, VxText::Role::body,
                           this)),
      m_hint(VxText::make({}, VxText::Role::note, this)),
      m_controlRow(new QHBoxLayout)
{
    m_hint->hide();
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(fontMetrics().height() / 5);
    column->addWidget(createLabelRow());
    column->addLayout(m_controlRow);
    column->addWidget(m_hint);
}

QWidget *FieldEditor::createLabelRow()
{
    auto *row = new QWidget(this);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->addWidget(m_label, 1);
    if (m_field.profileKey) {
        const QString hint = u"Fills from My Profile"_s;
        auto *mark = new VxIconLabel(u"person.crop.circle.fill"_s, row);
        mark->setToolTip(hint);
        mark->setAccessibleName(hint);
        layout->addWidget(mark, 0, Qt::AlignRight | Qt::AlignBottom);
    }
    return row;
}

void FieldEditor::setControl(QWidget *control)
{
    m_label->setBuddy(control);
    QString name = m_field.label;
    if (m_field.required) {
        name += u", required"_s;
    }
    control->setAccessibleName(name);
    m_controlRow->addWidget(control, 1);
    m_controls.append(control);
    setHint({});
}

void FieldEditor::addBeside(QWidget *widget)
{
    m_controlRow->addWidget(widget);
    m_controls.append(widget);
}

void FieldEditor::setHint(const QString &text)
{
    m_hint->setText(text);
    m_hint->setVisible(!text.isEmpty());
    QStringList described;
    if (m_field.profileKey) {
        described.append(u"Fills from My Profile."_s);
    }
    described.append(text);
    m_controls.constFirst()->setAccessibleDescription(described.join(u' ').trimmed());
}

void FieldEditor::setValue(const QString &text)
{
    if (value() != text) {
        m_showing = true;
        showValue(text);
        m_showing = false;
    }
}

void FieldEditor::controlChanged()
{
    if (!m_showing) {
        Q_EMIT edited(m_field.key, value());
    }
}
