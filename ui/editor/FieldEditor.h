#pragma once

#include "QSTemplate.h"

#include <QWidget>

class QHBoxLayout;
class QLabel;

/// One field of a template: its label, the control that fits its kind, and a line below that says
/// how a typed text will print where that is not plain to see. make() builds the right one.
class FieldEditor : public QWidget
{
    Q_OBJECT

public:
    /// The editor for a field of any kind; the parent owns it.
    [[nodiscard]] static FieldEditor *make(const QSField &field, QWidget *parent);

    [[nodiscard]] const QSField &field() const { return m_field; }
    [[nodiscard]] virtual QString value() const = 0;
    /// What Tab stops at, in its order.
    [[nodiscard]] const QList<QWidget *> &controls() const { return m_controls; }
    /// Shows a value without reporting it as edited. What is shown stays where the value is the
    /// same, so that the text cursor does too.
    void setValue(const QString &value);

Q_SIGNALS:
    /// The user changed the value.
    void edited(const QString &key, const QString &value);

protected:
    FieldEditor(const QSField &field, QWidget *parent);

    /// Places the control under the label and names it for screen readers.
    void setControl(QWidget *control);
    /// Adds a second widget beside the control.
    void addBeside(QWidget *widget);
    /// Shows a line below the control; an empty one takes no room.
    void setHint(const QString &text);
    virtual void showValue(const QString &value) = 0;
    /// To be called by the control's own change signal.
    void controlChanged();

private:
    [[nodiscard]] QWidget *createLabelRow();

    QSField m_field;
    QLabel *m_label;
    QLabel *m_hint;
    QHBoxLayout *m_controlRow;
    QList<QWidget *> m_controls;
    bool m_showing = false; ///< setValue() is at work
};
