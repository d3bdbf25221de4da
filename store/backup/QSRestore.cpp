#include "QSBackup.h"

#include "BackupJSON.h"
#include "QSError.h"
#include "QSMutation.h"
#include "QSRestoreFolder.h"

#include <QBuffer>
#include <QFile>
#include <QScopeGuard>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
/// The text as it can be bound: SQLite would end it at a NUL, and drop what follows.
QString storable(QString text)
{
    return text.remove(QChar::Null);
}

void insert(SQLiteDB &db, const QSBackup::Doc &document)
{
    db.run(
        u"INSERT INTO documents (template_id, template_version, title, values_json, state, created, modified) VALUES (?,?,?,?,?,?,?)"_s,
        {storable(document.templateID), storable(document.templateVersion),
         storable(document.title), QSDocument::valuesToJSON(document.values),
         storable(document.state), document.created, document.modified});
}

void insert(SQLiteDB &db, const QSBackup::PDF &pdf)
{
    db.run(
        u"INSERT INTO filled_pdfs (entry_id, title, file_name, created, modified) VALUES (?,?,?,?,?)"_s,
        {storable(pdf.entryID), storable(pdf.title), pdf.fileName, pdf.created, pdf.modified});
}

/// The records, then all their ids raised above the former ones: what still has a former id, such
/// as an open window or a draft, finds no record and not another one. Last to first, because of two
/// of one moment the store lists the later id first.
template <typename Record>
void insertAll(SQLiteDB &db, const QList<Record> &records, const QString &raiseIDs, qint64 formerID)
{
    std::for_each(records.crbegin(), records.crend(),
                  [&db](const Record &record) { insert(db, record); });
    // By so much that no id on the way is another row's.
    db.run(raiseIDs, {std::max<qint64>(formerID, records.size())});
}

/// 0 for a table without rows. Throws when it can't be read, where scalarInt() would say 0.
qint64 highestID(SQLiteDB &db, const QString &select)
{
    return db.query(select).constFirst().intValue(u"id"_s).value_or(0);
}

void replaceAll(SQLiteDB &db, const QSBackup::File &file, const QSRestoreFolder &folder)
{
    QList<QSBackup::PDF> filledPDFs = file.filledPDFs;
    const QHash<QString, QString> fileNames = folder.noteIn(db);
    for (QSBackup::PDF &pdf : filledPDFs) {
        pdf.fileName = fileNames.value(pdf.fileName);
    }
    const qint64 formerDocument = highestID(db, u"SELECT max(id) AS id FROM documents"_s);
    const qint64 formerPDF = highestID(db, u"SELECT max(id) AS id FROM filled_pdfs"_s);
    db.run(u"DELETE FROM profile"_s);
    db.run(u"DELETE FROM documents"_s);
    db.run(u"DELETE FROM filled_pdfs"_s);
    for (auto answer = file.profile.cbegin(); answer != file.profile.cend(); ++answer) {
        if (QSMutation::on(u"restore-loses-profile")) {
            break;
        }
        db.run(u"INSERT INTO profile (key, value) VALUES (?, ?)"_s,
               {storable(answer.key()), storable(answer.value())});
    }
    insertAll(db, file.documents, u"UPDATE documents SET id = id + ?"_s, formerDocument);
    insertAll(db, filledPDFs, u"UPDATE filled_pdfs SET id = id + ?"_s, formerPDF);
}

QSBackup::Staged stageFrom(QIODevice &device, const QUrl &database,
                           const QSBackup::Progress &progress, const std::stop_token &stop)
{
    constexpr int parts = 1000;
    const auto folder = std::make_shared<QSRestoreFolder>(database.toLocalFile());
    QList<QSBackup::PDF> records;
    const auto sink = [&](QSBackup::PDF &&pdf) {
        folder->add(pdf.fileName, pdf.data);
        pdf.data.clear();
        records.append(std::move(pdf));
    };
    const auto meanwhile = [&] {
        if (stop.stop_requested()) {
            throw QSError::invalid(u"The restore was stopped."_s);
        }
        if (progress && device.size() > 0) {
            progress(static_cast<int>(parts * device.pos() / device.size()), parts);
        }
    };
    QSBackup::File file = BackupJSON::read(device, sink, meanwhile);
    file.filledPDFs = records;
    folder->sync();
    return {std::move(file), folder};
}
} // namespace

QSBackup::File QSBackup::read(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QList<PDF> pdfs;
    File file = BackupJSON::read(buffer, [&pdfs](PDF &&pdf) { pdfs.append(std::move(pdf)); });
    file.filledPDFs = pdfs;
    return file;
}

void QSBackup::restore(const QByteArray &bytes, QSStore &store)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    restore(stageFrom(buffer, store.url(), {}, {}), store);
}

QSBackup::Staged QSBackup::stage(const QUrl &backup, const QUrl &database, const Progress &progress,
                                 const std::stop_token &stop)
{
    QFile file(backup.toLocalFile());
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        throw QSError::io(u"The backup could not be read: "_s + file.errorString());
    }
    return stageFrom(file, database, progress, stop);
}

void QSBackup::restore(const Staged &staged, QSStore &store)
{
    store.finishRestore(); // of an earlier one
    store.db().transaction([&] { replaceAll(store.db(), staged.file, *staged.folder); });
    staged.folder->keep();
    try {
        store.rebuildSearchIndex();
    } catch (const QSError &error) {
        // The next start makes it anew.
        qWarning("The search index could not be filled: %s", error.what());
    }
    const auto tell = qScopeGuard([&store] { store.touch(); });
    store.finishRestore();
}
