#pragma once

#include <QString>

#include <optional>

/// The person's own copies of the agencies' Word documents: files among their documents, in the
/// folder of the program's name. The desktop's word processor writes into them, so nothing here
/// ever writes over one. Any thread.
namespace OwnCopy {
/// Path of the copy under this title that was changed last; absent when there is none.
[[nodiscard]] std::optional<QString> latest(const QString &title);
/// Makes a copy of the agency's file under a name that no file has, and returns its path. Throws
/// QSError::io with the system's reason.
[[nodiscard]] QString make(const QString &title, const QString &officialFile);
/// False when the two files differ, or either can't be read.
[[nodiscard]] bool isUnchanged(const QString &path, const QString &officialFile);
} // namespace OwnCopy
