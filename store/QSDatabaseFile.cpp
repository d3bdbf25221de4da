#include "QSDatabaseFile.h"

#include "QSDisk.h"
#include "QSError.h"
#include "QSInfo.h"
#include "QSMutation.h"
#include "SQLiteDB.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtEndian>

#include <array>
#include <cerrno>
#include <cstdio>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr QFileDevice::Permissions ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
/// What SQLite puts behind the database's name for the files that belong to it.
constexpr std::array journalSuffixes = {"-wal"_L1, "-journal"_L1};

/// The part of a database's first page in which it says what it is.
constexpr qsizetype stampSize = 100;

qint64 versionIn(const char *page)
{
    constexpr qsizetype offset = 60;
    return qFromBigEndian<qint32>(page + offset);
}

bool isNewer(qint64 version)
{
    return version > QSDatabaseFile::schemaVersion;
}

/// The application id that a whole header names. Throws when it is no header of SQLite's, with the
/// text that SQLite has for it.
qint64 headerID(const QByteArray &header)
{
    constexpr qsizetype offset = 68;
    if (!header.startsWith(QByteArray("SQLite format 3", 16))) {
        throw QSError::database(u"file is not a database"_s);
    }
    return qFromBigEndian<qint32>(header.constData() + offset);
}

QSError foreign()
{
    return QSError::invalid(u"This file is not a Vell Quillstone database."_s);
}

/// Whether a page that waits in the -wal has the version of a newer program. It may be one that was
/// never committed: only SQLite can tell.
bool newerIsWaiting(const QString &path)
{
    constexpr qsizetype headerSize = 32;
    constexpr qsizetype pageSizeOffset = 8;
    constexpr qsizetype frameHeaderSize = 24;
    QFile wal(path + u"-wal"_s);
    if (!wal.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray header = wal.read(headerSize);
    if (header.size() < headerSize) {
        return false;
    }
    const auto pageSize = qFromBigEndian<quint32>(header.constData() + pageSizeOffset);
    for (qint64 at = headerSize; wal.seek(at); at += frameHeaderSize + pageSize) {
        const QByteArray frame = wal.read(frameHeaderSize + stampSize);
        if (frame.size() < frameHeaderSize + stampSize) {
            return false;
        }
        const char *page = frame.constData() + frameHeaderSize;
        if (qFromBigEndian<quint32>(frame.constData()) == 1 && isNewer(versionIn(page))) {
            return true;
        }
    }
    return false;
}

void copyTo(const QString &from, const QString &to)
{
    QFile file(from);
    if (!file.copy(to)) {
        throw QSError::io(u"No copy of it could be made to look into: "_s + file.errorString());
    }
    QFile::setPermissions(to, ownerOnly);
}

/// Throws unless the database is one that this version can open, or has no tables yet. Looks at a
/// copy: even to read, SQLite would make files beside the original, replay its journals or clear
/// them away.
void examine(const QString &path)
{
    const QTemporaryDir folder;
    if (!folder.isValid()) {
        throw QSError::io(u"No folder for temporary files could be made: "_s +
                          folder.errorString());
    }
    const QString copy = folder.filePath(u"copy"_s);
    copyTo(path, copy);
    for (const QLatin1StringView suffix : journalSuffixes) {
        if (QFile::exists(path + suffix)) {
            copyTo(path + suffix, copy + suffix);
        }
    }
    SQLiteDB db(copy);
    db.exec(u"SELECT count(*) FROM sqlite_master"_s); // SQLite says here what is wrong
    const qint64 id = db.scalarInt(u"PRAGMA application_id"_s);
    const qint64 tables = db.scalarInt(u"SELECT count(*) FROM sqlite_master WHERE type='table'"_s);
    const qint64 ours =
        db.scalarInt(u"SELECT count(*) FROM sqlite_master WHERE name='documents'"_s);
    if (id != QSDatabaseFile::applicationID && (id != 0 || (tables > 0 && ours == 0))) {
        throw foreign();
    }
    if (tables > 0 && isNewer(db.scalarInt(u"PRAGMA user_version"_s))) {
        throw QSError::invalid(u"This database was made by a newer version of %1, so this version "
                               "can't open it."_s.arg(QSInfo::appName));
    }
}

/// Throws when SQLite finds the database damaged at first sight, before anything is written to it.
void readSchema(const QString &path)
{
    SQLiteDB(path).exec(u"SELECT count(*) FROM sqlite_master"_s);
}

/// True for a file that is ours or empty; throws for one that is not. False for what can't be read:
/// SQLite will say why.
bool recognised(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray header = file.read(stampSize);
    file.close();
    if (header.isEmpty()) {
        return true;
    }
    if (QSMutation::on(u"foreign-database-opened")) {
        return true;
    }
    const qint64 id = header.size() == stampSize ? headerID(header) : 0;
    if (id != QSDatabaseFile::applicationID && id != 0) {
        throw foreign();
    }
    if (id == 0 || isNewer(versionIn(header.constData())) || newerIsWaiting(path)) {
        examine(path);
    } else {
        readSchema(path);
    }
    return true;
}
} // namespace

void QSDatabaseFile::prepare(const QString &path)
{
    const QDir folder = QFileInfo(path).dir();
    if (!folder.mkpath(u"."_s)) {
        throw QSError::io(u"The folder \"%1\" could not be created."_s.arg(folder.path()));
    }
    // SQLite gives its -wal and -shm files the permissions that the database has.
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly, ownerOnly) && recognised(path)) {
        for (const QLatin1StringView suffix : {""_L1, "-wal"_L1, "-shm"_L1, "-journal"_L1}) {
            QFile::setPermissions(path + suffix, ownerOnly);
        }
    }
}

void QSDatabaseFile::replace(const QString &path, const QString &by, const QString &keptAs)
{
    for (const QString &database : {path, by}) {
        for (const QLatin1StringView suffix : journalSuffixes) {
            if (QFileInfo(database + suffix).size() > 0) { // it would be taken for the other's
                throw QSError::io(u"Its latest changes are still in %1."_s.arg(database + suffix));
            }
        }
    }
    const QByteArray old = QFile::encodeName(path);
    const QByteArray fresh = QFile::encodeName(by);
    const QByteArray kept = QFile::encodeName(keptAs);
    // Some file systems let a file have one name only.
    if (::link(old.constData(), kept.constData()) != 0 &&
        std::rename(old.constData(), kept.constData()) != 0) {
        throw QSError::io(qt_error_string(errno));
    }
    if (std::rename(fresh.constData(), old.constData()) != 0) {
        const QString reason = qt_error_string(errno);
        std::rename(kept.constData(), old.constData()); // without effect for two names of one file
        ::unlink(kept.constData());
        throw QSError::io(reason);
    }
    (void)QSDisk::syncNames(QFileInfo(path).path()); // either name has one of them after a crash
}
