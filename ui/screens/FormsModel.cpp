#include "FormsModel.h"

#include "EntryLook.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
QString about(const QSEntry &entry)
{
    return entry.agency + u" \u00B7 "_s + EntryLook::kind(entry);
}

/// A role of a row that shows an entry.
QVariant entryData(const QSEntry &entry, const QSStatus::S &status, int role)
{
    switch (role) {
    case Qt::DisplayRole:
        return entry.displayTitle();
    case Qt::DecorationRole:
        return EntryLook::kindIcon(entry);
    case Qt::AccessibleTextRole:
        return QStringList{entry.displayTitle(), about(entry), status.text}.join(u", "_s);
    case Qt::ToolTipRole:
        return status.text;
    case FormsModel::idRole:
        return entry.id;
    case FormsModel::aboutRole:
        return about(entry);
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

void FormsModel::setRows(const QList<Row> &rows)
{
    if (!std::ranges::equal(rows, m_rows, {}, &Row::key, &Row::key)) {
        beginResetModel();
        m_rows = rows;
        endResetModel();
        return;
    }
    for (int row = 0; row < rows.size(); ++row) {
        if (m_rows.at(row) != rows.at(row)) {
            m_rows[row] = rows.at(row);
            Q_EMIT dataChanged(index(row), index(row));
        }
    }
}

int FormsModel::rowOf(const std::optional<QString> &id) const
{
    const auto found = std::ranges::find_if(
        m_rows, [&id](const Row &row) { return id && row.entry && row.entry->id == *id; });
    return found == m_rows.end() ? -1 : static_cast<int>(found - m_rows.begin());
}

const QSEntry *FormsModel::entryAt(int row) const
{
    return row >= 0 && row < m_rows.size() && m_rows.at(row).entry ? &*m_rows.at(row).entry
                                                                   : nullptr;
}

int FormsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant FormsModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const Row &row = m_rows.at(index.row());
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
