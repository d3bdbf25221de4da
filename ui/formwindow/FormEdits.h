#pragma once

#include "FormField.h"

#include <QElapsedTimer>
#include <QObject>
#include <QUndoStack>

class AppModel;

/// What was changed in the open form, to be undone and done again. Every change goes to the model
/// at once; what is typed into one field without a pause is undone in one step. Main thread.
class FormEdits final : public QObject
{
    Q_OBJECT

public:
    /// Values of some fields, by id.
    using Values = QList<std::pair<int, FormValue>>;

    /// The model has to outlive it.
    explicit FormEdits(AppModel &model, QObject *parent = nullptr);

    /// Sets a field's value.
    void edit(int field, const FormValue &value) { editTogether({{field, value}}); }
    /// Sets the values of several fields, which are undone together and lead back to the first.
    void editTogether(const Values &values);
    /// What is typed next is a step of its own.
    void endStep() { ++m_step; }
    /// Forgets all: another form is open.
    void clear() { m_stack.clear(); }
    [[nodiscard]] QUndoStack &stack() { return m_stack; }

Q_SIGNALS:
    /// An undone change was this field's.
    void turnedTo(int field);

private:
    class Change;

    /// The fields and those that follow them, with what they hold.
    [[nodiscard]] Values groups(const Values &values) const;
    void restore(int field, const Values &values);

    AppModel &m_model;
    QUndoStack m_stack;
    QElapsedTimer m_sinceEdit;
    int m_step = 0;
};
