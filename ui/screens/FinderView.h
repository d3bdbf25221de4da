#pragma once

#include <QStandardItemModel>
#include <QWidget>

class AppModel;
class EntryList;
class FinderPage;
class QScrollArea;

/// What do you need?: everyday tasks on the left; what the chosen one takes in the chosen state on
/// the right. It is read from the model when it is shown, and again after each change while it is.
class FinderView final : public QWidget
{
    Q_OBJECT

public:
    explicit FinderView(AppModel &model, QWidget *parent = nullptr);

protected:
    /// Hands the keyboard on to the list; a focus proxy would keep Tab within the screen.
    void focusInEvent(QFocusEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void createList();
    void createArea();
    void connectModel();
    void reload();
    void showTask();
    /// Shows another page on the right, from its top.
    void setPage(QWidget *page);

    AppModel &m_model;
    QStandardItemModel m_tasks;
    EntryList *m_list;
    QScrollArea *m_area;
    FinderPage *m_page = nullptr; ///< null while no task is chosen
};
