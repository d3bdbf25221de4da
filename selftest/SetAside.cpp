#include "SetAside.h"

#include "QSError.h"
#include "QSInfo.h"
#include "QSPrefs.h"
#include "QSStore.h"

#include <QDir>
#include <QUuid>

#include <cerrno>

#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

namespace {
QString newID()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}
} // namespace

SetAside::SetAside() : m_folder(QDir::temp().filePath(u"qs-selftest-"_s + newID()))
{
    if (::mkdir(QFile::encodeName(m_folder).constData(), S_IRWXU) != 0) {
        throw QSError::invalid(u"The temporary folder %1 could not be made: %2"_s.arg(
            m_folder, qt_error_string(errno)));
    }
    const QDir folder(m_folder);
    QSInfo::setDataFolderOverride(folder.filePath(u"data"_s));
    QSPrefs::setFileOverride(folder.filePath(u"vell.qs.selftest."_s + newID()));
}

SetAside::~SetAside()
{
    QSStore::setShared(nullptr);
    QSInfo::setDataFolderOverride(std::nullopt);
    QSPrefs::setFileOverride({});
    QDir(m_folder).removeRecursively();
}
