#pragma once

#include <QString>

class QPushButton;
class QWidget;

/// Push buttons with one of the program's icons before their text.
namespace VxButton {
[[nodiscard]] QPushButton *make(const QString &text, const QString &symbol, QWidget *parent);
}
