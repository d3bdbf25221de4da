#pragma once

#include "QSTemplate.h"

#include <QList>
#include <QScrollArea>

class FieldEditor;

/// The column of a template's fields, in file order.
class FieldsPane final : public QScrollArea
{
    Q_OBJECT

public:
    explicit FieldsPane(QWidget *parent = nullptr);

    /// Builds the fields of a template; the fields of the one before go.
    void setTemplate(const QSTemplate &source);
    /// Shows a document's answers.
    void setValues(const QSValues &values);
    /// Labels of the fields without an answer.
    [[nodiscard]] QStringList emptyFields() const;
    /// Puts the fields, in their order, between two widgets on Tab's way.
    void chainTabOrder(QWidget *before, QWidget *after);
    /// Puts the keyboard into the first field without an answer, or into the first field.
    void focusFirst(const QSValues &values);

Q_SIGNALS:
    void edited(const QString &key, const QString &value);

private:
    QList<FieldEditor *> m_editors;
};
