#pragma once

#include "FormField.h"

#include <QList>

class QSPDFDocument;

/// A number that an agency prints in several boxes, as a social security number in three: combs in
/// a row, each its own field. What is typed goes on from one to the next.
namespace FieldRow {
/// What a text comes to that is too long for its field.
struct Filled
{
    QList<std::pair<int, FormValue>> values; ///< of the field and of those in which it goes on
    int end = -1;                            ///< the field that the text ends in
    qsizetype leftOut = 0;                   ///< characters that did not fit
};

/// Fills a field with a text and goes on in the rest of its row. What stands there already stays,
/// unless the digits of the text are as many as the whole row takes. Signs between digits are
/// dropped where a box ends: the form has its own. A text whose cursor is not at its end is cut
/// before the cursor.
[[nodiscard]] Filled fill(const QSPDFDocument &document, int field, const QString &text,
                          int cursor);
/// The field that goes on in this one, or -1.
[[nodiscard]] int before(const QSPDFDocument &document, int field);
} // namespace FieldRow
