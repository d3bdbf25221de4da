#pragma once

#include "Widget.h"

class QPDFObjectHandle;

/// Reads how a form wants the text of a field to look. Any thread, one for each PDF.
namespace FieldLook {
/// Gives the widget its box, turn, frame, alignment, size and style of letters.
void read(Widget &widget, QPDFObjectHandle object);
} // namespace FieldLook
