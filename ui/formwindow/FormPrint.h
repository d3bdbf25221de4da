#pragma once

#include <QList>
#include <QString>

#include <functional>

class QPrinter;
class QSPDFDocument;

/// A form on paper: its pages with what is typed into them. Main thread.
namespace FormPrint {
/// Told after each page how many are done, of how many; false stops.
using Progress = std::function<bool(int done, int all)>;

/// Prints as the printer is set up: its pages, their order and number of copies. What is printed is
/// the flattened form: a printer that writes a PDF file gets it as it is, any other is drawn on.
/// Throws QSError::invalid with a sentence when that fails, and when a page does not show what was
/// typed into it.
void print(const QSPDFDocument &document, QPrinter &printer, const Progress &progress = {});
/// Draws the flattened pages on the printer, each in the middle of its sheet: in its own size,
/// smaller where the sheet is too small for it. The sheet turns with the page. Throws as print()
/// does.
void draw(const QSPDFDocument &document, QPrinter &printer, const Progress &progress = {});
} // namespace FormPrint
