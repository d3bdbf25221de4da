#pragma once

#include <QString>

#include <array>

/// How large the whole interface is drawn: 1 is 100 %. The user's choice is a preference. Main
/// thread only.
namespace VxZoom {
inline constexpr double min = 0.85;
inline constexpr double max = 2.0;
inline constexpr double step = 0.15;
/// What can be chosen at once, in per cent.
inline constexpr std::array levels = {85, 100, 115, 130, 150, 175, 200};

/// Rounded to hundredths, then within the limits.
[[nodiscard]] double clamp(double zoom);
/// The preference; 1 where there is none.
[[nodiscard]] double value();
/// Stores the clamped value and shows it in every window.
void setValue(double zoom);
void zoomIn();
void zoomOut();
/// "115%"
[[nodiscard]] QString levelTitle(int level);
} // namespace VxZoom
