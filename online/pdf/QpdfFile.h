#pragma once

#include <QByteArray>

#include <memory>
#include <optional>
#include <stop_token>
#include <string>

class Buffer;
class QPDF;
class QPDFObjectHandle;

/// A PDF as qpdf's objects, read from memory and written to memory; nothing is ever printed. One
/// thread at a time.
class QpdfFile final
{
public:
    /// A file without any page yet.
    QpdfFile();
    /// Reads a file, repairing what can be repaired; throws QPDFExc, QSError::invalid when its
    /// pages lie too deep in one another, and std::exception when it is told to stop, then or
    /// later.
    explicit QpdfFile(QByteArray bytes, std::stop_token stop = {});

    /// True when the file reads without any repair, whatever its password; one that was cut off
    /// doesn't.
    [[nodiscard]] static bool isSound(const QByteArray &bytes);

    [[nodiscard]] QPDF &pdf() const { return *m_pdf; }
    /// True when the file has several objects in one stream, which is small, and lost as a whole
    /// when the file is cut off.
    [[nodiscard]] bool isPacked() const;
    enum class Packing { asRead, packed, open };
    /// The file without encryption; streams that are compressed stay as they are. Throws
    /// std::exception.
    [[nodiscard]] QByteArray write(Packing packing = Packing::asRead) const;
    /// The same in a hurry, for bytes that stay in memory.
    [[nodiscard]] QByteArray writeLoose() const;

private:
    [[nodiscard]] QByteArray write(Packing packing, bool compress) const;

    std::stop_token m_stop;
    QByteArray m_bytes; // qpdf reads from them as long as it lives
    std::shared_ptr<Buffer> m_buffer;
    std::shared_ptr<QPDF> m_pdf;
};

/// What a stream holds, unpacked; none when that is longer than so many bytes, or in ruins.
[[nodiscard]] std::optional<std::string> dataOf(QPDFObjectHandle stream, size_t most);
/// A dictionary's entry; null for anything that is no dictionary.
[[nodiscard]] QPDFObjectHandle entryOf(QPDFObjectHandle dictionary, const std::string &key);
