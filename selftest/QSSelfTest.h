#pragma once

#include <QStringList>

#include <optional>

struct QSTestRun;

/// The program's own acceptance test and the modes around it. Each prints its result line by line
/// and returns the exit status of the process; all of them leave the user's data and preferences
/// alone. Main thread only, after QApplication.
namespace QSSelfTest {
inline const QString writeFlag = QStringLiteral("--qs-child-write");
inline const QString readFlag = QStringLiteral("--qs-child-read");

/// Runs all groups of checks against a throw-away data folder. 0 when all passed, else 1.
[[nodiscard]] int run();
/// Asks every official link, downloads the official PDFs and checks one of them again, with the
/// real network. 0 when all passed, else 1.
[[nodiscard]] int runNetwork();

/// Prints the totals; 1 when a check failed, else 0.
[[nodiscard]] int finish(const QSTestRun &run);

/// Whether the arguments hold a child flag with a path behind it.
[[nodiscard]] bool isChild(const QStringList &arguments);
/// Writes the sample into the database at the path behind the write flag, or reads it behind the
/// read flag, and prints the database's digest; filled PDFs lie beside it. Its folder is made for
/// it; one that was there already and that no child made is left alone. 0 when that was done, 3
/// when the database can't be opened, 4 when writing failed; absent when there is no child flag.
[[nodiscard]] std::optional<int> handleChild(const QStringList &arguments);
} // namespace QSSelfTest
