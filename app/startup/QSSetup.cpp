#include "QSSetup.h"

#include "QSClock.h"
#include "QSDate.h"
#include "QSDirectory.h"
#include "QSError.h"
#include "QSInfo.h"
#include "QSStore.h"
#include "QSTemplates.h"
#include "QSThemes.h"
#include "VellAbout.h"
#include "VellHelp.h"
#include "VellThemeRoot.h"
#include "help/QSHelp.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QIcon>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Replaces the program's store. The former one goes first: a database may be open only once in a
/// process, for the locks of its file belong to the process.
void open(const QUrl &url)
{
    QSStore::setShared(nullptr);
    QSStore::setShared(std::make_unique<QSStore>(url, QSStore::Indexing::later));
}

/// What of the shipped content is missing, for the person who installed it badly.
QString missingContent()
{
    QStringList problems = QSTemplates::loadProblems();
    if (!QSDirectory::loadError().isEmpty()) {
        problems.append(QSDirectory::loadError());
    }
    return problems.join(u'\n');
}

/// The databases to open instead of one that can't be opened, first to last: the latest that
/// already stood in for it, and one with the day's date. One that is older than the database's last
/// change stood in for it at another time.
QStringList pathsForStandIn(const QFileInfo &database)
{
    const QFileInfoList earlier = database.dir().entryInfoList(
        {u"Quillstone (opened *).sqlite"_s}, QDir::Files, QDir::Name | QDir::Reversed);
    QStringList paths;
    if (!earlier.isEmpty() && earlier.constFirst().lastModified() >= database.lastModified()) {
        paths.append(earlier.constFirst().filePath());
    }
    const QString name = u"Quillstone (opened %1).sqlite"_s.arg(QSDate::iso(QSClock::today()));
    paths.append(database.dir().filePath(name));
    return paths;
}

/// Opens another database instead of one that can't be opened; the sentence about that.
QString openStandIn(const QFileInfo &database)
{
    QString reason;
    const QStringList paths = pathsForStandIn(database);
    for (const QString &path : paths) {
        const bool isNew = !QFile::exists(path);
        try {
            open(QUrl::fromLocalFile(path));
            return isNew ? u"A new empty database was opened instead; a backup can be restored "
                           "from Backup & Settings."_s
                         : u"%1, which stood in for it before, was opened instead; a backup can be "
                           "restored from Backup & Settings."_s.arg(path);
        } catch (const QSError &error) {
            reason = error.description();
        }
    }
    return u"No new database could be opened either (%1), so nothing can be saved."_s.arg(reason);
}
} // namespace

namespace QSSetup {
void configure()
{
    VellThemes::setDefaultID(QSThemes::graphiteID);
    VellThemes::registerThemes(QSThemes::extras());
    if (const std::optional<QDir> resources = QSInfo::resourceFolder()) {
        QApplication::setWindowIcon(QIcon(resources->filePath(u"icons/quillstone.svg"_s)));
    }
    if (VellThemeRoot::instance()) {
        VellThemeRoot::refresh();
    } else {
        new VellThemeRoot(*qApp);
    }
    VellHelp::setTopics(QSHelp::topics());
    VellAbout::setExtraLines(
        {u"Official legal forms and plain-English templates. No legal advice."_s,
         u"Official forms directory checked "_s + QSDate::longText(QSDirectory::shared().checked) +
             u". Forms download from the official government sites."_s});
}

std::optional<QString> openStore()
{
    const QUrl url = QSInfo::databaseURL();
    QString problem;
    try {
        open(url);
        const QString missing = missingContent();
        return missing.isEmpty() ? std::nullopt : std::optional(missing);
    } catch (const QSError &error) {
        problem =
            u"Your documents database could not be opened (%1). It was left untouched at %2."_s.arg(
                error.description(), url.toLocalFile());
    }
    return problem + u' ' + openStandIn(QFileInfo(url.toLocalFile()));
}
} // namespace QSSetup
