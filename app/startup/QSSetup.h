#pragma once

#include <QString>

#include <optional>

/// The two start-up steps before the first window, each called once and in this order, and what may
/// be left to do after it. Main thread only.
namespace QSSetup {
/// Registers the program's theme, gives the interface its look and fills the About box.
void configure();

/// Opens the documents database, its search index still to be filled. When it can't be opened it is
/// left as it is, the one that stood in for it before or a new one with the day's date in its name
/// is opened beside it, and the sentence to show about that is returned; so too what is wrong with
/// the shipped templates and directory.
[[nodiscard]] std::optional<QString> openStore();

/// For a database that is open and turned out to be damaged: what can be read of it goes into a new
/// one, which takes its place and is open then. The damaged one is kept beside it with the day's
/// date in its name. Where no new one can be made the damaged one stays open. Returns the sentence
/// to show about it.
[[nodiscard]] QString mendStore();
} // namespace QSSetup
