#include "QSDatabaseFile.h"

#include "QSError.h"
#include "QSMutation.h"
#include "SQLiteDB.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtEndian>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr QFileDevice::Permissions ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
/// What SQLite puts behind the database's name for the files that belong to it.
constexpr std::array journalSuffixes = {"-wal"_L1, "-journal"_L1};

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

void copyTo(const QString &from, const QString &to)
{
    QFile file(from);
    if (!file.copy(to)) {
        throw QSError::database(file.errorString());
    }
    QFile::setPermissions(to, ownerOnly);
}

/// Throws unless the database without an application id is empty or has our tables. Looks at a
/// copy: even to read, SQLite would make files beside the original, replay its journals or clear
/// them away.
void examine(const QString &path)
{
    const QTemporaryDir folder;
    if (!folder.isValid()) {
        throw QSError::invalid(u"No folder for temporary files could be made: "_s +
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
    db.exec(u"PRAGMA schema_version"_s); // the first look inside: SQLite says here what is wrong
    const qint64 id = db.scalarInt(u"PRAGMA application_id"_s);
    const qint64 tables = db.scalarInt(u"SELECT count(*) FROM sqlite_master WHERE type='table'"_s);
    const qint64 ours =
        db.scalarInt(u"SELECT count(*) FROM sqlite_master WHERE name='documents'"_s);
    if (id != QSDatabaseFile::applicationID && (id != 0 || (tables > 0 && ours == 0))) {
        throw foreign();
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
    constexpr qsizetype headerSize = 100;
    const QByteArray header = file.read(headerSize);
    file.close();
    if (header.isEmpty()) {
        return true;
    }
    if (QSMutation::on(u"foreign-database-opened")) {
        return true;
    }
    const qint64 id = header.size() == headerSize ? headerID(header) : 0;
    if (id == QSDatabaseFile::applicationID) {
        readSchema(path);
    } else if (id == 0) {
        examine(path);
    } else {
        throw foreign();
    }
    return true;
}
} // namespace

void QSDatabaseFile::prepare(const QString &path)
{
    const QDir folder = QFileInfo(path).dir();
    if (!folder.mkpath(u"."_s)) {
        throw QSError::invalid(u"The folder \"%1\" could not be created."_s.arg(folder.path()));
    }
    // SQLite gives its -wal and -shm files the permissions that the database has.
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly, ownerOnly) && recognised(path)) {
        for (const QLatin1StringView suffix : {""_L1, "-wal"_L1, "-shm"_L1, "-journal"_L1}) {
            QFile::setPermissions(path + suffix, ownerOnly);
        }
    }
}
