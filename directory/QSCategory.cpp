#include "QSCategory.h"

#include <algorithm>

namespace QSCategories {
const std::array<Info, 12> all = {{
    {QSCategory::llc, u"llc", u"Form an LLC", u"building.2.fill"},
    {QSCategory::dba, u"dba", u"Business name (DBA / trade name)", u"signpost.right.fill"},
    {QSCategory::smallClaims, u"smallClaims", u"Small claims", u"dollarsign.circle.fill"},
    {QSCategory::evictionAnswer, u"evictionAnswer", u"Eviction answer (tenant)", u"house.fill"},
    {QSCategory::evictionNotice, u"evictionNotice", u"Eviction notices (landlord)",
     u"envelope.badge.fill"},
    {QSCategory::divorce, u"divorce", u"Divorce / dissolution", u"person.2.slash.fill"},
    {QSCategory::nameChange, u"nameChange", u"Name change", u"person.text.rectangle.fill"},
    {QSCategory::protectionOrder, u"protectionOrder", u"Protection order",
     u"shield.lefthalf.filled"},
    {QSCategory::feeWaiver, u"feeWaiver", u"Court fee waiver", u"banknote.fill"},
    {QSCategory::ein, u"ein", u"EIN (employer ID number)", u"number.square.fill"},
    {QSCategory::w9, u"w9", u"W-9 taxpayer ID", u"doc.text.fill"},
    {QSCategory::uscisFeeWaiver, u"uscisFeeWaiver", u"USCIS fee waiver", u"globe.americas.fill"},
}};

const Info &info(QSCategory category)
{
    return all.at(static_cast<std::size_t>(category));
}

std::optional<QSCategory> named(QStringView id)
{
    const auto match = std::ranges::find(all, id, &Info::id);
    return match == all.end() ? std::nullopt : std::optional(match->category);
}

bool isFederal(QSCategory category)
{
    return std::ranges::find(federal, category) != federal.end();
}

bool isBusiness(QSCategory category)
{
    return category == QSCategory::llc || category == QSCategory::dba;
}
} // namespace QSCategories

namespace QSKinds {
const std::array<Info, 5> all = {{
    {QSKind::pdf, u"pdf", u"Official PDF", u"doc.richtext.fill", true},
    {QSKind::page, u"page", u"Official web page", u"safari.fill", false},
    {QSKind::online, u"online", u"Online filing / interview", u"globe", false},
    {QSKind::document, u"document", u"Official Word document", u"doc.fill", true},
    {QSKind::statute, u"statute", u"Official law text", u"building.columns.fill", false},
}};

const Info &info(QSKind kind)
{
    return all.at(static_cast<std::size_t>(kind));
}

std::optional<QSKind> named(QStringView id)
{
    const auto match = std::ranges::find(all, id, &Info::id);
    return match == all.end() ? std::nullopt : std::optional(match->kind);
}
} // namespace QSKinds
