#pragma once

#include <QString>

/// The documents database as a file: whose it is, and who may read it.
namespace QSDatabaseFile {
/// "QSD1", the application id in the header of every database of the program.
inline constexpr qint64 applicationID = 1364411441;

/// Makes sure that SQLite may open the path as the documents database: creates a missing file and
/// its folder, and keeps the file to its owner. Throws QSError::invalid for another program's
/// database and QSError::database for anything else that is none of ours; either is left exactly
/// as it was, down to the journals beside it, and so is one of ours that is damaged. The file must
/// not be open in this process: closing any descriptor of it drops the locks of all.
void prepare(const QString &path);
} // namespace QSDatabaseFile
