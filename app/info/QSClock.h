#pragma once

#include <QDateTime>

#include <optional>

/// The time, from one place, so that pictures and tests can hold it still. now() and today() may be
/// called on any thread.
namespace QSClock {
/// In UTC.
[[nodiscard]] QDateTime now();
/// The date here.
[[nodiscard]] QDate today();

/// Holds the time at that moment; absent lets it run. Only while no other thread asks for it.
void setFixed(const std::optional<QDateTime> &moment);
} // namespace QSClock
