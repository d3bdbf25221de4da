#include "QSRestoreFolder.h"

#include "QSDisk.h"
#include "QSError.h"
#include "QSFile.h"
#include "QSInfo.h"
#include "QSStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr QDir::Filters everyFolder = QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot;

/// How the folders of one database begin: another database may keep its PDFs in the same place.
QString prefix(const QString &databasePath)
{
    return u'.' + QFileInfo(databasePath).fileName() + u"-restore-"_s;
}

QSError failure(const QString &reason)
{
    return QSError::io(u"The filled PDFs could not be put in place: "_s + reason);
}

QSError systemFailure()
{
    return failure(qt_error_string(errno));
}

/// A file that lies ready, and the place that it goes to.
struct Move
{
    QString from;
    QString to;
    bool replaces = false;
};

/// What the database has noted. Throws when that can't be read: what nobody notes is cleared away.
QList<Move> notedMoves(SQLiteDB &db)
{
    if (db.query(u"SELECT 1 FROM sqlite_master WHERE name = 'pending_restore'"_s).isEmpty()) {
        return {};
    }
    const QDir filled = QSInfo::filledFolder();
    QList<Move> moves;
    const QList<SQLRow> rows = db.query(u"SELECT * FROM pending_restore"_s);
    for (const SQLRow &row : rows) {
        // Whatever the note says, it is a file in there and goes from one folder to the other.
        const auto name = [&row](const QString &column) {
            return QFileInfo(row.string(column)).fileName();
        };
        const QDir folder(filled.filePath(name(u"folder"_s)));
        if (name(u"file"_s).isEmpty()) { // versions before this one noted no more than the folder
            for (const QString &file :
                 folder.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
                moves.append({folder.filePath(file), filled.filePath(file), true});
            }
            continue;
        }
        moves.append({folder.filePath(name(u"file"_s)), filled.filePath(name(u"target"_s)),
                      row.boolValue(u"replaces"_s)});
    }
    return moves;
}

/// Gives a file on its way a new name, which the records have before the file has it.
void giveNewName(SQLiteDB &db, Move &move)
{
    const QFileInfo former(move.to);
    const QString name = QSFilledPDF::newFileName();
    db.transaction([&] {
        for (const QString &sql : {u"UPDATE filled_pdfs SET file_name = ? WHERE file_name = ?"_s,
                                   u"UPDATE pending_restore SET target = ? WHERE target = ?"_s}) {
            db.run(sql, {name, former.fileName()});
        }
    });
    move.to = former.dir().filePath(name);
}

void carryOut(SQLiteDB &db, Move move)
{
    const auto carried = [&move] {
        return move.replaces ? std::rename(QFile::encodeName(move.from).constData(),
                                           QFile::encodeName(move.to).constData()) == 0
                             : QSDisk::moveToFreeName(move.from, move.to);
    };
    bool done = carried();
    if (!done && !move.replaces && errno == EEXIST) {
        giveNewName(db, move);
        done = carried();
    }
    if (!done && errno != ENOENT) { // what is not there was moved before the program ended
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
        !QSFile::writeAll(file, pdf)) {
        throw failure(file.errorString());
    }
    m_files.append(fileName);
}

void QSRestoreFolder::sync() const
{
    if (!QSDisk::syncFileSystem(m_folder.path())) {
        throw systemFailure();
    }
}

QHash<QString, QString> QSRestoreFolder::noteIn(SQLiteDB &db) const
{
    if (m_files.isEmpty()) {
        return {};
    }
    db.run(u"DROP TABLE IF EXISTS pending_restore"_s); // an empty one
    db.run(u"CREATE TABLE pending_restore (folder TEXT NOT NULL, file TEXT NOT NULL, "
           "target TEXT NOT NULL, replaces INTEGER NOT NULL)"_s);
    const QDir filled = QSInfo::filledFolder();
    QHash<QString, QString> targets;
    for (const QString &file : m_files) {
        const bool replaces =
            !db.query(u"SELECT 1 FROM filled_pdfs WHERE file_name = ?"_s, {file}).isEmpty();
        const bool isTaken = !replaces && QFileInfo::exists(filled.filePath(file));
        targets.insert(file, isTaken ? QSFilledPDF::newFileName() : file);
        db.run(u"INSERT INTO pending_restore (folder, file, target, replaces) VALUES (?,?,?,?)"_s,
               {QFileInfo(m_folder.path()).fileName(), file, targets.value(file), replaces});
    }
    return targets;
}

void QSRestoreFolder::finish(SQLiteDB &db)
{
    const QList<Move> moves = notedMoves(db);
    if (moves.isEmpty()) {
        return;
    }
    for (const Move &move : moves) {
        carryOut(db, move);
    }
    const QDir filled = QSInfo::filledFolder();
    if (!QSDisk::syncNames(filled.path())) {
        throw systemFailure();
    }
    db.exec(u"DROP TABLE pending_restore"_s);
    filled.rmdir(QFileInfo(moves.constFirst().from).dir().dirName());
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
