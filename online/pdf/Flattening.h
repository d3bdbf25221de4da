#pragma once

class QPDF;

/// Makes a form's fields part of its pages.
namespace Flattening {
/// Draws every widget that prints into its page, once, as its appearance has it, and takes away the
/// form with the scripts that would miss it, what pages do by themselves, and embedded files.
/// Hidden widgets are left out, and buttons to press, fields for reading only and widgets only for
/// the screen unless they are flagged for print; what can be filled in prints with or without the
/// flag.
void apply(QPDF &pdf);
} // namespace Flattening
