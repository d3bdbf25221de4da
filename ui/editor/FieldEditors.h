#pragma once

#include "FieldEditor.h"

class GrowingTextEdit;
class QComboBox;
class QLineEdit;
class VxCalendarButton;

/// Text and number: one line, printed as typed.
class LineFieldEditor : public FieldEditor
{
    Q_OBJECT

public:
    LineFieldEditor(const QSField &field, QWidget *parent);
    [[nodiscard]] QString value() const override;

protected:
    void showValue(const QString &value) override;
    [[nodiscard]] QLineEdit *line() const { return m_line; }

private:
    QLineEdit *m_line;
};

/// An amount of money; says how it prints.
class MoneyFieldEditor final : public LineFieldEditor
{
    Q_OBJECT

public:
    MoneyFieldEditor(const QSField &field, QWidget *parent);

private:
    void check();
};

/// A date, typed as YYYY-MM-DD or picked from a calendar; says how it prints.
class DateFieldEditor final : public LineFieldEditor
{
    Q_OBJECT

public:
    DateFieldEditor(const QSField &field, QWidget *parent);

private:
    void check();

    VxCalendarButton *m_calendar;
};

/// Several lines, printed as typed. Tab leaves it, as it leaves every other field.
class MultilineFieldEditor final : public FieldEditor
{
    Q_OBJECT

public:
    MultilineFieldEditor(const QSField &field, QWidget *parent);
    [[nodiscard]] QString value() const override;

protected:
    void showValue(const QString &value) override;

private:
    GrowingTextEdit *m_text;
};

/// A state from the list, kept as its two-letter code. A text that names no state is kept and
/// shown as one more choice.
class StateFieldEditor final : public FieldEditor
{
    Q_OBJECT

public:
    StateFieldEditor(const QSField &field, QWidget *parent);
    [[nodiscard]] QString value() const override;

protected:
    void showValue(const QString &value) override;

private:
    QComboBox *m_box;
};
