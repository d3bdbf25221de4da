#include "LastCheckedModel.h"

#include "EntryLook.h"
#include "QSDate.h"
#include "QSDirectory.h"
#include "VxText.h"

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {
using Row = LastCheckedModel::Row;

constexpr std::array<QStringView, 3> sources = {u"Listed & checked", u"Link checked online",
                                                u"Checked by hand"};

QString place(const Row &row)
{
    const QSDirectory &directory = QSDirectory::shared();
    const QSJurisdiction *found = directory.jurisdiction(row.entry.j);
    return !found || found == directory.federal() ? u"Federal"_s : found->name;
}

QString form(const Row &row)
{
    return row.entry.id.isEmpty() ? row.entry.title // which names the place
                                  : u"%1 (%2)"_s.arg(row.entry.displayTitle(), place(row));
}

QString checked(const Row &row)
{
    return u"%1 %2"_s.arg(sources.at(static_cast<std::size_t>(row.checked.source)),
                          QSDate::longFormat(row.checked.date));
}

QString copy(const Row &row)
{
    if (row.entry.opensInBrowser()) {
        return u"Opens in the browser"_s;
    }
    return row.downloaded ? u"Saved copy downloaded "_s +
                                QSDate::longFormat(row.downloaded->toLocalTime().date())
                          : u"Not downloaded yet"_s;
}

QString status(const Row &row)
{
    return row.status.text;
}

struct Column
{
    QStringView title;
    QString (*text)(const Row &);
    QVariant (*key)(const Row &);
};

constexpr std::array columns = {
    Column{u"Form or page", form, [](const Row &row) { return QVariant(form(row)); }},
    Column{u"Last checked", checked, [](const Row &row) { return QVariant(row.checked.date); }},
    Column{u"Saved copy", copy,
           [](const Row &row) { return row.downloaded ? QVariant(*row.downloaded) : QVariant(); }},
    Column{u"Status", status, [](const Row &row) { return QVariant(-row.status.level); }}};
constexpr int formColumn = 0;
constexpr int statusColumn = 3;

QString withNote(const QString &text, const Row &row)
{
    return row.note.isEmpty() ? text : u"%1 Reason: %2"_s.arg(text, row.note);
}

QString whole(const Row &row)
{
    QStringList texts;
    for (const Column &column : columns) {
        texts.append(column.text(row));
    }
    return withNote(texts.join(u", "_s), row);
}
} // namespace

const QSEntry *LastCheckedModel::entryAt(int row) const
{
    return row >= 0 && row < rows().size() ? &rows().at(row).entry : nullptr;
}

int LastCheckedModel::attentionCount() const
{
    return static_cast<int>(
        std::ranges::count_if(rows(), [](const Row &row) { return row.status.level > 0; }));
}

int LastCheckedModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(columns.size());
}

QVariant LastCheckedModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const Row &row = rows().at(index.row());
    const Column &column = columns.at(static_cast<std::size_t>(index.column()));
    switch (role) {
    case Qt::DisplayRole:
        return column.text(row);
    case Qt::ToolTipRole:
        return VxText::asItStands(withNote(column.text(row), row));
    case Qt::AccessibleTextRole: // the first cell is where the arrow keys lead
        return index.column() == formColumn ? whole(row) : column.text(row);
    case Qt::DecorationRole:
        return index.column() == statusColumn ? QVariant(EntryLook::statusIcon(row.status))
                                              : QVariant();
    case sortRole:
        return column.key(row);
    case levelRole:
        return row.status.level;
    case wholeRole:
        return whole(row);
    default:
        return {};
    }
}

QVariant LastCheckedModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::TextAlignmentRole) {
        return QVariant::fromValue(Qt::AlignLeft | Qt::AlignVCenter);
    }
    return role == Qt::DisplayRole && orientation == Qt::Horizontal
               ? columns.at(static_cast<std::size_t>(section)).title.toString()
               : QVariant();
}
