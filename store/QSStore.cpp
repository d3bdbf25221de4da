#include "QSStore.h"

#include "QSClock.h"
#include "QSDatabaseFile.h"
#include "QSError.h"
#include "QSFile.h"
#include "QSInfo.h"
#include "QSMutation.h"
#include "QSRestoreFolder.h"
#include "QSTemplates.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Each brings a database from the version that is its place in this list to the next one. They run
/// in one transaction with the stamp of the version they lead to.
constexpr std::array<QStringView, QSStore::schemaVersion> schemaSteps = {
    u"CREATE TABLE IF NOT EXISTS profile (key TEXT PRIMARY KEY, value TEXT NOT NULL);\n"
    "CREATE TABLE IF NOT EXISTS documents (id INTEGER PRIMARY KEY, template_id TEXT NOT NULL, "
    "template_version TEXT NOT NULL,\n"
    "    title TEXT NOT NULL, values_json TEXT NOT NULL, state TEXT NOT NULL DEFAULT '', "
    "created REAL NOT NULL, modified REAL NOT NULL);\n"
    "CREATE TABLE IF NOT EXISTS filled_pdfs (id INTEGER PRIMARY KEY, entry_id TEXT NOT NULL, "
    "title TEXT NOT NULL,\n"
    "    file_name TEXT NOT NULL UNIQUE, created REAL NOT NULL, modified REAL NOT NULL);\n"
    "CREATE TABLE IF NOT EXISTS link_checks (url TEXT PRIMARY KEY, checked REAL NOT NULL, "
    "status INTEGER NOT NULL, ok INTEGER NOT NULL,\n"
    "    final_url TEXT NOT NULL DEFAULT '', content_type TEXT NOT NULL DEFAULT '', note TEXT "
    "NOT NULL DEFAULT '');"};

QString preparedPath(const QUrl &url)
{
    if (!url.isLocalFile()) {
        throw QSError::invalid(u"\"%1\" is not a file on this computer."_s.arg(url.toString()));
    }
    QSDatabaseFile::prepare(url.toLocalFile());
    return url.toLocalFile();
}

std::unique_ptr<QSStore> &sharedStore()
{
    static std::unique_ptr<QSStore> store;
    return store;
}

/// A column of seconds since 1970 as a point in time, to the millisecond. A file from elsewhere
/// may hold any number; the limit is some 300,000 years away.
QDateTime pointInTime(const SQLRow &row, const QString &column)
{
    constexpr double limit = 1e13;
    const double seconds = std::clamp(row.doubleValue(column).value_or(0), -limit, limit);
    return QDateTime::fromMSecsSinceEpoch(std::llround(seconds * 1000), Qt::UTC);
}

QSDocument documentFrom(const SQLRow &row)
{
    return {.id = row.intValue(u"id"_s),
            .templateID = row.string(u"template_id"_s),
            .templateVersion = row.string(u"template_version"_s),
            .title = row.string(u"title"_s),
            .values = QSDocument::valuesFromJSON(row.string(u"values_json"_s).toUtf8()),
            .state = row.string(u"state"_s),
            .created = pointInTime(row, u"created"_s),
            .modified = pointInTime(row, u"modified"_s)};
}

QSDocumentHead documentHeadFrom(const SQLRow &row)
{
    return {.id = row.intValue(u"id"_s).value_or(0),
            .templateID = row.string(u"template_id"_s),
            .title = row.string(u"title"_s),
            .modified = pointInTime(row, u"modified"_s)};
}

QSFilledPDF filledPDFFrom(const SQLRow &row)
{
    return {.id = row.intValue(u"id"_s),
            .entryID = row.string(u"entry_id"_s),
            .title = row.string(u"title"_s),
            .fileName = row.string(u"file_name"_s),
            .created = pointInTime(row, u"created"_s),
            .modified = pointInTime(row, u"modified"_s)};
}

QSLinkCheck linkCheckFrom(const SQLRow &row)
{
    return {.url = row.string(u"url"_s),
            .checked = pointInTime(row, u"checked"_s),
            .status = static_cast<int>(row.intValue(u"status"_s).value_or(0)),
            .ok = row.boolValue(u"ok"_s),
            .finalURL = row.string(u"final_url"_s),
            .contentType = row.string(u"content_type"_s),
            .note = row.string(u"note"_s)};
}

/// The text as it can be bound: SQLite would end it at a NUL, and drop what follows.
QString storable(QString text)
{
    return text.remove(QChar::Null);
}

template <typename Record>
QList<Record> records(SQLStatement statement, Record (*from)(const SQLRow &))
{
    QList<Record> all;
    while (statement.step()) {
        all.append(from(statement.row()));
    }
    return all;
}

/// Where a filled PDF is. Whatever the record says, it is a file of that one folder.
QString filledPath(const QString &fileName)
{
    return QSInfo::filledFolder().filePath(QFileInfo(fileName).fileName());
}

void writePDF(const QString &path, const QByteArray &data)
{
    try {
        QSFile::write(path, data, QSFile::Readers::owner);
    } catch (const QSError &error) {
        throw QSError::io(u"The PDF could not be saved: "_s + error.payload());
    }
}
} // namespace

