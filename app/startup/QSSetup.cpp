#include "QSSetup.h"

#include "QSClock.h"
#include "QSDate.h"
#include "QSDirectory.h"
#include "QSError.h"
#include "QSInfo.h"
#include "QSSalvage.h"
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

/// "41 of 43 documents", or "43 documents" where nothing is missing that is known of.
QString words(const QSSalvage::Part &part, const QString &one, const QString &many)
{
    const QString what = part.total == 1 ? one : many;
    return part.total > part.saved ? u"%1 of %2 %3"_s.arg(part.saved).arg(part.total).arg(what)
                                   : u"%1 %2"_s.arg(part.saved).arg(what);
}

QString sentence(const QSSalvage::Result &found, const QString &keptAs)
{
    return u"Your documents database was damaged. What could be read is here: %1, %2 and %3. The "
           "damaged file is kept at %4. If something is missing, a backup can be restored from "
           "Backup & Settings."_s.arg(
               words(found.documents, u"document"_s, u"documents"_s),
               words(found.filledPDFs, u"filled PDF"_s, u"filled PDFs"_s),
               words(found.answers, u"answer of your profile"_s, u"answers of your profile"_s),
               keptAs);
}

/// A path in the folder, with the day's date, that nothing has yet.
QString pathForDamaged(const QDir &folder)
{
    const QString beginning = u"Quillstone (damaged "_s + QSDate::iso(QSClock::today());
    QString name = beginning + u").sqlite"_s;
    for (int number = 2; folder.exists(name); ++number) {
        name = beginning + u", %1).sqlite"_s.arg(number);
    }
    return folder.filePath(name);
}

void remove(const QString &database)
{
    for (const QLatin1StringView suffix : {""_L1, "-wal"_L1, "-shm"_L1}) {
        QFile::remove(database + suffix);
    }
}

/// A new database at the path with what can be read of the damaged one.
QSSalvage::Result salvage(const QString &damaged, const QString &path)
{
    remove(path); // of a run that was cut short
    QSStore fresh(QUrl::fromLocalFile(path), QSStore::Indexing::later);
    return QSSalvage::copy(damaged, fresh.db());
}

/// Opens the database, or another one instead; empty, or what was wrong.
QString openOrReplace()
{
    const QUrl url = QSInfo::databaseURL();
    try {
        open(url);
        return {};
    } catch (const QSError &error) {
        return u"Your documents database could not be opened (%1). It was left untouched at %2. "_s
                   .arg(error.description(), url.toLocalFile()) +
               openStandIn(QFileInfo(url.toLocalFile()));
    }
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
    QStringList said = {openOrReplace(), missingContent()};
    said.removeAll({});
    return said.isEmpty() ? std::nullopt : std::optional(said.join(u'\n'));
}

QString mendStore()
{
    const QUrl url = QSStore::shared()->url();
    const QString path = url.toLocalFile();
    const QString fresh = path + u"-salvaged"_s;
    try {
        const QString keptAs = pathForDamaged(QFileInfo(path).dir());
        const QSSalvage::Result found = salvage(path, fresh);
        QSStore::setShared(nullptr);
        QSDatabaseFile::replace(path, fresh, keptAs);
        open(url);
        return sentence(found, keptAs);
    } catch (const QSError &error) {
        QString problem =
            u"Your documents database is damaged, and no new one could take its place (%1). It was "
            "left at %2."_s.arg(error.description(), path);
        remove(fresh);
        if (!QSStore::shared()) {
            const std::optional<QString> more = openStore();
            problem += more ? u' ' + *more : QString();
        }
        return problem;
    }
}
} // namespace QSSetup
