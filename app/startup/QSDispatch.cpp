#include "QSDispatch.h"

#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int refused = 2;

std::optional<int> runMode(const QStringList &arguments, const QString &flag,
                           const QSModes::Mode &mode)
{
    if (!arguments.contains(flag)) {
        return std::nullopt;
    }
    if (!mode) {
        std::fprintf(stderr, "This version of the program has no %s mode.\n", qPrintable(flag));
        return refused;
    }
    return mode();
}
} // namespace

std::optional<int> dispatch(const QStringList &arguments, const QSModes &modes)
{
    for (const QSModes::Handler &handler : {modes.handleChild, modes.handleSnapshot}) {
        if (!handler) {
            continue;
        }
        if (const std::optional<int> status = handler(arguments)) {
            return status;
        }
    }
    if (const std::optional<int> status =
            runMode(arguments, u"--check-links"_s, modes.runNetwork)) {
        return status;
    }
    return runMode(arguments, u"--selftest"_s, modes.runSelfTest);
}
