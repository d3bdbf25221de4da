#include "FilledPDFsModel.h"

#include "QSDate.h"
#include "QSDirectory.h"

#include <QMimeData>
#include <QUrl>

#include <memory>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Nothing for the practice form, which is none.
QString officialForm(const QSFilledPDF &record)
{
    const QSEntry *entry = QSDirectory::shared().entry(record.entryID);
    return entry ? entry->displayTitle() : QString();
}
} // namespace

FilledPDFsModel::FilledPDFsModel(HandOut handOut)
    : RecordsModel({{u"Name", [](const QSFilledPDF &record) { return record.title; }},
                    {u"Official form", officialForm},
                    {u"Last changed",
                     [](const QSFilledPDF &record) { return QSDate::stamp(record.modified); }}}),
      m_handOut(std::move(handOut))
{
}

Qt::ItemFlags FilledPDFsModel::flags(const QModelIndex &index) const
{
    return RecordsModel::flags(index) | Qt::ItemIsDragEnabled;
}

QStringList FilledPDFsModel::mimeTypes() const
{
    return {u"text/uri-list"_s};
}

QMimeData *FilledPDFsModel::mimeData(const QModelIndexList &indexes) const
{
    const auto record = recordAt(indexes.isEmpty() ? -1 : indexes.constFirst().row());
    const QString path = record ? m_handOut(*record) : QString();
    if (path.isEmpty()) {
        return nullptr;
    }
    auto dragged = std::make_unique<QMimeData>();
    dragged->setUrls({QUrl::fromLocalFile(path)});
    return dragged.release();
}
