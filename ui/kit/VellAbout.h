#pragma once

#include <QString>
#include <QStringList>

class QWidget;

/// The About window: what the program is, its version, who makes it, and lines that the
/// application adds. Main thread only.
namespace VellAbout {
/// The maker's name.
inline const QString maker = QStringLiteral("Vell");

[[nodiscard]] QStringList extraLines();
/// Counts for a window made afterwards.
void setExtraLines(const QStringList &lines);
/// "Version 1.0", or "Version 1.0 (214)" for a build with a number.
[[nodiscard]] QString version();
/// "© 2026 Vell", with the current year.
[[nodiscard]] QString copyrightLine();

/// Brings the one About window to the front, on the screen of the window that asks for it.
void show(const QWidget *over);
/// Opens the maker's web site in the browser, and gives its address where that fails.
void openWebsite();
} // namespace VellAbout
