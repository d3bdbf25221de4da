#pragma once

#include "FormField.h"
#include "QSStore.h"

#include <QList>
#include <QMap>

#include <optional>

/// A form that was being filled in: what its fields held in the end. The PDF is a file beside it.
struct FormDraft
{
    QString entryID; ///< of the directory, or that of the practice form
    QString title;
    std::optional<qint64> savedID; ///< of the filled copy that it came from
    QList<FormValue> values;       ///< by field of the PDF

    bool operator==(const FormDraft &) const = default;
};

/// What is typed and not saved yet, kept beside the database for the case that the program ends
/// unawares: one draft each of the document in the editor, the form in the form window and the
/// profile.
///
/// The files are for their owner's eyes only. What is kept is written whole or not at all and
/// throws QSError::io when that fails. A draft is absent when there is none; one that is there and
/// can't be read throws QSError, and stays until it is set aside or dropped.
namespace QSDrafts {
enum class Kind { document, form, profile };

/// Moves a draft out of the way of the next one, under a name that nothing else has; returns the
/// path of what was typed. Throws QSError::io with the draft still in its place.
[[nodiscard]] QString setAside(Kind kind);

void keepDocument(const QSDocument &document);
[[nodiscard]] std::optional<QSDocument> document();
void dropDocument();

/// Writes the PDF that the values of keepForm() belong to. Any thread.
void keepFormPDF(const QByteArray &pdf);
/// Path of that PDF.
[[nodiscard]] QString formPDF();
void keepForm(const FormDraft &form);
/// Can't be read without its PDF.
[[nodiscard]] std::optional<FormDraft> form();
void dropForm();

void keepProfile(const QMap<QString, QString> &profile);
[[nodiscard]] std::optional<QMap<QString, QString>> profile();
void dropProfile();
} // namespace QSDrafts
