#pragma once

#include <QColor>
#include <QString>
#include <QStringList>

class PagesCanvas;
class QTextLayout;
class QTextLine;
class QTransform;

/// The letters of a text that Qt has set, one by one.
namespace QSLetters {
/// The characters of a text that can't be printed, since no font has them, each once. Characters
/// for private use are among them: every font has another sign for those.
[[nodiscard]] QStringList missing(const QTextLayout &text);

/// Draws a line so that every letter can be read again in the PDF, whatever the script. Qt's own
/// PDFs name each glyph by one character, and glyphs that stand for several by none.
/// toPage: from the layout's lengths to points.
void draw(PagesCanvas &canvas, const QTextLayout &text, const QTextLine &line,
          const QTransform &toPage, const QColor &colour);
} // namespace QSLetters
