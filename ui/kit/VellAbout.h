#pragma once

#include <QString>
#include <QStringList>

class QWidget;

/// The About box: what the program is, its version, and lines that the application adds.
/// Main thread only.
namespace VellAbout {
[[nodiscard]] QStringList extraLines();
void setExtraLines(const QStringList &lines);
/// "Version 1.0"
[[nodiscard]] QString version();
/// "© 2026 Vell", with the current year.
[[nodiscard]] QString copyrightLine();
/// Shows the box over a window and waits until it is closed.
void show(QWidget *parent);
} // namespace VellAbout
