#pragma once

#include "Widget.h"

#include <QStringList>

#include <optional>

class Opening;
class QPDFObjectHandle;

/// Reads what a PDF says of its form, whatever its makers left out. Any thread, one for each PDF.
namespace FieldReader {
/// In a drawing's dictionary: it was made here, of the field's value.
inline constexpr const char *ownDrawing = "/QuillstoneDrawing";

/// The object that has the widget's name and value: the widget itself or one that it belongs to.
[[nodiscard]] QPDFObjectHandle fieldOf(const QPDFObjectHandle &widget);
/// Everything but the widget's id, page and place. Null when it is no field of a known kind. Throws
/// QSError::invalid when the form has more than can be opened.
[[nodiscard]] std::optional<Widget> read(const QPDFObjectHandle &widget, Opening &opening);
/// The values that a field of buttons lists, by state; none where they don't tell its buttons
/// apart.
[[nodiscard]] QStringList buttonValues(QPDFObjectHandle options, Opening &opening);
/// The name of the font in a default appearance ("/Helv 9 Tf 0 g"), with its slash; empty when it
/// names none.
[[nodiscard]] QByteArray fontName(const QByteArray &appearance);
/// The size of the letters in a default appearance, in points; 0 when it is left open.
[[nodiscard]] double fontSize(const QByteArray &appearance);
/// The form's default appearance for the widget.
[[nodiscard]] QByteArray defaultAppearance(const QPDFObjectHandle &widget);
} // namespace FieldReader
