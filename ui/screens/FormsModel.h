#pragma once

#include "QSEntry.h"
#include "QSStatus.h"

#include <QAbstractListModel>
#include <QList>

#include <optional>

/// Entries of the directory as a list under headings, each with the status of its link. It shows
/// what setRows() last gave it.
class FormsModel final : public QAbstractListModel
{
    Q_OBJECT

public:
    /// An entry, or a heading where there is none.
    struct Row
    {
        QString heading;
        std::optional<QSEntry> entry;
        QSStatus::S status;

        bool operator==(const Row &) const = default;
        [[nodiscard]] QString key() const { return entry ? entry->id : heading; }
    };
    /// Texts and icons besides the title (display) and the icon of the kind (decoration). A
    /// heading has none of them.
    enum Role {
        idRole = Qt::UserRole, ///< the entry's id
        aboutRole,             ///< agency and kind
        statusRole,            ///< the status's sentence
        statusIconRole,
        levelRole ///< of the status
    };

    using QAbstractListModel::QAbstractListModel;

    /// Rows of the same entries change in place: what is selected and where the list is scrolled to
    /// stay. Any others replace everything.
    void setRows(const QList<Row> &rows);
    /// Row of an entry; -1 when it is not listed.
    [[nodiscard]] int rowOf(const std::optional<QString> &id) const;
    /// Null for a heading and for a row that is not there.
    [[nodiscard]] const QSEntry *entryAt(int row) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    QList<Row> m_rows;
};
