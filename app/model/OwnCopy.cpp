#include "OwnCopy.h"

#include "QSError.h"
#include "QSExport.h"
#include "QSFile.h"
#include "QSInfo.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

using namespace Qt::Literals::StringLiterals;

namespace {
QDir folder()
{
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + u'/' +
           QSInfo::appName;
}

/// The first copy has the title alone, a later one its number too.
QString path(const QString &title, int number)
{
    const QString name = QSExport::safeFileName(title);
    return folder().filePath(number == 1 ? name + u".docx"_s
                                         : u"%1 %2.docx"_s.arg(name).arg(number));
}
} // namespace

namespace OwnCopy {
std::optional<QString> latest(const QString &title)
{
    QFileInfo latest;
    for (int number = 1; QFile::exists(path(title, number)); ++number) {
        const QFileInfo copy(path(title, number));
        if (number == 1 || copy.lastModified() >= latest.lastModified()) {
            latest = copy;
        }
    }
    return latest.exists() ? std::optional(latest.filePath()) : std::nullopt;
}

QString make(const QString &title, const QString &officialFile)
{
    if (!folder().mkpath(u"."_s)) {
        throw QSError::io(u"The folder %1 could not be made."_s.arg(folder().path()));
    }
    int number = 1;
    while (QFile::exists(path(title, number))) {
        ++number;
    }
    QSFile::write(path(title, number), QSFile::read(officialFile));
    return path(title, number);
}

bool isUnchanged(const QString &path, const QString &officialFile)
{
    try {
        return QSFile::read(path) == QSFile::read(officialFile);
    } catch (const QSError &error) {
        qWarning("%s: %s", qUtf8Printable(path), error.what());
        return false;
    }
}
} // namespace OwnCopy
