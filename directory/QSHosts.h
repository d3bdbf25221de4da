#pragma once

#include <QString>

#include <array>

/// The agencies' hosts that need care: the network layer and the directory both ask here.
namespace QSHosts {
/// The California legislature's site of law texts, which turns programs away. Its links open in the
/// browser and are not fetched in bulk.
inline constexpr std::array<QStringView, 1> botProtected = {u"leginfo.legislature.ca.gov"};
/// The California courts, whose terms do not allow automated checks. Every other host below
/// courtDomain counts as well.
inline constexpr std::array<QStringView, 4> handChecked = {
    u"courts.ca.gov", u"www.courts.ca.gov", u"www4.courts.ca.gov", u"selfhelp.courts.ca.gov"};
inline constexpr QStringView courtDomain = u"courts.ca.gov";

/// True when the URL's host is one of botProtected.
[[nodiscard]] bool isBotProtected(const QString &url);
/// True when people check the URL by hand: its host is one of handChecked or lies below their
/// domain. False for what is no URL.
[[nodiscard]] bool isHandChecked(const QString &url);
} // namespace QSHosts
