#pragma once

#include <QList>
#include <QVBoxLayout>
#include <QWidget>

#include <algorithm>

class AppModel;

/// Rows of a column, one for each value that is shown: made as they are needed, above the column's
/// last item, and used again for the next values. Tab goes from one row's button to the next one's.
template <typename Row>
class RowPool final
{
public:
    /// The model outlives the pool, and so does the column, which is a widget's own.
    RowPool(AppModel &model, QVBoxLayout *column) : m_model(model), m_column(column) {}

    /// Shows the first so many values, or all that there are.
    template <typename Value>
    void show(const QList<Value> &values, qsizetype most)
    {
        const qsizetype count = std::min(most, values.size());
        for (qsizetype i = 0; i < count; ++i) {
            if (i == m_rows.size()) {
                add();
            }
            m_rows.at(i)->display(values.at(i));
            m_rows.at(i)->show();
        }
        for (qsizetype i = count; i < m_rows.size(); ++i) {
            m_rows.at(i)->hide();
        }
    }

    /// The first row; null while there is none.
    [[nodiscard]] Row *first() const { return m_rows.value(0); }

private:
    void add()
    {
        auto *row = new Row(m_model, m_column->parentWidget());
        m_column->insertWidget(m_column->count() - 1, row);
        if (!m_rows.isEmpty()) {
            QWidget::setTabOrder(m_rows.constLast()->button(), row->button());
        }
        m_rows.append(row);
    }

    AppModel &m_model;
    QVBoxLayout *m_column;
    QList<Row *> m_rows;
};
