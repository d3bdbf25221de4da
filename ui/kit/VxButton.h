#pragma once

#include <QString>

class QLayout;
class QPushButton;
class QWidget;

/// Push buttons with one of the program's icons before their text.
namespace VxButton {
[[nodiscard]] QPushButton *make(const QString &text, const QString &symbol, QWidget *parent);
/// Makes one and adds it to the layout of a widget.
QPushButton *add(QLayout *layout, const QString &text, const QString &symbol);
} // namespace VxButton
