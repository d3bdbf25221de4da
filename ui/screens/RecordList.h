#pragma once

#include <QWidget>

#include <functional>

class QAbstractItemModel;
class QLabel;
class QMenu;
class QPushButton;
class QTableView;

/// A list of saved records under a heading, with the buttons for the selected one: Open, Export,
/// Print and Delete. Enter and a double click open, the delete key deletes. Where the list is
/// empty, a sentence stands in its place. Rows can be dragged where the model has something to
/// give.
class RecordList final : public QWidget
{
    Q_OBJECT

public:
    /// The model has records of RecordsModel's kind and outlives the list.
    RecordList(const QString &heading, QAbstractItemModel &model, QWidget *parent);

    [[nodiscard]] QPushButton *exportButton() const { return m_export; }
    [[nodiscard]] QTableView *table() const { return m_table; }
    [[nodiscard]] bool isEmpty() const;
    /// Lets the model be filled anew. The selection goes with its record, to the next one where
    /// that is gone.
    void refill(const std::function<void()> &fill, const QString &emptyText);
    /// The selected row; -1 where none is.
    [[nodiscard]] int selectedRow() const;

Q_SIGNALS:
    void openWanted();
    void printWanted();
    void deleteWanted();

private:
    void createTable();
    [[nodiscard]] QWidget *createButtons();
    void connectActions();
    void enableButtons();
    void fillMenu(QMenu *menu);

    QAbstractItemModel &m_model;
    QTableView *m_table;
    QLabel *m_empty;
    QPushButton *m_open = nullptr;
    QPushButton *m_export = nullptr;
    QPushButton *m_print = nullptr;
    QPushButton *m_delete = nullptr;
};