QString QSDocument::valuesToJSON(const QMap<QString, QString> &values)
{
    QJsonObject object;
    for (auto value = values.cbegin(); value != values.cend(); ++value) {
        object.insert(value.key(), value.value());
    }
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QMap<QString, QString> QSDocument::valuesFromJSON(const QByteArray &json)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    QMap<QString, QString> values;
    for (auto value = object.begin(); value != object.end(); ++value) {
        if (!value->isString()) {
            return {};
        }
        values.insert(values.cend(), value.key(), value->toString());
    }
    return values;
}

QString QSFilledPDF::newFileName()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper() + u".pdf"_s;
}

QSStore::QSStore(const QUrl &url, Indexing indexing) : m_db(preparedPath(url)), m_url(url)
{
    createSchema();
    try {
        finishRestore();
        QSRestoreFolder::clearLeftovers(m_db.path());
    } catch (const QSError &error) {
        // It is tried again before the next filled PDF is saved.
        qWarning("A restore could not be finished: %s", error.what());
    }
    createSearchIndex();
    if (indexing == Indexing::now) {
        fillSearchIndex();
    }
}

QSStore::~QSStore() = default;

QSStore *QSStore::shared()
{
    return sharedStore().get();
}

void QSStore::setShared(std::unique_ptr<QSStore> store)
{
    sharedStore() = std::move(store);
}

void QSStore::touch()
{
    ++m_revision;
    Q_EMIT revisionChanged(m_revision);
}

void QSStore::createSchema()
{
    // The id first and by itself, so that it is in the file and not in a journal alone.
    m_db.exec(u"PRAGMA application_id = %1; PRAGMA journal_mode = WAL"_s.arg(applicationID));
    m_db.transaction([this] { runSteps(); });
    if (QSMutation::on(u"opening-forgets-profile")) {
        m_db.run(u"DELETE FROM profile"_s);
    }
    if (QSMutation::on(u"opening-forgets-documents")) {
        m_db.run(u"DELETE FROM documents"_s);
    }
}

void QSStore::runSteps()
{
    // The first step does no harm where its tables are, so a database of version 1 has them all,
    // too. A file without tables may have any version.
    const qint64 version = m_db.scalarInt(u"PRAGMA user_version"_s);
    const qint64 first = version > 1 && version <= schemaVersion ? version : 0;
    for (qint64 step = first; step < schemaVersion; ++step) {
        m_db.exec(schemaSteps.at(static_cast<std::size_t>(step)).toString());
    }
    m_db.exec(u"PRAGMA user_version = %1"_s.arg(schemaVersion));
}

QMap<QString, QString> QSStore::profile()
{
    QMap<QString, QString> profile;
    const QList<SQLRow> rows = m_db.query(u"SELECT key, value FROM profile"_s);
    for (const SQLRow &row : rows) {
        profile.insert(row.string(u"key"_s), row.string(u"value"_s));
    }
    return profile;
}

void QSStore::saveProfile(const QMap<QString, QString> &profile)
{
    m_db.transaction([&] {
        m_db.run(u"DELETE FROM profile"_s);
        for (auto answer = profile.cbegin(); answer != profile.cend(); ++answer) {
            m_db.run(u"INSERT INTO profile (key, value) VALUES (?, ?)"_s,
                     {storable(answer.key()), storable(answer.value())});
        }
    });
    touch();
}

QList<QSDocument> QSStore::documents()
{
    return records(m_db.prepare(u"SELECT * FROM documents ORDER BY modified DESC, id DESC"_s),
                   documentFrom);
}

QList<QSDocumentHead> QSStore::documentHeads()
{
    return records(m_db.prepare(u"SELECT id, template_id, title, modified FROM documents "
                                "ORDER BY modified DESC, id DESC"_s),
                   documentHeadFrom);
}

std::optional<QSDocument> QSStore::document(qint64 id)
{
    const QList<SQLRow> rows = m_db.query(u"SELECT * FROM documents WHERE id = ?"_s, {id});
    return rows.isEmpty() ? std::nullopt : std::optional(documentFrom(rows.first()));
}

QSDocument QSStore::save(const QSDocument &document)
{
    QSDocument draft = document;
    draft.title = storable(draft.title).trimmed();
    draft.state = storable(draft.state);
    if (draft.title.isEmpty()) {
        throw QSError::invalid(u"Give the document a name."_s);
    }
    const QSTemplate *form = QSTemplates::templateById(draft.templateID);
    if (form == nullptr) {
        throw QSError::invalid(
            u"The template %1 is not in this version of the app."_s.arg(draft.templateID));
    }
    draft.templateVersion = form->version;
    draft.modified = QSClock::now();

    QSDocument saved;
    bool indexing = false;
    try {
        m_db.transaction([&] {
            saved = write(draft);
            if (m_indexIsFilled && !QSMutation::on(u"saved-document-not-indexed")) {
                indexing = true;
                indexDocument(*saved.id);
            }
        });
    } catch (const QSError &error) {
        if (!indexing) {
            throw;
        }
        // The document counts for more than its search row, which the next start makes anew.
        qWarning("A search row could not be written: %s", error.what());
        m_db.transaction([&] { saved = write(draft); });
    }
    touch();
    return saved;
}

