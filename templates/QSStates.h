#pragma once

#include <QString>

#include <array>
#include <optional>

/// The fifty states and the District of Columbia.
namespace QSStates {
struct State
{
    QStringView code;
    QStringView name;
};

/// In alphabetical order of names.
extern const std::array<State, 51> all;

/// Name of the state that the text names or abbreviates, in any case and with blanks around it.
[[nodiscard]] std::optional<QString> name(QStringView text);
/// Two-letter code of the state that the text names or abbreviates.
[[nodiscard]] std::optional<QString> code(QStringView text);
} // namespace QSStates
