#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// The snapshot mode: pictures of the screens, and a sample document in every export format,
/// without a display and without touching the user's data or preferences.
namespace QSSnapshot {
inline const QString flag = QStringLiteral("--qs-snapshot");

/// Absent unless the arguments hold "--qs-snapshot FOLDER". Writes into the folder, prints one line
/// for each file, and returns 0; 1 when something could not be written, 2 when no folder is named.
[[nodiscard]] std::optional<int> handle(const QStringList &arguments);
} // namespace QSSnapshot
