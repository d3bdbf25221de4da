#pragma once

#include <QDir>
#include <QString>
#include <QUrl>

#include <optional>

/// Fixed facts of the program and the places where it finds and keeps its files.
///
/// A namespace, without state of its own but the two overrides, which only start-up and tests set,
/// on the main thread and before anything reads them. Everything else may be called on any thread.
namespace QSInfo {
/// The product's name in the window title, the About box and messages.
inline const QString appName = QStringLiteral("Vell Quillstone");
/// Closes every rendered template.
inline const QString templateNote =
    QStringLiteral("Template, not legal advice. Laws vary by state; review with an attorney for "
                   "important matters.");
inline const QString shortDisclaimer =
    QStringLiteral("Vell Quillstone gives no legal advice. It provides official government forms "
                   "(downloaded from the official sites) and plain-English templates. Laws vary "
                   "by state.");
inline const QString creditLine = QStringLiteral("Made by Vell.");
inline const QUrl website = QUrl(QStringLiteral("https://vell.example/quillstone"));

/// Days after which a directory entry's hand check counts as stale.
inline constexpr int staleAfterDays = 120;
/// Days after which a downloaded form is checked again with its agency's site.
inline constexpr int recheckAfterDays = 7;

/// The program's version, "1.0" at least.
QString version();

/// Replaces the data folder, for runs that must leave the user's own data alone; nullopt ends that.
void setDataFolderOverride(const std::optional<QString> &path);

/// Where the user's data is: the override, else the environment's QS_DATA_DIR, else
/// "Vell Quillstone" in the user's application data. Created when missing, readable by its owner
/// only; a failure to create it shows when something is opened in it.
QDir dataFolder();
/// "Quillstone.sqlite" in the data folder.
QUrl databaseURL();
/// Downloaded official forms; created when missing.
QDir cacheFolder();
/// Filled copies of official forms; created when missing.
QDir filledFolder();
/// What is typed and not saved; created when missing.
QDir draftsFolder();

/// Replaces the folder with the shipped resources; nullopt ends that.
void setResourceFolderOverride(const std::optional<QString> &path);
/// The folder with "data", "templates" and "icons": "resources" beside the executable, or
/// "share/quillstone" of the install prefix. Absent when neither exists.
std::optional<QDir> resourceFolder();
} // namespace QSInfo
