#pragma once

#include "VellHelp.h"

/// The program's own help: a text file of the resources' folder "help" for most topics, and two
/// topics made of the template catalogue and the directory as they are. Main thread only.
namespace QSHelp {
/// The topics in the order in which they are read. A file that can't be read gives a topic that
/// says so.
[[nodiscard]] QList<VellHelpTopic> topics();
} // namespace QSHelp
