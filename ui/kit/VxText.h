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
} // namespace VxText
