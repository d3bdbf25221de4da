#pragma once

#include "QSStore.h"

#include <QByteArray>
#include <QMap>
#include <QString>

/// A made-up user and her papers, for the checks. What needs the shipped content throws
/// QSError::invalid where that is missing.
namespace Sample {
extern const QMap<QString, QString> profile;
/// What is typed into the practice form, by field.
extern const QMap<QString, QString> practiceValues;

/// A vehicle's bill of sale, not saved yet.
[[nodiscard]] QSDocument sale();
/// The practice form with the practice values in it.
[[nodiscard]] QByteArray filledForm();
/// Puts the profile, the bill of sale and the filled form into a store.
void save(QSStore &store);

/// A hash over a store's profile, documents and filled PDFs with their files: the same exactly
/// when those are. The PDFs are looked for in QSInfo::filledFolder().
[[nodiscard]] QString digest(QSStore &store);
} // namespace Sample
