#pragma once

#include "FormFault.h"
#include "FormField.h"

#include <QObject>
#include <QWidget>

#include <optional>

/// The control of one field of a form, laid over the page's drawing. While it is not being edited
/// it shows nothing: what is seen there is the page as it will print. make() builds the one for the
/// field's kind, which lives as long as its widget.
class FieldControl : public QObject
{
    Q_OBJECT

public:
    /// The control of a field, laid on its page.
    [[nodiscard]] static FieldControl *make(const FormField &field, QWidget *page);

    [[nodiscard]] const FormField &field() const { return m_field; }
    [[nodiscard]] QWidget *widget() const { return m_widget; }
    /// Shows a value without reporting it as edited. What is shown stays where it is the same, so
    /// that the text cursor does too.
    virtual void setValue(const FormValue &value) { Q_UNUSED(value) }
    /// What of its answer would not be on paper; the page marks it once the control is left.
    void setFault(const std::optional<FormFault> &fault);
    [[nodiscard]] const std::optional<FormFault> &fault() const { return m_fault; }
    /// Stands the control on its field, at so many pixels for a point.
    void place(double scale);
    /// Its value is not in the page's drawing yet, so that the control goes on to show it.
    void setPending(bool pending);
    /// Takes what an input method still composes into the value.
    void commitInput();
    /// True while the keyboard is in it.
    [[nodiscard]] bool isOpen() const { return m_open; }
    /// True when its text covers the page's drawing, on a ground that the page fills for it.
    [[nodiscard]] bool coversPage() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// The user changed the value.
    void edited(const FormValue &value);
    /// The user typed more than fits. The control shows what fits; the whole text, with the cursor
    /// at that place, is here instead of in edited().
    void exceeded(const QString &text, int cursor);
    /// Backspace was pressed where there is nothing to delete.
    void steppedBack();
    /// The keyboard came to the control, or left it.
    void openChanged();

protected:
    FieldControl(const FormField &field, QWidget *widget);

    /// Another widget of the control, whose events are treated as the control's own.
    void addPart(QWidget *part);
    /// Fits fonts to the scale.
    virtual void fit(double scale) { Q_UNUSED(scale) }
    /// True when the control has a use for the wheel, or for a key that scrolls pages.
    [[nodiscard]] virtual bool scrolls() const { return false; }
    /// The typeface that a field is typed in, in points on the paper.
    void setFontSize(double points, double scale);

private:
    [[nodiscard]] bool filterKey(QEvent *event) const;
    [[nodiscard]] bool filterMenu(QObject *watched, QEvent *event) const;
    void setOpen(bool open);
    void showParts();

    FormField m_field;
    std::optional<FormFault> m_fault;
    QWidget *m_widget;
    QList<QWidget *> m_parts; ///< whose painting is held back
    QString m_composed;       ///< by an input method, and not part of the value yet
    bool m_open = false;
    bool m_pending = false;
};
