#include "QSDisk.h"

#include <QFile>

#include <cerrno>
#include <cstdio>

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

bool QSDisk::moveToFreeName(const QString &from, const QString &to)
{
    const QByteArray source = QFile::encodeName(from);
    const QByteArray target = QFile::encodeName(to);
    if (::renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) ==
        0) {
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return false;
    }
    // Some file systems can't do it in one step; there, a name that comes up meanwhile is lost.
    if (::faccessat(AT_FDCWD, target.constData(), F_OK, AT_SYMLINK_NOFOLLOW) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::rename(source.constData(), target.constData()) == 0;
}

bool QSDisk::syncNames(const QString &folder)
{
    return onFolder(folder, ::fsync);
}

bool QSDisk::syncFileSystem(const QString &folder)
{
    return onFolder(folder, ::syncfs);
}
