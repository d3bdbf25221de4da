#pragma once

#include <QString>

#include <array>
#include <optional>

/// What an official form is for. The order is the order of every list of categories.
enum class QSCategory {
    llc,
    dba,
    smallClaims,
    evictionAnswer,
    evictionNotice,
    divorce,
    nameChange,
    protectionOrder,
    feeWaiver,
    ein,
    w9,
    uscisFeeWaiver
};

/// What an entry's link points at.
enum class QSKind { pdf, page, online, document, statute };

namespace QSCategories {
struct Info
{
    QSCategory category;
    QStringView id; ///< the word in the directory file
    QStringView title;
    QStringView symbol; ///< name of the symbol image
};

extern const std::array<Info, 12> all;

/// What every state has to cover. A landlord's notice is not among them: a state may lack one.
inline constexpr std::array required = {QSCategory::llc,
                                        QSCategory::dba,
                                        QSCategory::smallClaims,
                                        QSCategory::evictionAnswer,
                                        QSCategory::divorce,
                                        QSCategory::nameChange,
                                        QSCategory::protectionOrder,
                                        QSCategory::feeWaiver};
/// What belongs to the federal government alone.
inline constexpr std::array federal = {QSCategory::ein, QSCategory::w9, QSCategory::uscisFeeWaiver};

[[nodiscard]] const Info &info(QSCategory category);
[[nodiscard]] std::optional<QSCategory> named(QStringView id);
[[nodiscard]] bool isFederal(QSCategory category);
[[nodiscard]] bool isBusiness(QSCategory category);
} // namespace QSCategories

namespace QSKinds {
struct Info
{
    QSKind kind;
    QStringView id; ///< the word in the directory file
    QStringView label;
    QStringView symbol;
    bool downloads; ///< a file that the program fetches and opens; the rest opens in the browser
};

extern const std::array<Info, 5> all;

[[nodiscard]] const Info &info(QSKind kind);
[[nodiscard]] std::optional<QSKind> named(QStringView id);
} // namespace QSKinds
