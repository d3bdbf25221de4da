#pragma once

#include "QSEntry.h"
#include "QSStatus.h"

#include <QAbstractTableModel>
#include <QDateTime>
#include <QList>

#include <optional>

/// The directory's entries as a table: when each was last checked, by whom, whether a copy is
/// saved, and how its link stands. It shows what setRows() last gave it.
class LastCheckedModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    struct Row
    {
        QSEntry entry;
        QSStatus::S status;
        QSStatus::Checked checked;
        std::optional<QDateTime> downloaded; ///< absent without a saved copy

        bool operator==(const Row &) const = default;
    };
    enum Role {
        sortRole = Qt::UserRole, ///< what a column is sorted by; of statuses the worst is first
        levelRole,               ///< of the status
        wholeRole                ///< the row in one sentence
    };

    using QAbstractTableModel::QAbstractTableModel;

    /// Rows of the same entries change in place: what is selected and where the table is scrolled
    /// to stay.
    void setRows(const QList<Row> &rows);
    /// Null for a row that is not there.
    [[nodiscard]] const QSEntry *entryAt(int row) const;
    /// How many entries need attention.
    [[nodiscard]] int attentionCount() const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    QList<Row> m_rows;
};
