#pragma once

#include "QSStore.h"

#include <QAbstractTableModel>

/// The saved documents as a table: name, template, last change. It shows what setDocuments() last
/// gave it.
class DocumentsModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    void setDocuments(const QList<QSDocument> &documents);
    /// Null for a row that is not there.
    [[nodiscard]] const QSDocument *documentAt(int row) const;
    /// Row of the document with that id; -1 when there is none.
    [[nodiscard]] int rowOf(std::optional<qint64> id) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role) const override;

private:
    QList<QSDocument> m_documents;
};
