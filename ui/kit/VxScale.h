#pragma once

class QWidget;

/// Makes a window larger or smaller as a whole.
namespace VxScale {
/// A widget with this property, set to true, keeps its lengths, and so does all inside it: pages
/// have a zoom of their own.
inline constexpr const char *ownScale = "vxOwnScale";

/// A widget with this property, set to true, is told its smallest size by somebody who goes by the
/// font.
inline constexpr const char *ownSize = "vxOwnSize";

/// Multiplies the lengths that were set on a widget and on what is inside it, hidden or not:
/// margins, spacings, smallest and largest sizes, sizes of icons and rows. Going there and back
/// leads to where it began.
void scale(QWidget *widget, double ratio);
} // namespace VxScale
