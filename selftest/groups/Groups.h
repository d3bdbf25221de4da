#pragma once

struct QSTestRun;

/// The groups of the self-test, in the order in which they run. Each opens itself with its title
/// and makes its checks on the running program's own content, with the data folder and preferences
/// that QSSelfTest has set aside; a failed check never ends a group.
namespace Groups {
void directory(QSTestRun &run);
void templates(QSTestRun &run);
void exports(QSTestRun &run);
void pdfFilling(QSTestRun &run);
void store(QSTestRun &run);
void relaunch(QSTestRun &run);
void backup(QSTestRun &run);
void disclaimer(QSTestRun &run);
void finder(QSTestRun &run);
void cache(QSTestRun &run);
void california(QSTestRun &run);
void lookAndHelp(QSTestRun &run);
void wording(QSTestRun &run);
} // namespace Groups
