#include "DocumentsModel.h"

#include "QSDate.h"
#include "QSTemplates.h"

#include <algorithm>
#include <array>

namespace {
using Cell = QString (*)(const QSDocument &);

struct Column
{
    QStringView title;
    Cell text;
};

QString templateTitle(const QSDocument &document)
{
    const QSTemplate *source = QSTemplates::templateById(document.templateID);
    return source ? source->title : document.templateID;
}

constexpr std::array columns = {
    Column{u"Name", [](const QSDocument &document) { return document.title; }},
    Column{u"Template", templateTitle},
    Column{u"Last changed",
           [](const QSDocument &document) { return QSDate::stamp(document.modified); }},
};
} // namespace

void DocumentsModel::setDocuments(const QList<QSDocument> &documents)
{
    beginResetModel();
    m_documents = documents;
    endResetModel();
}

const QSDocument *DocumentsModel::documentAt(int row) const
{
    return row >= 0 && row < m_documents.size() ? &m_documents.at(row) : nullptr;
}

int DocumentsModel::rowOf(std::optional<qint64> id) const
{
    const auto found = std::ranges::find(m_documents, id, &QSDocument::id);
    return found == m_documents.end() ? -1 : static_cast<int>(found - m_documents.begin());
}

int DocumentsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_documents.size());
}

int DocumentsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(columns.size());
}

QVariant DocumentsModel::data(const QModelIndex &index, int role) const
{
    if ((role != Qt::DisplayRole && role != Qt::ToolTipRole) ||
        !checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    return columns.at(static_cast<std::size_t>(index.column())).text(m_documents.at(index.row()));
}

QVariant DocumentsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::TextAlignmentRole) {
        return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
    }
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal) {
        return {};
    }
    return columns.at(static_cast<std::size_t>(section)).title.toString();
}
