#pragma once

#include "QSTemplate.h"

#include <QList>
#include <QScrollArea>

class FieldEditor;
class QLabel;

/// The column of a template's fields, in file order, and the line that lists those still empty.
class FieldsPane final : public QScrollArea
{
    Q_OBJECT

public:
    explicit FieldsPane(QWidget *parent = nullptr);

    /// Builds the fields of a template; the fields of the one before go.
    void setTemplate(const QSTemplate &source);
    /// Shows a document's answers.
    void setValues(const QSValues &values);
    /// Lists the fields without an answer.
    void showEmptyFields(const QSValues &values);
    /// Puts the keyboard into the first field without an answer, or into the first field.
    void focusFirst(const QSValues &values);

Q_SIGNALS:
    void edited(const QString &key, const QString &value);

private:
    QList<FieldEditor *> m_editors;
    QLabel *m_stillEmpty = nullptr;
};
