#pragma once

#include <QAbstractItemModel>
#include <QList>

#include <algorithm>

/// The base of a model that shows the rows it was last given. A row is a value with a key() that
/// says what it is about.
template <typename Base, typename Row>
class RowsModel : public Base
{
public:
    using Base::Base;

    /// Rows about the same things in the same order change in place: what is selected and where
    /// the view is scrolled to stay. Any others replace everything.
    void setRows(const QList<Row> &rows)
    {
        if (!std::ranges::equal(rows, m_rows, {}, &Row::key, &Row::key)) {
            this->beginResetModel();
            m_rows = rows;
            this->endResetModel();
            return;
        }
        const QAbstractItemModel &model = *this; // Qt's lists hide how many columns they have
        const int lastColumn = model.columnCount() - 1;
        for (int row = 0; row < rows.size(); ++row) {
            if (m_rows.at(row) != rows.at(row)) {
                m_rows[row] = rows.at(row);
                Q_EMIT this->dataChanged(this->index(row, 0), this->index(row, lastColumn));
            }
        }
    }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
    }

protected:
    [[nodiscard]] const QList<Row> &rows() const { return m_rows; }

private:
    QList<Row> m_rows;
};
