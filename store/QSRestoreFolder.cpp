#include "QSRestoreFolder.h"

#include "QSDisk.h"
#include "QSError.h"
#include "QSInfo.h"
#include "SQLiteDB.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr QDir::Filters everyFile = QDir::Files | QDir::Hidden | QDir::System;
constexpr QDir::Filters everyFolder = QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot;

/// How the folders of one database begin: another database may keep its PDFs in the same place.
QString prefix(const QString &databasePath)
{
    return u'.' + QFileInfo(databasePath).fileName() + u"-restore-"_s;
}

QSError failure(const QString &reason)
{
    return QSError::invalid(u"The filled PDFs could not be put in place: "_s + reason);
}

QSError systemFailure()
{
    return failure(qt_error_string(errno));
}

/// The folder that the database names; empty when it names none. Throws when that can't be read:
/// a folder that nobody names is cleared away.
QString notedFolder(SQLiteDB &db)
{
    if (db.query(u"SELECT 1 FROM sqlite_master WHERE name = 'pending_restore'"_s).isEmpty()) {
        return {};
    }
    const QList<SQLRow> rows = db.query(u"SELECT folder FROM pending_restore"_s);
    return rows.isEmpty() ? QString() : rows.constFirst().string(u"folder"_s);
}

void moveAll(const QDir &from, const QDir &to)
{
    const QStringList names = from.entryList(everyFile);
    for (const QString &name : names) {
        const QByteArray source = QFile::encodeName(from.filePath(name));
        const QByteArray target = QFile::encodeName(to.filePath(name));
        if (std::rename(source.constData(), target.constData()) != 0) {
            throw systemFailure();
        }
    }
    if (!names.isEmpty() && !QSDisk::syncNames(to.path())) {
        throw systemFailure();
    }
}
} // namespace

QSRestoreFolder::QSRestoreFolder(const QString &databasePath)
    : m_folder(QSInfo::filledFolder().filePath(prefix(databasePath) + u"XXXXXX"_s))
{
    if (!m_folder.isValid()) {
        throw failure(m_folder.errorString());
    }
}

void QSRestoreFolder::add(const QString &fileName, const QByteArray &pdf)
{
    if (QFileInfo(QSInfo::filledFolder().filePath(fileName)).isDir()) {
        throw failure(u"\"%1\" is a folder there."_s.arg(fileName));
    }
    QFile file(m_folder.filePath(fileName));
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered,
                   QFile::ReadOwner | QFile::WriteOwner) ||
        !QSDisk::write(file, pdf)) {
        throw failure(file.errorString());
    }
}

void QSRestoreFolder::sync() const
{
    if (!QSDisk::syncFileSystem(m_folder.path())) {
        throw systemFailure();
    }
}

void QSRestoreFolder::noteIn(SQLiteDB &db) const
{
    db.run(u"CREATE TABLE pending_restore (folder TEXT NOT NULL)"_s);
    db.run(u"INSERT INTO pending_restore (folder) VALUES (?)"_s,
           {QFileInfo(m_folder.path()).fileName()});
}

void QSRestoreFolder::finish(SQLiteDB &db)
{
    const QString name = notedFolder(db);
    if (name.isEmpty()) {
        return;
    }
    const QDir filled = QSInfo::filledFolder();
    // Whatever the note says, it is a folder in there.
    const QDir folder(filled.filePath(QFileInfo(name).fileName()));
    if (folder.exists()) {
        moveAll(folder, filled);
    }
    db.exec(u"DROP TABLE pending_restore"_s);
    filled.rmdir(folder.dirName());
}

void QSRestoreFolder::clearLeftovers(const QString &databasePath)
{
    const QDir filled = QSInfo::filledFolder();
    const QString start = prefix(databasePath);
    const QStringList names = filled.entryList(everyFolder);
    for (const QString &name : names) {
        if (name.startsWith(start)) {
            QDir(filled.filePath(name)).removeRecursively();
        }
    }
}
