#pragma once

#include <QString>

#include <array>

/// The agencies' hosts that need care: the network layer and the directory both ask here.
namespace QSHosts {
/// The California legislature's site of law texts, which turns programs away. Its links open in the
/// browser and are not fetched in bulk.
inline constexpr std::array<QStringView, 1> botProtected = {u"leginfo.legislature.ca.gov"};

/// True when the URL's host is one of botProtected.
[[nodiscard]] bool isBotProtected(const QString &url);
} // namespace QSHosts
