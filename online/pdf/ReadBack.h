#pragma once

#include "Widget.h"

#include <QByteArray>
#include <QList>

/// Reads a flattened copy again, so that none is handed out that says less than was typed.
namespace ReadBack {
/// Throws QSError::invalid naming the fields of which a value can't be read, whole and in order, in
/// its place on the page. Values from the file are left alone where they are the agency's own (a
/// field for reading only) or written in another way than they are stored (by a script).
void check(const QByteArray &flattened, const QList<Widget> &widgets);
} // namespace ReadBack
