#include "QpdfFile.h"

#include <qpdf/Pipeline.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFLogger.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFWriter.hh>
#include <qpdf/QPDFXRefEntry.hh>

#include <algorithm>

namespace {
/// Collects what qpdf writes.
class ByteArrayPipeline final : public Pipeline
{
public:
    explicit ByteArrayPipeline(QByteArray &bytes) : Pipeline("bytes", nullptr), m_bytes(bytes) {}
    void write(unsigned char const *data, size_t length) override
    {
        m_bytes.append(reinterpret_cast<const char *>(data), static_cast<qsizetype>(length));
    }
    void finish() override {}

private:
    QByteArray &m_bytes;
};

std::shared_ptr<QPDF> silentQpdf()
{
    auto pdf = QPDF::create();
    const auto logger = QPDFLogger::create();
    logger->setInfo(logger->discard());
    logger->setWarn(logger->discard());
    logger->setError(logger->discard());
    pdf->setLogger(logger);
    pdf->setSuppressWarnings(true);
    return pdf;
}
} // namespace

QpdfFile::QpdfFile() : m_pdf(silentQpdf())
{
    m_pdf->emptyPDF();
}

QpdfFile::QpdfFile(QByteArray bytes) : m_bytes(std::move(bytes)), m_pdf(silentQpdf())
{
    m_pdf->processMemoryFile("PDF", m_bytes.constData(), static_cast<size_t>(m_bytes.size()));
}

bool QpdfFile::isSound(const QByteArray &bytes)
{
    const auto pdf = silentQpdf();
    pdf->setAttemptRecovery(false);
    try {
        pdf->processMemoryFile("PDF", bytes.constData(), static_cast<size_t>(bytes.size()));
        return true;
    } catch (const QPDFExc &error) {
        return error.getErrorCode() == qpdf_e_password;
    } catch (const std::exception &) {
        return false;
    }
}

bool QpdfFile::isPacked() const
{
    constexpr int inStream = 2; // of a cross-reference table's entries
    const auto table = m_pdf->getXRefTable();
    return std::ranges::any_of(
        table, [](const auto &entry) { return entry.second.getType() == inStream; });
}

QByteArray QpdfFile::write(Packing packing) const
{
    return write(packing, true);
}

QByteArray QpdfFile::writeLoose() const
{
    return write(Packing::open, false);
}

QByteArray QpdfFile::write(Packing packing, bool compress) const
{
    // qpdf 11.3 writes the size of a file that it had to repair only where it finds one to replace.
    QPDFObjectHandle trailer = m_pdf->getTrailer();
    if (!trailer.hasKey("/Size")) {
        trailer.replaceKey("/Size", QPDFObjectHandle::newInteger(0));
    }
    QByteArray bytes;
    bytes.reserve(m_bytes.size() + m_bytes.size() / 4);
    ByteArrayPipeline pipeline(bytes);
    QPDFWriter writer(*m_pdf);
    writer.setOutputPipeline(&pipeline);
    writer.setPreserveEncryption(false);
    writer.setDecodeLevel(qpdf_dl_none); // what is compressed stays as it is
    writer.setCompressStreams(compress);
    writer.setObjectStreamMode(packing == Packing::asRead   ? qpdf_o_preserve
                               : packing == Packing::packed ? qpdf_o_generate
                                                            : qpdf_o_disable);
    writer.write();
    return bytes;
}

QPDFObjectHandle entryOf(QPDFObjectHandle dictionary, const std::string &key)
{
    return dictionary.isDictionary() ? dictionary.getKey(key) : QPDFObjectHandle::newNull();
}
