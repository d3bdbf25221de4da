#pragma once

#include <QString>

#include <optional>

class SQLiteDB;

/// What is left of a documents database that opens and is damaged inside. One page that can't be
/// read makes every list fail that comes by it, although most of the rows are still there.
namespace QSSalvage {
/// How much of a table could be read.
struct Part
{
    qint64 saved = 0;
    qint64 total = 0; ///< where nobody knows, what was saved
};

struct Result
{
    Part documents;
    Part filledPDFs;
    Part answers; ///< of the profile
};

/// What SQLite finds wrong first in the database at the path; absent when it is whole. Reads all of
/// the file over a read-only connection of its own. Any thread.
[[nodiscard]] std::optional<QString> problem(const QString &path);

/// Copies every row that can be read, with its id, from the database at the path to an empty one.
/// Nothing is written to the damaged one, which may be open. Throws QSError when the empty one
/// can't be written; what is in it by then is a part.
[[nodiscard]] Result copy(const QString &damaged, SQLiteDB &empty);
} // namespace QSSalvage
