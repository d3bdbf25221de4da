#pragma once

#include <QByteArray>
#include <QString>

/// Whole files. Any thread.
namespace QSFile {
enum class Readers { everyone, owner };

/// Writes a file whole or leaves what was there as it was, a full disk included. Throws
/// QSError::io with the system's reason.
void write(const QString &path, const QByteArray &data, Readers readers = Readers::everyone);
/// All of a file. Throws QSError::io with the system's reason.
[[nodiscard]] QByteArray read(const QString &path);
} // namespace QSFile
