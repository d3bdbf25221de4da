#include "QSJurisdiction.h"

std::optional<QString> QSJurisdiction::office(QSCategory category) const
{
    auto text = offices.constFind(QSCategories::info(category).id.toString());
    if (text == offices.cend() && category == QSCategory::evictionNotice) {
        text = offices.constFind(QSCategories::info(QSCategory::evictionAnswer).id.toString());
    }
    return text == offices.cend() ? std::nullopt : std::optional(*text);
}

QString QSJurisdiction::feePage(QSCategory category) const
{
    return QSCategories::isBusiness(category) ? businessFees : courtFees;
}
