#include "FormsModel.h"

#include "EntryLook.h"
#include "VxText.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
/// A role of a row that shows an entry.
QVariant entryData(const QSEntry &entry, const QSStatus::S &status, int role)
{
    switch (role) {
    case Qt::DisplayRole:
        return entry.displayTitle();
    case Qt::DecorationRole:
        return EntryLook::kindIcon(entry);
    case Qt::AccessibleTextRole:
        return QStringList{entry.displayTitle(), EntryLook::about(entry), status.text}.join(
            u", "_s);
    case Qt::ToolTipRole:
        return VxText::asItStands(status.text);
    case FormsModel::idRole:
        return entry.id;
    case FormsModel::aboutRole:
        return EntryLook::about(entry);
    case FormsModel::statusRole:
        return status.text;
    case FormsModel::statusIconRole:
        return EntryLook::statusIcon(status);
    case FormsModel::levelRole:
        return status.level;
    default:
        return {};
    }
}
} // namespace

int FormsModel::rowOf(const std::optional<QString> &id) const
{
    const auto found = std::ranges::find_if(
        rows(), [&id](const Row &row) { return id && row.entry && row.entry->id == *id; });
    return found == rows().end() ? -1 : static_cast<int>(found - rows().begin());
}

const QSEntry *FormsModel::entryAt(int row) const
{
    return row >= 0 && row < rows().size() && rows().at(row).entry ? &*rows().at(row).entry
                                                                   : nullptr;
}

QVariant FormsModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const Row &row = rows().at(index.row());
    if (row.entry) {
        return entryData(*row.entry, row.status, role);
    }
    return role == Qt::DisplayRole ? QVariant(row.heading) : QVariant();
}

Qt::ItemFlags FormsModel::flags(const QModelIndex &index) const
{
    return entryAt(index.row()) ? QAbstractListModel::flags(index) | Qt::ItemNeverHasChildren
                                : Qt::NoItemFlags;
}
