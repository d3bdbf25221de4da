#pragma once

#include <QByteArray>
#include <QByteArrayView>

/// Standard base64 with padding and without line breaks, at the speed that hundreds of megabytes
/// ask for. Any thread.
namespace BackupBase64 {
[[nodiscard]] QByteArray encoded(QByteArrayView bytes);
/// Appends what the text stands for. False, and nothing appended, unless the text is exactly what
/// encoded() would make of it.
[[nodiscard]] bool appendDecoded(QByteArrayView text, QByteArray &bytes);
} // namespace BackupBase64
