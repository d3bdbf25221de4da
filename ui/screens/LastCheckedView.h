#pragma once

#include "LastCheckedModel.h"

#include <QHash>
#include <QSortFilterProxyModel>
#include <QWidget>

class AppModel;
class QLabel;
class QLayout;
class QProgressBar;
class QPushButton;
class QTableView;
class VxComboBox;
class VxIconLabel;

/// Forms Last Checked: how every official link stands, and the check of all of them. The table is
/// filled when it is shown, and again after each change while it is.
class LastCheckedView final : public QWidget
{
    Q_OBJECT

public:
    explicit LastCheckedView(AppModel &model, QWidget *parent = nullptr);

protected:
    void showEvent(QShowEvent *event) override;
    /// The table takes the keyboard. It is no focus proxy: Tab would go past what is above it.
    void focusInEvent(QFocusEvent *event) override;

private:
    /// What is known about a saved copy, and when its record was written.
    struct Known
    {
        QDateTime written;
        std::optional<QDateTime> downloaded;
    };

    [[nodiscard]] QLayout *createSummary();
    [[nodiscard]] QLayout *createCheck();
    [[nodiscard]] QLayout *createChoices();
    void createTable();
    [[nodiscard]] QLayout *createActions();
    void connectActions();
    void connectTable();
    void connectModel();
    void reload();
    void showCount();
    void showChecking();
    /// The check and its end take turns, and hand the keyboard to each other.
    void enableCheck();
    void showCurrent();
    /// Null while no row is current.
    [[nodiscard]] const QSEntry *current() const;
    /// When the saved copy was downloaded; reads only records written since it was last asked.
    [[nodiscard]] std::optional<QDateTime> downloaded(const QSEntry &entry);

    AppModel &m_model;
    LastCheckedModel m_rows;
    QSortFilterProxyModel m_shown;
    QHash<QString, Known> m_copies; ///< by entry id

    QLabel *m_summary;
    VxIconLabel *m_countIcon;
    QLabel *m_count;
    QPushButton *m_check;
    QWidget *m_progress;
    QProgressBar *m_bar;
    QLabel *m_done;
    QPushButton *m_stop;
    VxComboBox *m_filter;
    VxComboBox *m_sort;
    QTableView *m_table;
    QLabel *m_current;
    QPushButton *m_show;
    QPushButton *m_page;
    QPushButton *m_main;
};
