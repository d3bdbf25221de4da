#pragma once

#include "DocumentsModel.h"

#include <QWidget>

class AppModel;
class QLabel;
class QPushButton;
class QTableView;

/// My Documents: the saved documents and what can be done with the selected one. The list is read
/// from the store when it is shown, and again after each change while it is.
class DocumentsView final : public QWidget
{
    Q_OBJECT

public:
    explicit DocumentsView(AppModel &model, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void createTable();
    [[nodiscard]] QWidget *createButtons();
    void connectActions();
    void reload();
    void enableButtons();
    /// The selected document; null when none is.
    [[nodiscard]] const QSDocument *selected() const;
    void openSelected();
    void deleteSelected();

    AppModel &m_model;
    DocumentsModel m_documents;
    QTableView *m_table;
    QLabel *m_empty;
    QPushButton *m_open = nullptr;
    QPushButton *m_export = nullptr;
    QPushButton *m_print = nullptr;
    QPushButton *m_delete = nullptr;
};
