#pragma once

#include "FieldDrawings.h"
#include "Widget.h"

#include <QByteArray>
#include <QList>

class PopplerForm;

/// Reads again what was drawn, so that no copy is handed out that says less than was typed without
/// telling of it.
namespace ReadBack {
/// The widgets of which the text can't be read again, whole and in order, on their own drawings,
/// away from what is printed around and under them.
[[nodiscard]] QList<int> unread(const FieldDrawings &drawings, const QList<Widget> &widgets);
/// The widgets whose drawings are not to be seen in their places on the pages of a flattened copy:
/// covered, elsewhere or left out. form: that they are shown in.
[[nodiscard]] QList<int> unseen(const QByteArray &flattened, const QList<Widget> &widgets,
                                const PopplerForm &form);
} // namespace ReadBack
