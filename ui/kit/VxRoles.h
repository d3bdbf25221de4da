#pragma once

/// Roles for screen readers where Qt has none that fits. Main thread only.
namespace VxRoles {
/// A scroll area that takes the keyboard is a pane with a name; Qt calls it mere filling, which
/// screen readers pass over. Counts for all, however often it is called.
void install();
} // namespace VxRoles
