#pragma once

#include <QString>

class QLabel;
class QWidget;

/// Labels in the program's few kinds of text, which the style sheet sets.
namespace VxText {
enum class Role {
    title,   ///< of a screen
    heading, ///< of a section
    body,
    note ///< secondary, dimmer text
};

/// A wrapping label of plain text; the caller's layout owns it.
[[nodiscard]] QLabel *make(const QString &text, Role role, QWidget *parent = nullptr);

/// A text that shows as it stands where Qt guesses the format, as in a tip: there one that looks
/// like markup would be read as such, and the pictures it names would be opened.
[[nodiscard]] QString asItStands(const QString &text);
/// The same for a window's title, in which Qt takes "[*]" for the mark of unsaved changes.
[[nodiscard]] QString asTitle(const QString &text);
/// The same for a button or a menu, where an ampersand marks a letter.
[[nodiscard]] QString asCaption(const QString &text);
} // namespace VxText
