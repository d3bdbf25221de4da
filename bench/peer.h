#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

struct sqlite3;
struct sqlite3_stmt;

/// A row of the search index.
struct PeerRow
{
    const char *kind;
    const char *ref;
    const char *title;
    const char *body;
};

/// What QSStore is measured against: the same work by SQLite's own functions. Every function prints
/// SQLite's message and ends the program when something fails.

/// Opens a database as QSStore does.
struct sqlite3 *peer_open(const char *path);
void peer_close(struct sqlite3 *db);

/// Makes the search index anew and puts the rows into it, in one transaction.
void peer_rebuild(struct sqlite3 *db, const char *create, const struct PeerRow *rows, size_t count);

/// The query of QSStore::search() for an FTS5 expression.
struct sqlite3_stmt *peer_prepare(struct sqlite3 *db, const char *expression, int limit);
void peer_finalize(struct sqlite3_stmt *search);
/// Reads every text of every row; returns how many bytes they were.
size_t peer_search(struct sqlite3_stmt *search);
/// The refs in their order, a line each; to be given to free().
char *peer_refs(struct sqlite3_stmt *search);

#ifdef __cplusplus
}
#endif
