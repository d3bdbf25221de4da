#pragma once

#include "QSError.h"
#include "Widget.h"

#include <QByteArray>
#include <QList>

/// Reads a flattened copy again, so that none is handed out that says less than was typed.
namespace ReadBack {
/// The widgets of which a value can't be read, whole and in order, in its place on the page. Values
/// from the file are left alone where they are the agency's own (a field for reading only) or
/// written in another way than they are stored (by a script).
[[nodiscard]] QList<Widget> unread(const QByteArray &flattened, const QList<Widget> &widgets);
/// The sentence that names the fields of these widgets, of which there is at least one.
[[nodiscard]] QSError refusal(const QList<Widget> &unread);
} // namespace ReadBack
