#pragma once

#include <QString>

class QSplitter;
class QWidget;

/// Where people leave windows and splitters, kept in the preferences from one run to the next. Main
/// thread only.
namespace VxMemory {
/// Puts a window where it was when it was last hidden or closed, on a screen that is there, and
/// keeps its place from now on. False when it was nowhere yet.
bool keepGeometry(QWidget *window, const QString &key);
/// The same for a splitter, which is kept whenever somebody moves it.
void keepSplitter(QSplitter *splitter, const QString &key);
} // namespace VxMemory
