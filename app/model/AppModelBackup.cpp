#include "AppModel.h"

#include "QSBackup.h"
#include "QSDesktop.h"

#include <QFileInfo>
#include <QScopedValueRollback>

using namespace Qt::Literals::StringLiterals;

namespace {
QString cannotBackUp(const QString &cause)
{
    return u"The backup could not be made. "_s + cause;
}

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
        setMessage(cannotBackUp(m_message.value_or(QString())));
        return;
    }
    const std::optional<QString> path = chooseSavePath(QSBackup::suggestedName());
    if (!path) {
        return;
    }
    const std::stop_source stop;
    runBusy<int>(
        u"Backing up\u2026"_s, stop,
        [contents, url = QUrl::fromLocalFile(*path), stop](const AsyncTask::Progress &progress) {
            return QSBackup::write(contents, url, progress, stop.get_token());
        },
        [this, stop, name = QFileInfo(*path).fileName()](const AsyncTask::Outcome<int> &leftOut) {
            if (leftOut.error) {
                if (stop.stop_requested()) {
                    return;
                }
                qWarning("%s", leftOut.error->what());
            }
            setMessage(leftOut.result ? written(name, *leftOut.result)
                                      : cannotBackUp(leftOut.error->description()));
        });
}

void AppModel::restore()
{
    std::optional<QString> path;
    if (withStore([](QSStore &) {})) {
        const QScopedValueRollback asking(m_asking, true);
        path = m_desktop.chooseOpenPath(u"Backups"_s, QSBackup::fileExtension);
    }
    if (path) {
        restoreFrom(*path);
    }
}

void AppModel::restoreFrom(const QString &path)
{
    if (!withStore([](QSStore &) {}) ||
        !agrees(u"Replace your documents, profile and filled PDFs with this backup?"_s,
                u"What is in the app now is replaced by the backup. Making a backup of the current "
                "data first keeps a copy."_s,
                u"Restore"_s)) {
        return;
    }
    const std::stop_source stop;
    runBusy<QSBackup::Staged>(
        u"Restoring\u2026"_s, stop,
        [backup = QUrl::fromLocalFile(path), database = store()->url(),
         stop](const AsyncTask::Progress &progress) {
            return QSBackup::stage(backup, database, progress, stop.get_token());
        },
        [this, path, stop](const AsyncTask::Outcome<QSBackup::Staged> &staged) {
            if (stop.stop_requested()) {
                return;
            }
            if (staged.error) {
                setMessage(staged.error->description());
                return;
            }
            whenNothingIsAsked([this, path, staged = *staged.result] {
                // What is open belongs to what is replaced.
                if (closeEverything() &&
                    withStore([&](QSStore &open) { QSBackup::restore(staged, open); })) {
                    setMessage(u"Restored from "_s + QFileInfo(path).fileName());
                }
            });
        });
}
