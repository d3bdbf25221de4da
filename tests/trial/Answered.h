#pragma once

#include "FormField.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

/// An answer as it must be found again: what a judge knows of a widget. Written as JSON by the
/// process that fills the form and read by the one that judges.
struct Answered
{
    int id = 0;
    FormField::Kind kind = FormField::Kind::text;
    QString name;
    QString label;
    int page = 0;         ///< from 0
    QRectF rect;          ///< as in FormField
    QString text;         ///< what a person must be able to read there; empty for buttons
    QStringList stored;   ///< each of them says what was typed, for a program that reads the field
    bool on = false;      ///< check boxes and radio buttons
    bool changed = false; ///< it isn't what the file came with

    bool operator==(const Answered &) const = default;

    [[nodiscard]] bool isButton() const
    {
        return kind == FormField::Kind::checkBox || kind == FormField::Kind::radio;
    }
    /// For a line of the report.
    [[nodiscard]] QString place() const;

    [[nodiscard]] static Answered of(const FormField &field, const FormValue &value,
                                     const FormValue &before);
    [[nodiscard]] static QByteArray toJSON(const QList<Answered> &answers);
    [[nodiscard]] static QList<Answered> fromJSON(const QByteArray &json);
};
