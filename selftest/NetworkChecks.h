#pragma once

struct QSDirectory;
struct QSTestRun;

/// What only the agencies' own sites can say of a directory.
namespace NetworkChecks {
/// Asks every link but those that only people may check, downloads every official PDF into the
/// cache folder, and has one of them checked for updates. Waits for the network; takes minutes.
void run(const QSDirectory &directory, QSTestRun &run);
} // namespace NetworkChecks
