#pragma once

#include <QString>

/// Names of files, and knowing that the disk has what was written. Any thread.
namespace QSDisk {
/// Moves a file within its file system to a name that nothing has. False, with errno set, when it
/// can't: EEXIST where something has the name.
[[nodiscard]] bool moveToFreeName(const QString &from, const QString &to);

/// Waits until the disk has which files are in the folder, under which names. False, with errno
/// set, when it can't have it.
[[nodiscard]] bool syncNames(const QString &folder);
/// The same for everything in the file system of that folder: for many files at once, far quicker
/// than one by one.
[[nodiscard]] bool syncFileSystem(const QString &folder);
} // namespace QSDisk
