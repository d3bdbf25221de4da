#pragma once

#include <QByteArray>

#include <memory>
#include <string>

class QPDF;
class QPDFObjectHandle;

/// A PDF as qpdf's objects, read from memory and written to memory; nothing is ever printed. One
/// thread at a time.
class QpdfFile final
{
public:
    /// A file without any page yet.
    QpdfFile();
    /// Reads a file, repairing what can be repaired; throws QPDFExc.
    explicit QpdfFile(QByteArray bytes);

    [[nodiscard]] QPDF &pdf() const { return *m_pdf; }
    /// The file without encryption. Streams and object streams stay as they are, which is fast and
    /// changes nothing that nobody asked to change. Throws std::exception.
    [[nodiscard]] QByteArray write() const;

private:
    QByteArray m_bytes; // qpdf reads from them as long as it lives
    std::shared_ptr<QPDF> m_pdf;
};

/// A dictionary's entry; null for anything that is no dictionary.
[[nodiscard]] QPDFObjectHandle entryOf(QPDFObjectHandle dictionary, const std::string &key);
