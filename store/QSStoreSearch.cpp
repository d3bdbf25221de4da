#include "QSStore.h"

#include "QSDirectory.h"
#include "QSError.h"
#include "QSMutation.h"
#include "QSTemplates.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::Literals::StringLiterals;

namespace {
const QString createSearch =
    u"CREATE VIRTUAL TABLE IF NOT EXISTS search USING fts5(kind UNINDEXED, ref UNINDEXED, title, body, tokenize='porter unicode61')"_s;
/// 16 MB for the words of a rebuild, which are then written once instead of merged again and again.
const QString holdWordsInMemory =
    u"INSERT INTO search (search, rank) VALUES ('hashsize', 16777216)"_s;
const QString insertForm =
    u"INSERT INTO search (kind, ref, title, body) VALUES ('form', ?, ?, ?)"_s;
const QString insertTemplate =
    u"INSERT INTO search (kind, ref, title, body) VALUES ('template', ?, ?, ?)"_s;
const QString insertDocument =
    u"INSERT INTO search (kind, ref, title, body) VALUES ('document', ?, ?, ?)"_s;

/// The three texts of a search row: ref, title and body.
QList<SQLArg> searchRow(const QSDirectory &directory, const QSEntry &entry)
{
    const QSJurisdiction *place = directory.jurisdiction(entry.j);
    const QStringList words = {place != nullptr ? place->name : entry.j,
                               QSCategories::info(entry.cat).title.toString(),
                               entry.agency,
                               entry.number,
                               entry.note,
                               QSKinds::info(entry.kind).label.toString()};
    return {entry.id, entry.displayTitle(), words.join(u' ')};
}

QList<SQLArg> searchRow(const QSTemplate &form)
{
    QStringList words = {form.category, form.summary, form.keywords, form.info};
    for (const QSField &field : form.fields) {
        words.append(field.label);
    }
    return {form.id, form.title, words.join(u' ')};
}

/// For a row of id, template id, title and values. The values go straight from the JSON into the
/// body: with thousands of documents at every start, a map for each would be felt.
QList<SQLArg> searchRow(const SQLStatement &document)
{
    const QString templateID = document.text(1);
    const QSTemplate *form = QSTemplates::templateById(templateID);
    QString body = form != nullptr ? form->title : templateID;
    const QByteArrayView json = document.utf8(3);
    const QJsonObject values =
        QJsonDocument::fromJson(QByteArray::fromRawData(json.data(), json.size())).object();
    for (const QJsonValueConstRef value : values) {
        body.append(u' ').append(value.toString());
    }
    body.replace(QChar::Null, u' '); // SQLite would end the text there
    return {QString::number(document.integer(0)), document.text(2), body};
}

QSSearchHit::Kind hitKind(const QString &word)
{
    if (word == "document"_L1) {
        return QSSearchHit::Kind::document;
    }
    return word == "template"_L1 ? QSSearchHit::Kind::template_ : QSSearchHit::Kind::form;
}
} // namespace

void QSStore::createSearchIndex()
{
    try {
        // A rebuild keeps its pages and what it would need to undo them in memory.
        m_db.exec(u"PRAGMA cache_size = -32000; PRAGMA temp_store = MEMORY"_s);
        m_db.exec(createSearch);
        // A table left by an SQLite that has FTS5 is also there for one that has not.
        (void)m_db.prepare(u"SELECT ref FROM search"_s);
        m_hasFTS5 = true;
    } catch (const QSError &error) {
        // The program is worth having without its search.
        qWarning("There is no search: %s", error.what());
    }
}

void QSStore::fillSearchIndex()
{
    if (m_indexIsFilled) {
        return;
    }
    try {
        rebuildSearchIndex();
    } catch (const QSError &error) {
        // A search finds what the index held before.
        qWarning("The search index could not be filled: %s", error.what());
    }
}

void QSStore::rebuildSearchIndex()
{
    if (!m_hasFTS5) {
        return;
    }
    m_db.transaction([this] {
        // Far quicker than taking 10,000 rows out of the index one by one.
        m_db.exec(u"DROP TABLE IF EXISTS search"_s);
        m_db.exec(createSearch);
        m_db.exec(holdWordsInMemory);
        indexForms();
        indexTemplates();
        indexDocuments();
    });
    m_indexIsFilled = true;
}

void QSStore::indexForms()
{
    const QSDirectory &directory = QSDirectory::shared();
    SQLStatement insert = m_db.prepare(insertForm);
    for (const QSEntry &entry : directory.entries) {
        insert.bind(searchRow(directory, entry));
        insert.step();
    }
}

void QSStore::indexTemplates()
{
    SQLStatement insert = m_db.prepare(insertTemplate);
    for (const QSTemplate &form : QSTemplates::all()) {
        insert.bind(searchRow(form));
        insert.step();
    }
}

void QSStore::indexDocuments()
{
    indexDocuments(m_db.prepare(u"SELECT id, template_id, title, values_json FROM documents"_s));
}

void QSStore::indexDocuments(SQLStatement documents)
{
    SQLStatement insert = m_db.prepare(insertDocument);
    while (documents.step()) {
        insert.bind(searchRow(documents));
        insert.step();
    }
}

void QSStore::indexDocument(qint64 id)
{
    unindexDocument(id);
    SQLStatement document =
        m_db.prepare(u"SELECT id, template_id, title, values_json FROM documents WHERE id = ?"_s);
    document.bind({id});
    indexDocuments(std::move(document));
}

void QSStore::unindexDocument(qint64 id)
{
    m_db.run(u"DELETE FROM search WHERE kind = 'document' AND ref = ?"_s, {QString::number(id)});
}

QList<QSSearchHit> QSStore::search(const QString &text, int limit)
{
    const QString query = ftsQuery(text);
    if (query.isEmpty() || !m_hasFTS5) {
        return {};
    }
    fillSearchIndex();
    QList<QSSearchHit> hits;
    try {
        SQLStatement statement =
            m_db.prepare(u"SELECT kind, ref, title, snippet(search, 3, '', '', ' … ', 12) AS snip "
                         u"FROM search WHERE search MATCH ?\n"
                         "ORDER BY %1 LIMIT ?"_s.arg(QSMutation::on(u"search-unranked")
                                                         ? u"rowid"_s
                                                         : u"bm25(search, 0.0, 0.0, 5.0, 1.0)"_s));
        statement.bind({query, limit});
        while (statement.step()) {
            hits.append({hitKind(statement.text(0)), statement.text(1), statement.text(2),
                         statement.text(3)});
        }
    } catch (const QSError &error) {
        qWarning("A search failed: %s", error.what());
        return {};
    }
    return hits;
}

QString QSStore::ftsQuery(const QString &text)
{
    const QList<uint> characters = text.toLower().toUcs4();
    QStringList terms;
    QString word;
    bool spelled = false; // the word has more to it than combining marks
    const auto endWord = [&] {
        if (spelled) {
            terms.append(u'"' + word + u"\"*"_s);
        }
        word.clear();
        spelled = false;
    };
    for (const uint character : characters) {
        const bool alphanumeric = QChar::isLetterOrNumber(character);
        // Marks stay with their letter: the index does not see a word's end there either.
        if (alphanumeric || QChar::isMark(character)) {
            word += QChar::fromUcs4(character);
            spelled = spelled || alphanumeric;
        } else {
            endWord();
        }
    }
    endWord();
    terms.removeDuplicates(); // they ask for nothing more, and FTS5 gets slow over thousands
    return terms.join(u" AND ");
}
