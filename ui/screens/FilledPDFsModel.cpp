#include "FilledPDFsModel.h"

#include "QSDate.h"
#include "QSDirectory.h"

using namespace Qt::Literals::StringLiterals;

namespace {
/// Nothing for the practice form, which is none.
QString officialForm(const QSFilledPDF &record)
{
    const QSEntry *entry = QSDirectory::shared().entry(record.entryID);
    return entry ? entry->displayTitle() : QString();
}
} // namespace

FilledPDFsModel::FilledPDFsModel()
    : RecordsModel({{u"Name", [](const QSFilledPDF &record) { return record.title; }},
                    {u"Official form", officialForm},
                    {u"Last changed",
                     [](const QSFilledPDF &record) { return QSDate::stamp(record.modified); }}})
{
}
