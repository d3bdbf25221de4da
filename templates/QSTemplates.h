#pragma once

#include "QSTemplate.h"

#include <QDir>

/// The catalogue of shipped templates. all(), loadProblems() and templateById() read the resources
/// once, on first use and on whichever thread that is; what they return lives as long as the
/// program.
namespace QSTemplates {
/// What a folder of template files holds.
struct Catalogue
{
    QList<QSTemplate> templates; ///< in plain order of file names
    QStringList problems;        ///< one line for each file that was left out
};
/// Reads every "qstemplate" file of a folder. Never throws: what does not load becomes a problem
/// that begins with the file's name, be it a file that does not parse, can't be read, is larger
/// than 1 MiB or no UTF-8, or one whose id an earlier file has. A folder that can't be listed
/// counts as missing.
[[nodiscard]] Catalogue load(const QDir &folder);

[[nodiscard]] const QList<QSTemplate> &all();
[[nodiscard]] const QStringList &loadProblems();
/// Null when this version of the program has no template of that id.
[[nodiscard]] const QSTemplate *templateById(QStringView id);
} // namespace QSTemplates
