#pragma once

#include "Report.h"

#include <QString>

/// The whole trial of one form: starts this program again as the child that fills it, and has the
/// judges look at what the child left.
namespace FormTrial {
/// The option by which the program knows that it is the child: --fill PDF FOLDER.
constexpr const char *childOption = "--fill";

/// folder: for the form's files; made when it isn't there.
[[nodiscard]] FormReport of(const QString &pdf, const QString &folder);
} // namespace FormTrial
