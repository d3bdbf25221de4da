#pragma once

#include "QSPDFDocument.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include <array>

/// What can be done with a PDF form by the names of its fields, and the form made by this program
/// for practice. Any thread.
///
/// A value here is a text: "on" or "off" for a check box or radio button, what is typed or chosen
/// for any other field. A widget without a name counts for nothing.
namespace QSPDF {
/// The fields of the practice form: five texts and a check box.
inline constexpr std::array<QStringView, 6> practiceFields = {
    u"full_name", u"street_address", u"city_state_zip", u"phone", u"signature_date", u"agree"};

[[nodiscard]] const QList<FormField> &widgets(const QSPDFDocument &document);
/// True when it has widgets.
[[nodiscard]] bool isFillable(const QSPDFDocument &document);
/// Values by name. Where several widgets share one, the last of them counts.
[[nodiscard]] QMap<QString, QString> values(const QSPDFDocument &document);
/// Sets every named field that the map has. A button is on for exactly "on", "true" and "yes" and
/// off for anything else.
void fill(QSPDFDocument &document, const QMap<QString, QString> &values);

/// A copy whose fields have become part of its pages, each value once; the document stays as it is.
/// The copy is read back first: throws QSError::invalid naming the fields whose typed text can't be
/// read on its page, so that nothing is handed over that says less than was typed.
[[nodiscard]] QByteArray flatten(const QSPDFDocument &document);
/// Only these pages of a PDF, counted from 0. Throws QSError::invalid.
[[nodiscard]] QByteArray pages(const QByteArray &pdf, int first, int last);

/// One page for practice, with the practice fields on it; filed nowhere.
[[nodiscard]] QByteArray practiceForm();
} // namespace QSPDF
