#include "QSDisk.h"

#include <QFile>
#include <QIODevice>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace {
bool onFolder(const QString &path, int (*action)(int))
{
    const int folder =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) {
        return false;
    }
    const bool done = action(folder) == 0;
    const int problem = errno;
    ::close(folder);
    errno = problem;
    return done;
}
} // namespace

bool QSDisk::write(QIODevice &device, QByteArrayView bytes)
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

bool QSDisk::syncNames(const QString &folder)
{
    return onFolder(folder, ::fsync);
}

bool QSDisk::syncFileSystem(const QString &folder)
{
    return onFolder(folder, ::syncfs);
}
