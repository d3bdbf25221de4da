#pragma once

#include "Widget.h"

#include <QByteArray>
#include <QList>

class QPDF;

class FieldDrawings;
class Opening;

/// The copy of a PDF that is shown and filled in, and the way back from it.
///
/// In it every widget is a button of its own, with a name of its own, that is switched between two
/// ready drawings: a check box or radio button is on or off, a text or choice shows what the file
/// has or leaves its place empty for the FieldDrawing of its value. So whoever draws the pages
/// makes no drawing of a value, and needs no rules for groups of buttons, which no two programs
/// share; what belongs together is the document's business. finish() gives each widget back what
/// was its own and writes the values and their drawings where the agency's form has them.
struct WorkingCopy
{
    QByteArray bytes;
    QList<Widget> widgets;  ///< in page order; a widget's id is its position here
    QList<QByteArray> tabs; ///< by page: the order of its widgets by keyboard, if it asks for one
    QList<int> structure;   ///< ids of widgets in the order of the structure tree, if a page asks
    bool isPacked = false;  ///< the file was; the bytes here are not
    bool isForXFA = false;  ///< its form is for another kind of program, and no field is left here

    /// Throws QPDFExc when the bytes can't be read, and QSError::invalid when it is stopped and
    /// when the form has more than can be opened.
    [[nodiscard]] static WorkingCopy make(const QByteArray &bytes, Opening &opening);
    /// The name of a widget in the working copy.
    [[nodiscard]] static QString nameOf(int id);
    /// Makes the form of a working copy the agency's own again, filled in. widgets: with their
    /// values, in the order of make(). drawings: of those that are no longer shown as the file has
    /// them.
    static void finish(QPDF &pdf, const QList<Widget> &widgets, const FieldDrawings &drawings);
};
