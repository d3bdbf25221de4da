#pragma once

#include <QSet>
#include <QString>

/// Faults that can be switched on by name, each in the one place whose behaviour it breaks, so that
/// a run of the self-test proves that the check of that behaviour can fail. Only the self-test and
/// its child processes arm them, away from the user's data: whatever the environment says, that
/// never meets one.
namespace QSMutation {
inline constexpr const char *variable = "QS_SELFTEST_MUTATE";

/// The names in the environment variable, separated by commas; blanks around them don't count.
/// Read once.
[[nodiscard]] const QSet<QString> &active();

/// From here on the named faults happen. Only where the data folder is the self-test's own, before
/// anything that has a fault runs, on the main thread.
void arm();

/// Whether any is armed: all that on() costs in every other run.
extern bool anyArmed;

[[nodiscard]] inline bool on(QStringView name)
{
    return anyArmed && active().contains(name.toString());
}
} // namespace QSMutation
