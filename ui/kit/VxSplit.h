#pragma once

#include <QString>

class QWidget;

/// Two parts of a screen beside each other, whose border people move.
namespace VxSplit {
/// The left part gets two fifths of the room, and later as much as it was left with, which the
/// preferences keep under the key. The caller's layout owns the splitter.
[[nodiscard]] QWidget *make(QWidget *left, QWidget *right, const QString &key, QWidget *parent);
} // namespace VxSplit
