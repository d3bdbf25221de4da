#include "QSDispatch.h"

std::optional<int> dispatch(const QStringList &arguments, const QSModes &modes)
{
    for (const QSModes::Handler &handler : {modes.handleChild, modes.handleSnapshot}) {
        if (const std::optional<int> status = handler(arguments)) {
            return status;
        }
    }
    if (arguments.contains(checkLinksFlag)) {
        return modes.runNetwork();
    }
    return arguments.contains(selfTestFlag) ? std::optional(modes.runSelfTest()) : std::nullopt;
}
