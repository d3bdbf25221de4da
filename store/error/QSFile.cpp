#include "QSFile.h"

#include "QSError.h"

#include <QFile>
#include <QSaveFile>

namespace QSFile {
void write(const QString &path, const QByteArray &data, Readers readers)
{
    QSaveFile file(path);
    const bool written = file.open(QIODevice::WriteOnly) &&
                         (readers == Readers::everyone ||
                          file.setPermissions(QFile::ReadOwner | QFile::WriteOwner)) &&
                         writeAll(file, data) &&
                         file.flush() && // commit() forgets a failure of the last buffer
                         file.commit();
    if (!written) {
        throw QSError::io(file.errorString());
    }
}

bool writeAll(QIODevice &device, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const qint64 written = device.write(bytes.data(), bytes.size());
        if (written <= 0) {
            return false;
        }
        bytes = bytes.sliced(written);
    }
    return true;
}

QByteArray read(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw QSError::io(file.errorString());
    }
    QByteArray data = file.readAll();
    if (file.error() != QFile::NoError) {
        throw QSError::io(file.errorString());
    }
    return data;
}
} // namespace QSFile
