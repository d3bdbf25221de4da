#pragma once

#include <QString>

#include <optional>

/// Amounts of money as people type them, in decimal arithmetic on the digits: no amount passes
/// through a binary fraction, so none is ever off by a cent. Any thread.
namespace QSMoney {
/// The amount in US currency form: "1500" gives "$1,500.00", "-5" gives "-$5.00". Every "$" and ","
/// is left out first, then the text has to be a plain decimal number, an exponent ("1e3") allowed.
/// Rounds to cents, half to even as the platform's currency formats do; what rounds to nothing has
/// no sign. Absent for any other text, and for an amount of more than 30 digits, typed or printed.
[[nodiscard]] std::optional<QString> currency(const QString &typed);
} // namespace QSMoney
