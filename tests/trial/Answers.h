#pragma once

#include "FormField.h"

#include <QList>

#include <utility>

/// What a person might type into a form: three kinds of answers for the same fields. Widgets that
/// share a name are one answer, which has to suit all of them. Needs a QGuiApplication for the
/// widths of letters.
namespace Answers {
enum class Pass {
    fitting, ///< everything has an answer that is sure to fit
    scripts, ///< the same, with names in eight scripts where there is room for them
    tooLong  ///< texts of about ten times the room
};

/// The values to set, by id, in the order of the fields; nothing for fields that nobody can set or
/// see.
[[nodiscard]] QList<std::pair<int, FormValue>> of(Pass pass, const QList<FormField> &fields);
} // namespace Answers
