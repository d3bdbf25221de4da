#include "QSDispatch.h"
#include "QSInfo.h"
#include "QSSelfTest.h"
#include "QSSnapshot.h"
#include "QuillstoneApp.h"

#include <QApplication>

#include <algorithm>
#include <array>
#include <cstdio>

namespace {
/// Modes without a window run where there is no display.
bool isHeadless(const QStringList &arguments)
{
    return QSSelfTest::isChild(arguments) ||
           std::ranges::any_of(
               std::array{QSSnapshot::flag, checkLinksFlag, selfTestFlag},
               [&arguments](const QString &flag) { return arguments.contains(flag); });
}

/// Where Qt finds no display it aborts the process with a report meant for developers.
bool displayIsMissing(const QStringList &arguments)
{
    return qEnvironmentVariableIsEmpty("DISPLAY") &&
           qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
           qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") &&
           !arguments.contains(QStringLiteral("-platform"));
}
} // namespace

int main(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments.append(QString::fromLocal8Bit(argv[i]));
    }
    if (isHeadless(arguments)) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    } else if (displayIsMissing(arguments)) {
        std::fprintf(stderr, "%s needs a display, and there is none here.\n",
                     qPrintable(QSInfo::appName));
        return 1;
    }

    const QApplication application(argc, argv);
    QApplication::setApplicationVersion(QSInfo::version());
    QApplication::setDesktopFileName(QStringLiteral("quillstone"));

    const QSModes modes{.handleChild = QSSelfTest::handleChild,
                        .handleSnapshot = QSSnapshot::handle,
                        .runNetwork = QSSelfTest::runNetwork,
                        .runSelfTest = QSSelfTest::run};
    if (const std::optional<int> status = dispatch(arguments, modes)) {
        return *status;
    }
    QuillstoneApp program;
    return program.start() ? QApplication::exec() : 0;
}
