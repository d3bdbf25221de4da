#pragma once

#include "FormField.h"
#include "TextLayout.h"

#include <QByteArray>
#include <QColor>
#include <QSizeF>
#include <QString>

#include <memory>

class FieldDrawing;

/// What a field has around its text.
struct FieldFrame
{
    enum class Line { solid, dashed, under };

    QColor background; ///< invalid for none
    QColor border;     ///< invalid for none
    double width = 1;  ///< of the border, in points
    Line line = Line::solid;

    bool operator==(const FieldFrame &) const = default;
};

/// A widget with what is typed into it and what only the workings of a document need to know.
struct Widget
{
    FormField field;
    FormValue value;
    QString group;      ///< the same for all widgets that answer one question
    QByteArray onState; ///< buttons: the name of the appearance that is drawn when it is on
    bool inUnison =
        true; ///< buttons: goes on and off with those of its group with the same onState

    // texts and choices
    TextStyle style; ///< its size is field.fontSize where the form leaves it open
    FieldFrame frame;
    QSizeF box;        ///< in points, before it is turned
    int turn = 0;      ///< in degrees, counterclockwise, with the page not turned
    bool kept = false; ///< shown as the file has it, until it is changed
    std::shared_ptr<const FieldDrawing> drawing; ///< of its value; null when it is kept

    bool stale = false;   ///< its appearance is missing or older than its value
    bool drawable = true; ///< its value is one that it can show
    bool verbatim = true; ///< what it shows is its value, not a script's way of writing it
    bool printed = true;  ///< it is part of the printed page
    bool changed = false; ///< since it was opened

    /// True for check boxes and radio buttons.
    [[nodiscard]] bool isToggle() const
    {
        return field.kind == FormField::Kind::checkBox || field.kind == FormField::Kind::radio;
    }
    /// True for what shows a text: texts, combo boxes and lists.
    [[nodiscard]] bool hasText() const
    {
        return field.kind == FormField::Kind::text || field.kind == FormField::Kind::comboBox ||
               field.kind == FormField::Kind::listBox;
    }
};
