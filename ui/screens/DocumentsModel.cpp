#include "DocumentsModel.h"

#include "QSDate.h"
#include "QSTemplates.h"

namespace {
QString templateTitle(const QSDocumentHead &document)
{
    const QSTemplate *source = QSTemplates::templateById(document.templateID);
    return source ? source->title : document.templateID;
}
} // namespace

DocumentsModel::DocumentsModel()
    : RecordsModel({{u"Name", [](const QSDocumentHead &document) { return document.title; }},
                    {u"Template", templateTitle},
                    {u"Last changed", [](const QSDocumentHead &document) {
                         return QSDate::stamp(document.modified);
                     }}})
{
}
