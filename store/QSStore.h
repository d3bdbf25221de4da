#pragma once

#include "QSDatabaseFile.h"
#include "SQLiteDB.h"

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <QUrl>

#include <memory>
#include <optional>

struct QSTemplate;

/// A document made from a template. The id is absent until it is first saved.
struct QSDocument
{
    std::optional<qint64> id;
    QString templateID;
    QString templateVersion; ///< the template's version at the last save
    QString title;           ///< the user's name for it
    QMap<QString, QString> values;
    QString state; ///< code of the jurisdiction chosen for it, empty when none
    QDateTime created;
    QDateTime modified;

    bool operator==(const QSDocument &) const = default;

    /// The values as the database keeps them: a JSON object of texts.
    [[nodiscard]] static QString valuesToJSON(const QMap<QString, QString> &values);
    /// Empty for anything but an object of texts.
    [[nodiscard]] static QMap<QString, QString> valuesFromJSON(const QByteArray &json);
};

/// What a list shows of a saved document. A document's answers are most of it.
struct QSDocumentHead
{
    qint64 id = 0;
    QString templateID;
    QString title;
    QDateTime modified;

    bool operator==(const QSDocumentHead &) const = default;
};

/// A filled copy of an official form; the PDF is a file of its own in the "Filled PDFs" folder.
struct QSFilledPDF
{
    std::optional<qint64> id;
    QString entryID;
    QString title;
    QString fileName;
    QDateTime created;
    QDateTime modified;

    bool operator==(const QSFilledPDF &) const = default;

    /// A file name that nothing else has.
    [[nodiscard]] static QString newFileName();
};

/// What the latest check of an official link found.
struct QSLinkCheck
{
    QString url;
    QDateTime checked;
    int status = 0;
    bool ok = false;
    QString finalURL;
    QString contentType;
    QString note;

    bool operator==(const QSLinkCheck &) const = default;
};

/// One result of a search over forms, templates and documents.
struct QSSearchHit
{
    enum class Kind { form, template_, document };

    Kind kind = Kind::form;
    QString ref; ///< entry id, template id, or the document's id in decimal
    QString title;
    QString snippet;

    bool operator==(const QSSearchHit &) const = default;
};

/// The one documents database: profile, documents, records of filled PDFs, link checks, and the
/// full-text index over them, the shipped forms and the templates.
///
/// It owns its connection. Main thread only. Failures are thrown as QSError, except where a
/// function says otherwise. revision() rises with every change that screens show.
class QSStore final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int revision READ revision NOTIFY revisionChanged)

public:
    static constexpr qint64 applicationID = QSDatabaseFile::applicationID;
    static constexpr int schemaVersion = QSDatabaseFile::schemaVersion;

    /// When an opened database's search index is filled anew, so that it matches the directory and
    /// the templates of the running version.
    enum class Indexing {
        now,  ///< before the constructor returns
        later ///< by fillSearchIndex(), or by the first search before that
    };

    /// Opens the database or creates it, for its owner's eyes only, and brings one of an older
    /// version up to this one. A database of another program or of a newer version is refused and
    /// left as it was.
    explicit QSStore(const QUrl &url, Indexing indexing = Indexing::now);
    ~QSStore() override;

    /// The store that the program works on; null when no database could be opened.
    [[nodiscard]] static QSStore *shared();
    static void setShared(std::unique_ptr<QSStore> store);

    [[nodiscard]] int revision() const { return m_revision; }
    /// Tells the screens that what they show has changed.
    void touch();
    [[nodiscard]] SQLiteDB &db() { return m_db; }
    [[nodiscard]] const QUrl &url() const { return m_url; }
    /// False where SQLite comes without FTS5: all but the search works.
    [[nodiscard]] bool hasFTS5() const { return m_hasFTS5; }

    [[nodiscard]] QMap<QString, QString> profile();
    void saveProfile(const QMap<QString, QString> &profile);

    /// All documents, latest change first.
    [[nodiscard]] QList<QSDocument> documents();
    /// The same without their answers.
    [[nodiscard]] QList<QSDocumentHead> documentHeads();
    [[nodiscard]] std::optional<QSDocument> document(qint64 id);
    /// Inserts or updates the document and its search row as one change, and returns it as saved.
    QSDocument save(const QSDocument &document);
    void deleteDocument(qint64 id);

    /// All records, latest change first.
    [[nodiscard]] QList<QSFilledPDF> filledPDFs();
    /// Writes the PDF's bytes to the "Filled PDFs" folder and its record to the database; with a
    /// record to replace, over that record's file. Throws QSError::notFound, with nothing written,
    /// when that record is gone.
    QSFilledPDF saveFilledPDF(const QString &entryID, const QString &title, const QByteArray &data,
                              const std::optional<QSFilledPDF> &replacing = std::nullopt);
    /// Deletes the record, then its file; a file that can't be removed is no failure.
    void deleteFilledPDF(const QSFilledPDF &record);

    /// Puts the filled PDFs of a restore in their place, if the database has those of one that was
    /// cut short. Opening the database does this, and so does saveFilledPDF().
    void finishRestore();

    /// Errors are ignored: a check that can't be recorded is checked again.
    void recordLinkCheck(const QSLinkCheck &check);
    /// All of them or none; throws why not.
    void recordLinkChecks(const QList<QSLinkCheck> &checks);
    [[nodiscard]] QList<QSLinkCheck> linkChecks();

    /// Forms, templates and documents in which every word of the text begins a word, best first.
    /// Empty for a text without letters or digits, without FTS5, and on any SQLite error.
    [[nodiscard]] QList<QSSearchHit> search(const QString &text, int limit = 60);
    /// The FTS5 expression for a user's text: only quoted prefixes of letters and digits, so that
    /// nothing typed reaches FTS5's own syntax.
    [[nodiscard]] static QString ftsQuery(const QString &text);
    /// Fills the index if that was put off when the database was opened.
    void fillSearchIndex();
    /// Fills the index from scratch, in a transaction of its own: directory, catalogue, documents.
    /// Does nothing without FTS5.
    void rebuildSearchIndex();

Q_SIGNALS:
    void revisionChanged(int revision);

private:
    void createSchema();
    void runSteps();
    void createSearchIndex();
    void indexForms();
    void indexTemplates();
    void indexDocuments();
    void indexDocuments(SQLStatement documents);
    void indexDocument(qint64 id);
    void unindexDocument(qint64 id);

    /// Writes the document's row; the document as the database now has it.
    QSDocument write(const QSDocument &draft);
    QSFilledPDF insertFilledPDF(QSFilledPDF record, const QByteArray &data);
    QSFilledPDF replaceFilledPDF(const QSFilledPDF &replaced, const QString &title,
                                 const QByteArray &data, const QDateTime &now);

    SQLiteDB m_db;
    QUrl m_url;
    bool m_hasFTS5 = false;
    bool m_indexIsFilled = false;
    int m_revision = 0;
};
