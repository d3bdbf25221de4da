#pragma once

#include <mutex>

// The libraries' own names for their types, so that their headers stay in the .cpp files.
using PangoContext = struct _PangoContext; // NOLINT(bugprone-reserved-identifier)

/// The one set of fonts that all texts are set in. It belongs to no thread: whoever touches a text
/// or its context holds the lock meanwhile.
namespace TextEngine {
[[nodiscard]] std::unique_lock<std::recursive_mutex> lock();
/// Letters are neither fitted to a screen's dots nor their steps rounded, so that lines are as long
/// on every device and at every zoom. Never null; belongs to the engine.
[[nodiscard]] PangoContext *context();
} // namespace TextEngine
