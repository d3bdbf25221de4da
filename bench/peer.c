#include "peer.h"

#include <sqlite3.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void check(sqlite3 *db, int result, int wanted)
{
    if (result != wanted) {
        fprintf(stderr, "peer: %s\n", sqlite3_errmsg(db));
        exit(1);
    }
}

static void execute(sqlite3 *db, const char *sql)
{
    check(db, sqlite3_exec(db, sql, NULL, NULL, NULL), SQLITE_OK);
}

sqlite3 *peer_open(const char *path)
{
    sqlite3 *db = NULL;
    check(db, sqlite3_open(path, &db), SQLITE_OK);
    execute(db, "PRAGMA foreign_keys = ON; PRAGMA journal_mode = WAL");
    return db;
}

void peer_close(sqlite3 *db)
{
    sqlite3_close(db);
}

void peer_rebuild(sqlite3 *db, const char *create, const struct PeerRow *rows, size_t count)
{
    execute(db, "BEGIN IMMEDIATE; DROP TABLE IF EXISTS search");
    execute(db, create);
    sqlite3_stmt *insert = NULL;
    check(db,
          sqlite3_prepare_v2(db, "INSERT INTO search (kind, ref, title, body) VALUES (?, ?, ?, ?)",
                             -1, &insert, NULL),
          SQLITE_OK);
    for (size_t i = 0; i < count; ++i) {
        sqlite3_bind_text(insert, 1, rows[i].kind, -1, SQLITE_STATIC);
        sqlite3_bind_text(insert, 2, rows[i].ref, -1, SQLITE_STATIC);
        sqlite3_bind_text(insert, 3, rows[i].title, -1, SQLITE_STATIC);
        sqlite3_bind_text(insert, 4, rows[i].body, -1, SQLITE_STATIC);
        check(db, sqlite3_step(insert), SQLITE_DONE);
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    execute(db, "COMMIT");
}

sqlite3_stmt *peer_prepare(sqlite3 *db, const char *expression, int limit)
{
    static const char sql[] =
        "SELECT kind, ref, title, snippet(search, 3, '', '', ' \xE2\x80\xA6 ', 12) AS snip "
        "FROM search WHERE search MATCH ? ORDER BY bm25(search, 0.0, 0.0, 5.0, 1.0) LIMIT ?";
    sqlite3_stmt *search = NULL;
    check(db, sqlite3_prepare_v2(db, sql, -1, &search, NULL), SQLITE_OK);
    sqlite3_bind_text(search, 1, expression, -1, SQLITE_TRANSIENT);
    sqlite3_bind_int(search, 2, limit);
    return search;
}

void peer_finalize(sqlite3_stmt *search)
{
    sqlite3_finalize(search);
}

size_t peer_search(sqlite3_stmt *search)
{
    size_t bytes = 0;
    int result = SQLITE_DONE;
    while ((result = sqlite3_step(search)) == SQLITE_ROW) {
        for (int column = 0; column < 4; ++column) {
            bytes += strlen((const char *)sqlite3_column_text(search, column));
        }
    }
    check(sqlite3_db_handle(search), result, SQLITE_DONE);
    sqlite3_reset(search);
    return bytes;
}

char *peer_refs(sqlite3_stmt *search)
{
    sqlite3_str *refs = sqlite3_str_new(NULL);
    while (sqlite3_step(search) == SQLITE_ROW) {
        sqlite3_str_appendf(refs, "%s\n", sqlite3_column_text(search, 1));
    }
    sqlite3_reset(search);
    char *joined = sqlite3_str_finish(refs);
    char *copy = joined != NULL ? strdup(joined) : NULL;
    sqlite3_free(joined);
    return copy;
}
