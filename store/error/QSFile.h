#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

class QIODevice;

/// Files, written and read whole. Any thread.
namespace QSFile {
enum class Readers { everyone, owner };

/// Writes a file whole or leaves what was there as it was, a full disk included. Throws
/// QSError::io with the system's reason.
void write(const QString &path, const QByteArray &data, Readers readers = Readers::everyone);
/// Writes all of the bytes, where a nearly full disk would take a part and say nothing. False when
/// it can't; the device has the reason.
[[nodiscard]] bool writeAll(QIODevice &device, QByteArrayView bytes);
/// All of a file. Throws QSError::io with the system's reason.
[[nodiscard]] QByteArray read(const QString &path);
} // namespace QSFile
