#pragma once

#include <QStringList>

#include <functional>
#include <optional>

inline const QString checkLinksFlag = QStringLiteral("--check-links");
inline const QString selfTestFlag = QStringLiteral("--selftest");

/// The command-line modes that end the process instead of opening the window; main() names them
/// all.
struct QSModes
{
    /// Look at the whole argument list, the program's path included; a status ends the process.
    using Handler = std::function<std::optional<int>(const QStringList &)>;
    /// Runs to its end and returns the process's exit status.
    using Mode = std::function<int()>;

    Handler handleChild;
    Handler handleSnapshot;
    Mode runNetwork;  ///< for "--check-links"
    Mode runSelfTest; ///< for "--selftest"
};

/// The exit status of the mode that the arguments ask for; absent when the program is to start
/// normally. The order is fixed: child modes, snapshots, "--check-links", "--selftest"; the last
/// two are whole arguments at any place.
[[nodiscard]] std::optional<int> dispatch(const QStringList &arguments, const QSModes &modes);
