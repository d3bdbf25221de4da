#pragma once

#include "VxText.h"

#include <QAbstractTableModel>
#include <QList>
#include <QString>

#include <optional>

/// Role of a record's id in the store.
inline constexpr int recordIDRole = Qt::UserRole;

/// Records of the store as a table, a row each, in the columns that a derived model names. Cells
/// are worded when they are drawn, so that a long list costs no more than what is seen of it.
template <typename Record>
class RecordsModel : public QAbstractTableModel
{
public:
    struct Column
    {
        QStringView title;
        QString (*text)(const Record &);
    };

    void setRecords(const QList<Record> &records)
    {
        beginResetModel();
        m_records = records;
        endResetModel();
    }
    /// Absent for a row that is not there.
    [[nodiscard]] std::optional<Record> recordAt(int row) const
    {
        return row >= 0 && row < m_records.size() ? std::optional(m_records.at(row)) : std::nullopt;
    }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_records.size());
    }
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
    }
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override
    {
        if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
            return {};
        }
        const Record &record = m_records.at(index.row());
        switch (role) {
        case Qt::DisplayRole:
            return m_columns.at(index.column()).text(record);
        case Qt::ToolTipRole:
            return VxText::asItStands(m_columns.at(index.column()).text(record));
        case recordIDRole:
            return std::optional<qint64>(record.id).value_or(0);
        default:
            return {};
        }
    }
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override
    {
        if (role == Qt::TextAlignmentRole) {
            return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
        }
        if (role != Qt::DisplayRole || orientation != Qt::Horizontal) {
            return {};
        }
        return m_columns.at(section).title.toString();
    }

protected:
    explicit RecordsModel(const QList<Column> &columns) : m_columns(columns) {}

private:
    QList<Column> m_columns;
    QList<Record> m_records;
};
