#pragma once

#include "FormsModel.h"

#include <QWidget>

class AppModel;
class EntryDetail;
class EntryList;
class QLabel;
class QLayout;
class VxComboBox;

/// Official Forms: the chosen state's and the federal forms by category on the left, one category
/// or all of them, and the selected one on the right. The list is read from the model when it is
/// shown, and again after each change while it is.
class FormsView final : public QWidget
{
    Q_OBJECT

public:
    explicit FormsView(AppModel &model, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    /// The list takes the keyboard. It is no focus proxy: Tab would go past the category to it.
    void focusInEvent(QFocusEvent *event) override;

private:
    [[nodiscard]] QLayout *createChoice();
    void createList();
    void connectList();
    void reload();
    void reloadCategories();
    [[nodiscard]] QList<FormsModel::Row> rows();
    void showSelection();

    AppModel &m_model;
    FormsModel m_forms;
    QList<QSCategory> m_offered; ///< below "All categories"
    VxComboBox *m_category;
    EntryList *m_list;
    QLabel *m_empty;
    EntryDetail *m_detail;
};
