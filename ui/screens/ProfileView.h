#pragma once

#include <QMap>
#include <QWidget>

class AppModel;
class QLabel;
class QLineEdit;

/// My Profile: the answers about themselves that fill new documents.
class ProfileView final : public QWidget
{
    Q_OBJECT

public:
    explicit ProfileView(AppModel &model, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    [[nodiscard]] QWidget *createFields();
    [[nodiscard]] QWidget *createSaveRow();

    AppModel &m_model;
    QMap<QString, QLineEdit *> m_lines;
    QLabel *m_state = nullptr;
};
