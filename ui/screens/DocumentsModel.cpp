#include "DocumentsModel.h"

#include "QSDate.h"
#include "QSTemplates.h"

namespace {
QString templateTitle(const QSDocument &document)
{
    const QSTemplate *source = QSTemplates::templateById(document.templateID);
    return source ? source->title : document.templateID;
}
} // namespace

DocumentsModel::DocumentsModel()
    : RecordsModel({{u"Name", [](const QSDocument &document) { return document.title; }},
                    {u"Template", templateTitle},
                    {u"Last changed",
                     [](const QSDocument &document) { return QSDate::stamp(document.modified); }}})
{
}
