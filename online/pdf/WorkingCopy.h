#pragma once

#include "Widget.h"

#include <QByteArray>
#include <QList>

class QPDF;

/// The copy of a PDF that is shown and filled in, and the way back from it.
///
/// Poppler draws texts and choices well, but it keeps groups of buttons by rules of its own: those
/// that share a value go on together, some can't be cleared, and fields of one name are only partly
/// kept alike. So in the working copy every widget is a field of its own, with a name of its own,
/// and what belongs together is the document's business. finish() gives each widget back what was
/// its own and writes the values where the agency's form has them.
struct WorkingCopy
{
    QByteArray bytes;
    QList<Widget> widgets;  ///< in page order; a widget's id is its position here
    QList<QByteArray> tabs; ///< by page: the order of its widgets by keyboard, if it asks for one
    QList<int> structure;   ///< ids of widgets in the order of the structure tree, if a page asks

    /// Throws QPDFExc when the bytes can't be read and QSError::invalid when they hold nothing but
    /// a form for another kind of program.
    [[nodiscard]] static WorkingCopy make(const QByteArray &bytes);
    /// The name of a widget in the working copy.
    [[nodiscard]] static QString nameOf(int id);
    /// Makes the form of a filled working copy the agency's own again, filled in. widgets: with
    /// their values, in the order of make().
    static void finish(QPDF &pdf, const QList<Widget> &widgets);
};
