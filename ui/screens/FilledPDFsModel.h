#pragma once

#include "QSStore.h"
#include "RecordsModel.h"

#include <functional>

/// The filled copies of official forms: name, official form, last change. A row is dragged as a
/// file.
class FilledPDFsModel final : public RecordsModel<QSFilledPDF>
{
    Q_OBJECT

public:
    /// The path of a file to hand out for a record; empty where there is none.
    using HandOut = std::function<QString(const QSFilledPDF &)>;

    explicit FilledPDFsModel(HandOut handOut);

    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex &index) const override;
    [[nodiscard]] QStringList mimeTypes() const override;
    /// The caller owns it; null where there is no file.
    [[nodiscard]] QMimeData *mimeData(const QModelIndexList &indexes) const override;

private:
    HandOut m_handOut;
};
