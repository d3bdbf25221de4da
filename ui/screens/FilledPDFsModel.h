#pragma once

#include "QSStore.h"
#include "RecordsModel.h"

/// The filled copies of official forms: name, official form, last change.
class FilledPDFsModel final : public RecordsModel<QSFilledPDF>
{
    Q_OBJECT

public:
    FilledPDFsModel();
};
