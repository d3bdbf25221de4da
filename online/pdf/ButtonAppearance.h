#pragma once

#include <string>

class QPDF;
class QPDFObjectHandle;

/// Draws the check boxes and radio buttons of forms that leave this to the program showing them.
namespace ButtonAppearance {
/// Gives the button a drawing for on and for off where it has none; true when its drawing for on
/// was missing. state: the name of its appearance when it is on, with its slash.
bool complete(QPDF &pdf, QPDFObjectHandle widget, const std::string &state, bool round);
} // namespace ButtonAppearance
