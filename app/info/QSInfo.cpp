#include "QSInfo.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStandardPaths>

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace {
std::optional<QString> dataOverride;
std::optional<QString> resourceOverride;

QString chosenDataFolder()
{
    if (dataOverride) {
        return *dataOverride;
    }
    const QString fromEnvironment = qEnvironmentVariable("QS_DATA_DIR");
    if (!fromEnvironment.isEmpty()) {
        return QDir(fromEnvironment).absolutePath();
    }
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u'/' +
           QSInfo::appName;
}

/// Creates the folder for its owner alone. A folder that was there keeps its permissions unless it
/// is still empty: somebody may have named a folder that others use as well.
QDir ownFolder(const QString &path)
{
    const QDir folder(path);
    const QByteArray name = QFile::encodeName(folder.absolutePath());
    if (!folder.exists()) {
        QDir().mkpath(QFileInfo(folder.absolutePath()).path());
        ::mkdir(name.constData(), S_IRWXU);
    } else if (folder.isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System |
                              QDir::NoDotAndDotDot)) {
        ::chmod(name.constData(), S_IRWXU);
    }
    return folder;
}
} // namespace

namespace QSInfo {
QString version()
{
    const QString built = QStringLiteral(QS_VERSION);
    return built.isEmpty() ? u"1.0"_s : built;
}

void setDataFolderOverride(const std::optional<QString> &path)
{
    dataOverride = path;
}

QDir dataFolder()
{
    return ownFolder(chosenDataFolder());
}

QUrl databaseURL()
{
    return QUrl::fromLocalFile(dataFolder().filePath(u"Quillstone.sqlite"_s));
}

QDir cacheFolder()
{
    return ownFolder(dataFolder().filePath(u"Official Forms Cache"_s));
}

QDir filledFolder()
{
    return ownFolder(dataFolder().filePath(u"Filled PDFs"_s));
}

QDir draftsFolder()
{
    return ownFolder(dataFolder().filePath(u"Drafts"_s));
}

void setResourceFolderOverride(const std::optional<QString> &path)
{
    resourceOverride = path;
}

std::optional<QDir> resourceFolder()
{
    if (resourceOverride) {
        return QDir(*resourceOverride);
    }
    const QDir beside(QCoreApplication::applicationDirPath());
    for (const QString &place : {u"resources"_s, u"../share/quillstone"_s}) {
        const QString path = beside.filePath(place);
        if (QFileInfo(path).isDir()) {
            return QDir(path);
        }
    }
    return std::nullopt;
}
} // namespace QSInfo
