#pragma once

#include "FieldControl.h"

class QAbstractButton;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;

// The controls behind FieldControl::make().

/// One line of text; in a comb its letters stand in the cells.
class LineControl final : public FieldControl
{
    Q_OBJECT

public:
    LineControl(const FormField &field, QWidget *page);
    void setValue(const FormValue &value) override;

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void fit(double scale) override;

private:
    void textEdited(const QString &text);
    void fitComb(double scale);

    QLineEdit *m_line;
    std::optional<std::pair<QString, int>> m_whole; ///< what was cut just now, and its cursor
    double m_scale = 1;
};

/// Several lines of text.
class AreaControl final : public FieldControl
{
    Q_OBJECT

public:
    AreaControl(const FormField &field, QWidget *page);
    void setValue(const FormValue &value) override;

protected:
    void fit(double scale) override;
    [[nodiscard]] bool scrolls() const override;

private:
    [[nodiscard]] QString text() const;
    void textChanged();
    void cutToLimit();

    QPlainTextEdit *m_area;
    QString m_shown; ///< as set or reported last
};

/// A check box or a radio button; its mark is the page's.
class MarkControl final : public FieldControl
{
    Q_OBJECT

public:
    MarkControl(const FormField &field, QWidget *page);
    void setValue(const FormValue &value) override;

private:
    QAbstractButton *m_button;
};

/// A choice that opens its list; it may take a text of its own.
class ComboControl final : public FieldControl
{
    Q_OBJECT

public:
    ComboControl(const FormField &field, QWidget *page);
    void setValue(const FormValue &value) override;

protected:
    void fit(double scale) override;

private:
    QComboBox *m_combo;
};

/// A list, of which one or several can be chosen.
class ListControl final : public FieldControl
{
    Q_OBJECT

public:
    ListControl(const FormField &field, QWidget *page);
    void setValue(const FormValue &value) override;

protected:
    void fit(double scale) override;
    [[nodiscard]] bool scrolls() const override;

private:
    [[nodiscard]] QList<int> chosen() const;

    QListWidget *m_list;
};

/// A push button or a place for a signature: nothing that can be filled in here, only its name.
class BlankControl final : public FieldControl
{
    Q_OBJECT

public:
    BlankControl(const FormField &field, QWidget *page);
};