QSDocument QSStore::write(const QSDocument &draft)
{
    const QString json = QSDocument::valuesToJSON(draft.values);
    std::optional<qint64> id = draft.id;
    if (id) {
        m_db.run(
            u"UPDATE documents SET template_version=?, title=?, values_json=?, state=?, modified=? WHERE id=?"_s,
            {draft.templateVersion, draft.title, json, draft.state, draft.modified, id});
        if (m_db.changes() == 0) {
            throw QSError::notFound();
        }
    } else {
        id = m_db.run(
            u"INSERT INTO documents (template_id, template_version, title, values_json, state, created, modified) VALUES (?,?,?,?,?,?,?)"_s,
            {draft.templateID, draft.templateVersion, draft.title, json, draft.state,
             draft.modified, draft.modified});
    }
    return this->document(*id).value();
}

void QSStore::deleteDocument(qint64 id)
{
    m_db.run(u"DELETE FROM documents WHERE id = ?"_s, {id});
    try {
        unindexDocument(id);
    } catch (const QSError &error) {
        // A row too many in the index goes with the next start.
        qWarning("A search row could not be deleted: %s", error.what());
    }
    touch();
}

QList<QSFilledPDF> QSStore::filledPDFs()
{
    return records(m_db.prepare(u"SELECT * FROM filled_pdfs ORDER BY modified DESC, id DESC"_s),
                   filledPDFFrom);
}

QSFilledPDF QSStore::saveFilledPDF(const QString &entryID, const QString &title,
                                   const QByteArray &data,
                                   const std::optional<QSFilledPDF> &replacing)
{
    if (!data.startsWith("%PDF")) {
        throw QSError::invalid(u"That is not a PDF."_s);
    }
    finishRestore(); // later it would put its file over this newer one
    const QDateTime now = QSClock::now();
    QSFilledPDF record = replacing ? replaceFilledPDF(*replacing, title, data, now)
                                   : insertFilledPDF({.id = {},
                                                      .entryID = storable(entryID),
                                                      .title = storable(title),
                                                      .fileName = QSFilledPDF::newFileName(),
                                                      .created = now,
                                                      .modified = now},
                                                     data);
    touch();
    return record;
}

QSFilledPDF QSStore::replaceFilledPDF(const QSFilledPDF &replaced, const QString &title,
                                      const QByteArray &data, const QDateTime &now)
{
    // The record as it is now: without it, nothing would ever lead back to the written file.
    const QList<SQLRow> rows =
        m_db.query(u"SELECT * FROM filled_pdfs WHERE id = ?"_s, {replaced.id});
    if (rows.isEmpty()) {
        throw QSError::notFound();
    }
    QSFilledPDF record = filledPDFFrom(rows.first());
    record.title = storable(title);
    record.modified = now;
    writePDF(filledPath(record.fileName), data);
    m_db.run(u"UPDATE filled_pdfs SET title=?, modified=? WHERE id=?"_s,
             {record.title, record.modified, record.id});
    return record;
}

QSFilledPDF QSStore::insertFilledPDF(QSFilledPDF record, const QByteArray &data)
{
    const QString path = filledPath(record.fileName);
    writePDF(path, data);
    try {
        record.id = m_db.run(
            u"INSERT INTO filled_pdfs (entry_id, title, file_name, created, modified) VALUES (?,?,?,?,?)"_s,
            {record.entryID, record.title, record.fileName, record.created, record.modified});
    } catch (const QSError &) {
        QFile::remove(path);
        throw;
    }
    return record;
}

void QSStore::finishRestore()
{
    QSRestoreFolder::finish(m_db);
}

void QSStore::deleteFilledPDF(const QSFilledPDF &record)
{
    m_db.run(u"DELETE FROM filled_pdfs WHERE id = ?"_s, {record.id});
    QFile::remove(filledPath(record.fileName));
    touch();
}

void QSStore::recordLinkCheck(const QSLinkCheck &check)
{
    try {
        recordLinkChecks({check});
    } catch (const QSError &error) {
        // Not worth a message: the link counts as unchecked.
        qWarning("The check of a link could not be recorded: %s", error.what());
    }
}

void QSStore::recordLinkChecks(const QList<QSLinkCheck> &checks)
{
    m_db.transaction([&] {
        SQLStatement record = m_db.prepare(
            u"INSERT OR REPLACE INTO link_checks (url, checked, status, ok, final_url, content_type, note) VALUES (?,?,?,?,?,?,?)"_s);
        for (const QSLinkCheck &check : checks) {
            record.bind({check.url, check.checked, check.status, check.ok, check.finalURL,
                         check.contentType, check.note});
            record.step();
        }
    });
}

QList<QSLinkCheck> QSStore::linkChecks()
{
    return records(m_db.prepare(u"SELECT * FROM link_checks"_s), linkCheckFrom);
}
