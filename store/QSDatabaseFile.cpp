#include "QSDatabaseFile.h"

#include "QSError.h"
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

/// The application id that the header names; absent for what has no header of SQLite's.
std::optional<qint64> headerID(const QByteArray &header)
{
    constexpr qsizetype offset = 68;
    if (header.size() < 100 || !header.startsWith(QByteArray("SQLite format 3", 16))) {
        return std::nullopt;
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

/// True for a file that is ours or empty; throws for one that is not. False for what can't be read:
/// SQLite will say why.
bool recognised(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const std::optional<qint64> id = headerID(file.read(100));
    if (file.size() == 0 || id == QSDatabaseFile::applicationID) {
        return true;
    }
    if (id.value_or(0) != 0) {
        throw foreign();
    }
    examine(path);
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
