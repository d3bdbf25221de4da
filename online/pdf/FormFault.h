#pragma once

#include <QList>
#include <QString>

/// What of an answer is not on paper.
struct FormFault
{
    int id = 0;   ///< of the widget
    int page = 0; ///< from 0
    QString label;
    QString rest;      ///< what does not fit, from the word on where it is cut
    QString missing;   ///< letters that no installed font has
    bool typed = true; ///< since the form was opened; else it stood in the file

    /// "3 words too long", "no font has 𓀀", or that it can't be seen there.
    [[nodiscard]] QString inShort() const;
    /// A sentence that names the page, the field and what is not on it.
    [[nodiscard]] QString sentence() const;
    /// "1 answer is cut on page 3."
    [[nodiscard]] static QString summary(const QList<FormFault> &faults);
    /// One sentence for all: the first of them, and how many more there are. None for no fault.
    [[nodiscard]] static QString sentence(const QList<FormFault> &faults);

    bool operator==(const FormFault &) const = default;
};
