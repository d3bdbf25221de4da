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
    const QString beside = u"Quillstone (opened %1).sqlite"_s.arg(QSDate::iso(QSClock::today()));
    try {
        open(QUrl::fromLocalFile(QSInfo::dataFolder().filePath(beside)));
        return problem + u" A new empty database was opened instead; a backup can be restored "_s
                         "from Backup & Settings."_s;
    } catch (const QSError &error) {
        return problem +
               u" No new database could be opened either (%1), so nothing can be saved."_s.arg(
                   error.description());
    }
}
} // namespace QSSetup
