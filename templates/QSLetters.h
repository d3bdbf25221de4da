#pragma once

#include <QStringList>

class QTextLayout;

/// The letters of a text that Qt has set.
namespace QSLetters {
/// The characters of a text that can't be printed, since no font has them, each once. Characters
/// for private use are among them: every font has another sign for those.
[[nodiscard]] QStringList missing(const QTextLayout &text);
} // namespace QSLetters
