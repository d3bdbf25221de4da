#pragma once

#include <QByteArray>
#include <QString>

/// Reads a Word document without LibreOffice, which wrote it.
namespace DocxText {
/// A part of the document, "word/document.xml" for one; null when there is none of that name or it
/// can't be unpacked.
[[nodiscard]] QByteArray part(const QByteArray &docx, const QByteArray &name);
/// The document's text, a line for each paragraph, tabs included; empty when it can't be read.
[[nodiscard]] QString of(const QByteArray &docx);
} // namespace DocxText
