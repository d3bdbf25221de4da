#include "AppModel.h"

#include "QSBackup.h"
#include "QSDesktop.h"

#include <QFileInfo>
#include <QScopedValueRollback>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString cannotBackUp = u"The backup could not be made."_s;

/// What is said after a backup of that name.
QString written(const QString &name, int leftOut)
{
    QString saved = u"Saved "_s + name;
    if (leftOut == 0) {
        return saved;
    }
    return leftOut == 1
               ? saved + u". 1 filled PDF could not be read and is not in it."_s
               : saved + u". %1 filled PDFs could not be read and are not in it."_s.arg(leftOut);
}
} // namespace

void AppModel::backupNow()
{
    Q_EMIT editsWanted();
    QSBackup::File contents;
    if (!withStore([&contents](QSStore &open) { contents = QSBackup::contents(open); })) {
        setMessage(cannotBackUp);
        return;
    }
    const std::optional<QString> path = chooseSavePath(QSBackup::suggestedName());
    if (!path) {
        return;
    }
    runBusy<int>(
        u"Backing up\u2026"_s,
        [contents, url = QUrl::fromLocalFile(*path), stop = m_closing.get_token()] {
            return QSBackup::write(contents, url, {}, stop);
        },
        [this, name = QFileInfo(*path).fileName()](const AsyncTask::Outcome<int> &leftOut) {
            if (leftOut.error) {
                qWarning("%s", leftOut.error->what());
            }
            setMessage(leftOut.result ? written(name, *leftOut.result) : cannotBackUp);
        });
}

void AppModel::restore()
{
    if (!store()) {
        withStore([](QSStore &) {}); // says so
        return;
    }
    const std::optional<QString> path = chooseBackup();
    if (!path) {
        return;
    }
    runBusy<QSBackup::Staged>(
        u"Restoring\u2026"_s,
        [backup = QUrl::fromLocalFile(*path), database = store()->url(),
         stop = m_closing.get_token()] { return QSBackup::stage(backup, database, {}, stop); },
        [this, path](const AsyncTask::Outcome<QSBackup::Staged> &staged) {
            if (staged.error) {
                setMessage(staged.error->description());
                return;
            }
            whenNothingIsAsked([this, path, staged = *staged.result] {
                // What is open belongs to what is replaced.
                if (closeEverything() &&
                    withStore([&](QSStore &open) { QSBackup::restore(staged, open); })) {
                    setMessage(u"Restored from "_s + QFileInfo(*path).fileName());
                }
            });
        });
}

std::optional<QString> AppModel::chooseBackup()
{
    const QScopedValueRollback asking(m_asking, true);
    std::optional<QString> path = m_desktop.chooseOpenPath(u"Backups"_s, QSBackup::fileExtension);
    const bool agreed =
        path &&
        m_desktop.ask({u"Replace your documents, profile and filled PDFs with this backup?"_s,
                       u"What is in the app now is replaced by the backup. Making a backup of the "
                       "current data first keeps a copy."_s,
                       {u"Restore"_s, u"Cancel"_s},
                       1}) == 0;
    return agreed ? path : std::nullopt;
}
