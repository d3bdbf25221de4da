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

SetAside::SetAside() : SetAside(u"qs-selftest-"_s + newID()) {}

SetAside::SetAside(const QString &name)
    : m_folder(QDir::temp().filePath(name)), m_lock(m_folder + u".lock"_s)
{
    static constexpr int longestRun = 60'000; // ms
    m_lock.tryLock(longestRun);
    QDir(m_folder).removeRecursively(); // of a run that was killed
    if (::mkdir(QFile::encodeName(m_folder).constData(), S_IRWXU) != 0) {
        throw QSError::io(u"The temporary folder %1 could not be made: %2"_s.arg(
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
