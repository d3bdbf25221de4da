#pragma once

#include <QString>

/// The documents database as a file: whose it is, and who may read it.
namespace QSDatabaseFile {
/// "QSD1", the application id in the header of every database of the program.
inline constexpr qint64 applicationID = 1364411441;
/// The user version in that header: of the newest schema that this version of the program knows.
inline constexpr int schemaVersion = 1;

/// Makes sure that SQLite may open the path as the documents database: creates a missing file and
/// its folder, and keeps the file to its owner. Throws QSError::invalid for a database of another
/// program or of a newer version of this one, QSError::database for anything else that is none of
/// ours, and QSError::io when the disk refuses. What it throws for is left exactly as it was, down
/// to the journals beside it, and so is one of ours that is damaged. The file must not be open in
/// this process: closing any descriptor of it drops the locks of all.
void prepare(const QString &path);

/// Gives one database the other's path and keeps that one under the new path, which nothing may
/// have yet. At every moment there is a database under the path. Throws QSError::io with both as
/// they were. Neither may be open, all in the same folder.
void replace(const QString &path, const QString &by, const QString &keptAs);
} // namespace QSDatabaseFile
