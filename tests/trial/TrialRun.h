#pragma once

#include <QString>

/// What the program is tried for: opening, filling, saving and flattening one form, in a process of
/// its own with limits of memory and time. It says what happened on its standard output, a line
/// "key<tab>text" each as it happens, so that the parent knows how far a process came that died:
///   stage     what begins now
///   pages, fields, refused   what open() said; refused is its sentence and the end
///   untouched, filled        a sentence of flattened()
///   lost      a value or a copy that isn't what was put into it
namespace TrialRun {
/// Limits this process; call it before anything else.
void limitThisProcess();
/// Writes untouched.pdf and, in a folder for each pass, answers.json, saved.pdf and flat.pdf where
/// they could be made. Returns the exit status.
[[nodiscard]] int run(const QString &pdf, const QString &folder);
} // namespace TrialRun
