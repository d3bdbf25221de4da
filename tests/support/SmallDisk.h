#pragma once

#include <QByteArray>
#include <QDir>
#include <QString>

#include <sys/mount.h>

/// A file system of so many bytes, where the process may mount one; gone with this object.
class SmallDisk final
{
public:
    SmallDisk(const QString &folder, int bytes) : m_folder(folder.toUtf8())
    {
        QDir().mkpath(folder);
        const QByteArray size = "size=" + QByteArray::number(bytes);
        m_mounted = mount("tmpfs", m_folder.constData(), "tmpfs", 0, size.constData()) == 0;
    }
    ~SmallDisk()
    {
        if (m_mounted) {
            umount2(m_folder.constData(), MNT_DETACH);
        }
    }
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;

    [[nodiscard]] bool mounted() const { return m_mounted; }

private:
    QByteArray m_folder;
    bool m_mounted = false;
};
