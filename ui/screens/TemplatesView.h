#pragma once

#include <QWidget>

class AppModel;
class QLabel;
class QListWidget;
class QPushButton;
struct QSTemplate;

/// The templates by category on the left; what the selected one is and needs on the right.
class TemplatesView final : public QWidget
{
    Q_OBJECT

public:
    explicit TemplatesView(AppModel &model, QWidget *parent = nullptr);

protected:
    /// Hands the keyboard on to the list; a focus proxy would keep Tab within the screen.
    void focusInEvent(QFocusEvent *event) override;

private:
    void createList();
    [[nodiscard]] QWidget *createDetail();
    void showSelection();
    void showTemplate(const QSTemplate &chosen);
    void start();

    AppModel &m_model;
    QListWidget *m_list;
    QLabel *m_title;
    QLabel *m_summary;
    QLabel *m_version;
    QLabel *m_info;
    QLabel *m_fields;
    QPushButton *m_start;
};
