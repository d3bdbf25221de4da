#pragma once

#include "FormField.h"

#include <QByteArray>

class Opening;

/// What check boxes and radio buttons are called. Agencies often give them no name for people, or
/// one for all of a question, and on paper it is the words beside a box that tell what it is for.
namespace FieldLabels {
/// Puts those words into the labels of the buttons that can't be told apart, or have no name but
/// that of a program: the words to the right of the box, else to its left, else the value that it
/// stores. Buttons that are still called the same are counted. Reads only the pages that have such
/// buttons; pdf is the file that the fields are from. Throws QSError::invalid when it is stopped.
void tellApart(QList<FormField> &fields, const QByteArray &pdf, const Opening &opening);
} // namespace FieldLabels
