#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// The snapshot mode: pictures of every screen and window, and a sample document in every export
/// format, without a display and without touching the user's data or preferences. Two runs on one
/// machine draw the same pictures.
namespace QSSnapshot {
inline const QString flag = QStringLiteral("--qs-snapshot");

/// Absent unless the arguments hold "--qs-snapshot FOLDER", which "--theme ID", "--zoom PERCENT"
/// and
/// "--state CODE" may follow. Writes into the folder, prints one line for each file, and returns 0;
/// 1 when something could not be written, 2 with a sentence when the arguments make no sense.
[[nodiscard]] std::optional<int> handle(const QStringList &arguments);
} // namespace QSSnapshot
