#pragma once

#include "FormField.h"

#include <QByteArray>
#include <QString>

/// A widget with what is typed into it and what only the workings of a document need to know.
struct Widget
{
    FormField field;
    FormValue value;
    QString group;      ///< the same for all widgets that answer one question
    QByteArray onState; ///< buttons: the name of the appearance that is drawn when it is on
    bool inUnison =
        true;           ///< buttons: goes on and off with those of its group with the same onState
    bool stale = false; ///< its appearance is missing or older than its value
    bool drawable = true; ///< its value is one that it can show
    bool verbatim = true; ///< what it shows is its value, not a script's way of writing it
    bool printed = true;  ///< it is part of the printed page
    bool changed = false; ///< since it was opened

    /// True for check boxes and radio buttons.
    [[nodiscard]] bool isToggle() const
    {
        return field.kind == FormField::Kind::checkBox || field.kind == FormField::Kind::radio;
    }
};
