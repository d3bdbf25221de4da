#pragma once

#include <QWidget>

class AppModel;
class FieldsPane;
class PaperPreview;
class QLabel;
class QLineEdit;

/// The editor of one document: its name and commands above, its fields on the left, and on the
/// right the paper as it prints, which follows every keystroke.
class DocumentEditor final : public QWidget
{
    Q_OBJECT

public:
    explicit DocumentEditor(AppModel &model, QWidget *parent = nullptr);

    /// Puts the keyboard where the user goes on: into the first field still empty.
    void focusFirstField();

private:
    [[nodiscard]] QWidget *createCommands();
    void connectModel();
    void openDocument();
    void showAnswers();
    void reload();
    void valueEdited(const QString &key, const QString &value);
    void showState();

    AppModel &m_model;
    QLineEdit *m_name;
    QLabel *m_state;
    QLabel *m_stillEmpty;
    QLabel *m_unprintable;
    FieldsPane *m_fields;
    PaperPreview *m_preview;
};
