#pragma once

#include "QSStore.h"
#include "RecordsModel.h"

/// The saved documents: name, template, last change.
class DocumentsModel final : public RecordsModel<QSDocumentHead>
{
    Q_OBJECT

public:
    DocumentsModel();
};
