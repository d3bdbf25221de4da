#pragma once

#include "QSInfo.h"
#include "QSPrefs.h"

#include <QTemporaryDir>
#include <QUrl>

#include <utility>

/// A user without any data: a data folder and preferences of a test's own, gone with it.
class ScratchUser final
{
public:
    ScratchUser()
    {
        if (std::exchange(living, true)) { // the other one's end would lead to the real user's data
            qFatal("There is a scratch user already.");
        }
        QSInfo::setDataFolderOverride(m_folder.filePath(QStringLiteral("data")));
        QSPrefs::setFileOverride(m_folder.filePath(QStringLiteral("preferences.ini")));
    }
    ~ScratchUser()
    {
        QSInfo::setDataFolderOverride(std::nullopt);
        QSPrefs::setFileOverride({});
        living = false;
    }
    ScratchUser(const ScratchUser &) = delete;
    ScratchUser &operator=(const ScratchUser &) = delete;

    [[nodiscard]] static QString database() { return QSInfo::databaseURL().toLocalFile(); }
    /// A path inside the user's own folder, for files a test writes.
    [[nodiscard]] QString path(const QString &name) const { return m_folder.filePath(name); }

private:
    static inline bool living = false;
    QTemporaryDir m_folder;
};
