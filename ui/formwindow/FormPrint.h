#pragma once

#include <QList>
#include <QString>

#include <functional>

class QPrinter;
class QSPDFDocument;
class QWidget;

/// A form on paper: its pages with what is typed into them. Any thread, and nobody else may touch
/// the printer meanwhile.
namespace FormPrint {
/// Told after each page how many are done, of how many; false stops.
using Progress = std::function<bool(int done, int all)>;

/// Prints as the printer is set up: its pages, their order and number of copies. What is printed is
/// the flattened form: a printer that writes a PDF file gets it as it is, any other is drawn on.
/// Throws a sentence when that fails, as QSError::io where the file can't be written and else as
/// QSError::invalid, also when a page does not show what was typed into it.
void print(const QSPDFDocument &document, QPrinter &printer, const Progress &progress = {});
/// Draws the flattened pages on the printer, each in the middle of its sheet: in its own size,
/// smaller where the sheet is too small for it. The sheet turns with the page. Throws as print()
/// does.
void draw(const QSPDFDocument &document, QPrinter &printer, const Progress &progress = {});
/// Does either on a thread of its own, while the program's windows answer and a dialog over this
/// one tells how it gets on and offers to stop. Main thread; returns when it is done, false when it
/// was stopped.
[[nodiscard]] bool inBackground(const std::function<void(const Progress &)> &work,
                                const QString &title, QWidget *window);
} // namespace FormPrint
