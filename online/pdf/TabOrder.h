#pragma once

#include "FormField.h"

#include <QByteArray>
#include <QList>

/// The way through a form by keyboard.
namespace TabOrder {
/// Ids of the fields that are shown and settable, page by page, as each page asks for: "/R" by
/// rows, "/C" by columns, "/S" by the order of structure, else in the order they stand in the file.
/// Fields whose middles are level belong to one row; what the structure leaves out comes last.
[[nodiscard]] QList<int> of(const QList<FormField> &fields, const QList<QByteArray> &tabs,
                            const QList<int> &structure);
} // namespace TabOrder
