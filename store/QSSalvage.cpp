#include "QSSalvage.h"

#include "QSError.h"
#include "SQLiteDB.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {
/// Where the end of a table can't be read, rows are looked for up to here.
constexpr qint64 farthestID = 1'000'000;
/// So many ids one by one that can't be read, and a table's rest is given up: on a damaged last
/// page all ids seem to be, up to the farthest.
constexpr int mostFailures = 20'000;

/// Copies the rows of one table whose rowids are in a range.
class Copier final
{
public:
    Copier(SQLiteDB &db, const QString &table, const QString &columns)
        : m_readRow(db.prepare(u"SELECT %1 FROM damaged.%2 WHERE rowid = ?"_s.arg(columns, table))),
          m_copyRow(db.prepare(insert(table, columns) + u"rowid = ?"_s)),
          // By rowid, so that no index is asked, which may be what is damaged.
          m_copyRange(db.prepare(insert(table, columns) + u"rowid BETWEEN ? AND ?"_s))
    {
    }

    /// Where a range can't be read to its end, halves it, the lower half first, down to the rows
    /// that are lost. Some of them are copied again then, which changes nothing.
    void copy(qint64 first, qint64 last)
    {
        if (first > last || m_failures >= mostFailures) {
            return;
        }
        if (first == last) { // a range would want to see the row behind it
            copyRow(first);
        } else if (!isDone(m_copyRange, {first, last})) {
            const qint64 middle = first + (last - first) / 2;
            copy(first, middle);
            copy(middle + 1, last);
        }
    }

private:
    static QString insert(const QString &table, const QString &columns)
    {
        return u"INSERT OR IGNORE INTO main.%1 (%2) SELECT %2 FROM damaged.%1 WHERE "_s.arg(
            table, columns);
    }

    static void run(SQLStatement &statement, const QList<SQLArg> &args)
    {
        statement.bind(args);
        if (statement.step()) {
            (void)statement.row();
        }
        statement.reset();
    }

    static bool isDone(SQLStatement &statement, const QList<SQLArg> &args)
    {
        try {
            run(statement, args);
            return true;
        } catch (const QSError &) {
            return false;
        }
    }

    void copyRow(qint64 id)
    {
        try {
            run(m_copyRow, {id});
        } catch (const QSError &) {
            if (isDone(m_readRow, {id})) {
                throw; // so it is the writing that failed
            }
            ++m_failures;
        }
    }

    SQLStatement m_readRow;
    SQLStatement m_copyRow;
    SQLStatement m_copyRange;
    int m_failures = 0;
};

qint64 lastID(SQLiteDB &db, const QString &table)
{
    try {
        const QList<SQLRow> rows =
            db.query(u"SELECT max(rowid) AS last FROM damaged.%1"_s.arg(table));
        return rows.constFirst().intValue(u"last"_s).value_or(0);
    } catch (const QSError &) {
        return farthestID;
    }
}

void copyTable(SQLiteDB &db, const QString &table, const QString &columns)
{
    Copier(db, table, columns).copy(1, lastID(db, table));
}

/// known: statements that count the rows of the damaged table; the first that can is believed.
QSSalvage::Part part(SQLiteDB &db, const QString &saved, const QStringList &known)
{
    QSSalvage::Part counted{.saved = db.scalarInt(saved)};
    for (const QString &count : known) {
        if (counted.total == 0) {
            counted.total = db.scalarInt(count);
        }
    }
    counted.total = std::max(counted.saved, counted.total);
    return counted;
}

/// The note of a restore whose PDFs are not in their place yet: without it, they would be taken for
/// leftovers and removed.
void copyPendingRestore(SQLiteDB &db)
{
    if (db.scalarInt(u"SELECT count(*) FROM damaged.sqlite_master "
                     "WHERE name = 'pending_restore'"_s) > 0) {
        db.exec(u"CREATE TABLE pending_restore AS SELECT * FROM damaged.pending_restore"_s);
    }
}
} // namespace

std::optional<QString> QSSalvage::problem(const QString &path)
{
    try {
        SQLiteDB db(path, true);
        SQLStatement check = db.prepare(u"PRAGMA quick_check(1)"_s);
        check.step();
        const QString found = check.text(0);
        return found == "ok"_L1 ? std::nullopt : std::optional(found);
    } catch (const QSError &error) {
        return error.payload(); // so damaged that the check itself ended
    }
}

QSSalvage::Result QSSalvage::copy(const QString &damaged, SQLiteDB &empty)
{
    empty.run(u"ATTACH ? AS damaged"_s, {damaged});
    // No transaction around it: a disk that can't read a page makes SQLite roll all of one back.
    copyTable(empty, u"documents"_s,
              u"id, template_id, template_version, title, values_json, state, created, modified"_s);
    copyTable(empty, u"filled_pdfs"_s, u"id, entry_id, title, file_name, created, modified"_s);
    copyTable(empty, u"profile"_s, u"key, value"_s);
    copyTable(empty, u"link_checks"_s,
              u"url, checked, status, ok, final_url, content_type, note"_s);
    copyPendingRestore(empty);
    // The search index has a row for each document and pages of its own.
    Result result = {.documents =
                         part(empty, u"SELECT count(*) FROM main.documents"_s,
                              {u"SELECT count(*) FROM damaged.documents"_s,
                               u"SELECT count(*) FROM damaged.search WHERE kind = 'document'"_s}),
                     .filledPDFs = part(empty, u"SELECT count(*) FROM main.filled_pdfs"_s,
                                        {u"SELECT count(*) FROM damaged.filled_pdfs"_s}),
                     .answers = part(empty, u"SELECT count(*) FROM main.profile"_s,
                                     {u"SELECT count(*) FROM damaged.profile"_s})};
    empty.exec(u"DETACH damaged"_s);
    return result;
}
