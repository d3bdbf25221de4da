#include "QSSelfTest.h"

#include "NetworkChecks.h"
#include "QSDirectory.h"
#include "QSError.h"
#include "QSInfo.h"
#include "QSMutation.h"
#include "QSSetup.h"
#include "QSTestRun.h"
#include "SetAside.h"
#include "groups/Groups.h"

#include <QDateTime>

#include <array>
#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr std::array groups = {
    Groups::directory,  Groups::templates,   Groups::exports,    Groups::pdfFilling, Groups::store,
    Groups::relaunch,   Groups::backup,      Groups::disclaimer, Groups::finder,     Groups::cache,
    Groups::california, Groups::lookAndHelp, Groups::wording};

void printHeader(const QString &what, const QString &addition = {})
{
    const QString now = QDateTime::currentDateTimeUtc().toString(Qt::ISODate);
    std::printf("%s\n",
                qUtf8Printable(QSInfo::appName + u' ' + what + u" \u2014 "_s + now + addition));
    std::fflush(stdout);
}

/// What the header says of faults that are switched on.
QString mutations()
{
    return QSMutation::active().isEmpty() ? QString()
                                          : u" \u2014 MUTATION \"%1\": failures are EXPECTED"_s.arg(
                                                qEnvironmentVariable(QSMutation::variable));
}

void runGroups(QSTestRun &run)
{
    for (const auto group : groups) {
        try {
            group(run);
        } catch (const std::exception &error) {
            run.check(false, u"these checks could not go on: "_s + QString::fromUtf8(error.what()));
        }
    }
}

/// The status of checks that are made where they touch nothing of the user's.
template <typename Checks>
int runSetAside(Checks checks)
{
    try {
        const SetAside away;
        QSTestRun run;
        checks(run);
        return QSSelfTest::finish(run);
    } catch (const QSError &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
} // namespace

namespace QSSelfTest {
int run()
{
    printHeader(u"self-test"_s, mutations());
    return runSetAside([](QSTestRun &run) {
        QSMutation::arm();
        QSSetup::configure();
        runGroups(run);
    });
}

int runNetwork()
{
    printHeader(u"network check"_s);
    return runSetAside([](QSTestRun &run) { NetworkChecks::run(QSDirectory::shared(), run); });
}

int finish(const QSTestRun &run)
{
    if (run.failed == 0) {
        std::printf("ALL %d CHECKS PASSED\n", run.passed);
        return 0;
    }
    std::printf("%d FAILED, %d passed\n", run.failed, run.passed);
    return 1;
}
} // namespace QSSelfTest
