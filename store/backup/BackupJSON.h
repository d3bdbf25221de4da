#pragma once

#include "QSBackup.h"

#include <functional>
#include <optional>

class QIODevice;

/// A backup's JSON from and to a device, one filled PDF at a time. Any thread. Failures are thrown
/// as QSError.
namespace BackupJSON {
/// True for a name that stays inside the folder for filled PDFs and that a backup may hold.
[[nodiscard]] bool isAllowedFileName(const QString &name);
/// True for what begins like a PDF.
[[nodiscard]] bool isPDF(QByteArrayView data);

/// Gives the file of a record; absent where it is to be left out.
using Source = std::function<std::optional<QByteArray>(const QSBackup::PDF &)>;
/// Writes the backup with keys sorted and lines indented.
void write(const QSBackup::File &file, const Source &source, QIODevice &device);

/// Takes a filled PDF that passed all checks; may throw QSError.
using Sink = std::function<void(QSBackup::PDF &&)>;
/// Called every few hundred kilobytes; may throw to end the reading.
using Meanwhile = std::function<void()>;
/// Reads a backup; the result has no filled PDFs, which go to the sink one by one as they are read.
/// Checks in the order of the format: the shape of the whole, what kind of file it is, its version,
/// then the filled PDFs one after the other. Of several failures the first in that order is thrown,
/// one of the sink counting as its PDF's.
[[nodiscard]] QSBackup::File read(QIODevice &device, const Sink &sink,
                                  const Meanwhile &meanwhile = {});
} // namespace BackupJSON
