#pragma once

#include <QString>

/// Names in Arabic or Hebrew, and typed controls of direction, beside text that runs to the right.
namespace QSDirections {
/// A typed text that can't turn what stands beside it: between isolates where it has letters of
/// such a script or controls, each control closed where it was left open. Any other text as it is.
[[nodiscard]] QString isolated(const QString &text);

/// True for a paragraph that begins on the right: by its own first letter, or by that of an
/// isolated text where it has no letters of its own.
[[nodiscard]] bool beginsOnTheRight(const QString &text);

/// For readers that show isolates as boxes: marks of the paragraph's direction in their place.
[[nodiscard]] QString withMarks(QString text);

/// True for a character that only directs others.
[[nodiscard]] bool isControl(QChar character);
/// True for one that begins or ends an isolate.
[[nodiscard]] bool isIsolate(QChar character);
} // namespace QSDirections
