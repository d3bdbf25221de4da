#pragma once

#include "EntryList.h"
#include "QSEntry.h"
#include "QSStatus.h"
#include "RowsModel.h"

#include <QAbstractListModel>

#include <optional>

/// An entry, or a heading where there is none.
struct FormsRow
{
    QString heading;
    std::optional<QSEntry> entry;
    QSStatus::S status;

    bool operator==(const FormsRow &) const = default;
    [[nodiscard]] QString key() const { return entry ? entry->id : heading; }
};

/// Entries of the directory as a list under headings, each with the status of its link, in the
/// roles of an EntryList. A heading has its title alone.
class FormsModel final : public RowsModel<QAbstractListModel, FormsRow>
{
    Q_OBJECT

public:
    using Row = FormsRow;
    using enum EntryList::Role;

    using RowsModel::RowsModel;

    /// Row of an entry; -1 when it is not listed.
    [[nodiscard]] int rowOf(const std::optional<QString> &id) const;
    /// Null for a heading and for a row that is not there.
    [[nodiscard]] const QSEntry *entryAt(int row) const;

    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
};
