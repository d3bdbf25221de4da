#pragma once

#include "QSEntry.h"
#include "QSStatus.h"
#include "RowsModel.h"

#include <QAbstractTableModel>
#include <QDateTime>

#include <optional>

/// An official link. One that is not an entry's own (a fee page, a law, those who help) is an entry
/// without an id: a page whose title is the link's label.
struct LastCheckedRow
{
    QSEntry entry;
    QSStatus::S status;
    QSStatus::Checked checked;
    std::optional<QDateTime> downloaded; ///< absent without a saved copy
    QString note = {};                   ///< why the last check failed; may be empty

    bool operator==(const LastCheckedRow &) const = default;
    [[nodiscard]] const QString &key() const { return entry.id.isEmpty() ? entry.url : entry.id; }
};

/// The official links as a table: when each was last checked, by whom, whether a copy is saved, and
/// how it stands.
class LastCheckedModel final : public RowsModel<QAbstractTableModel, LastCheckedRow>
{
    Q_OBJECT

public:
    using Row = LastCheckedRow;
    enum Role {
        sortRole = Qt::UserRole, ///< what a column is sorted by; of statuses the worst is first
        levelRole,               ///< of the status
        wholeRole                ///< the row in one sentence
    };

    using RowsModel::RowsModel;

    /// Null for a row that is not there.
    [[nodiscard]] const QSEntry *entryAt(int row) const;
    /// How many links need attention.
    [[nodiscard]] int attentionCount() const;

    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;
};
