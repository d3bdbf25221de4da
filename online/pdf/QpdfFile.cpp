#include "QpdfFile.h"

#include "QSError.h"

#include <qpdf/Buffer.hh>
#include <qpdf/BufferInputSource.hh>
#include <qpdf/Pipeline.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFLogger.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFWriter.hh>
#include <qpdf/QPDFXRefEntry.hh>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace {
void endIfStopped(const std::stop_token &stop)
{
    if (stop.stop_requested()) {
        throw std::runtime_error("it was stopped");
    }
}

/// The file that qpdf reads from, until it is stopped.
class Source final : public BufferInputSource
{
public:
    Source(Buffer &bytes, std::stop_token stop)
        : BufferInputSource("PDF", &bytes), m_stop(std::move(stop))
    {
    }
    size_t read(char *bytes, size_t length) override
    {
        endIfStopped(m_stop);
        return BufferInputSource::read(bytes, length);
    }

private:
    std::stop_token m_stop;
};

/// Collects what qpdf unpacks, up to a limit.
class LimitedPipeline final : public Pipeline
{
public:
    explicit LimitedPipeline(size_t most) : Pipeline("limited", nullptr), m_most(most) {}
    void write(unsigned char const *data, size_t length) override
    {
        m_isFull = m_isFull || length > m_most - m_data.size();
        if (m_isFull) {
            throw std::length_error("the stream is too long");
        }
        m_data.append(reinterpret_cast<const char *>(data), length);
    }
    void finish() override {}

    [[nodiscard]] bool isFull() const { return m_isFull; }
    [[nodiscard]] const std::string &data() const { return m_data; }

private:
    size_t m_most;
    std::string m_data;
    bool m_isFull = false; // qpdf may take the exception for damage and end well
};

/// Collects what qpdf writes, until it is stopped.
class ByteArrayPipeline final : public Pipeline
{
public:
    ByteArrayPipeline(QByteArray &bytes, const std::stop_token &stop)
        : Pipeline("bytes", nullptr), m_bytes(bytes), m_stop(stop)
    {
    }
    void write(unsigned char const *data, size_t length) override
    {
        endIfStopped(m_stop);
        m_bytes.append(reinterpret_cast<const char *>(data), static_cast<qsizetype>(length));
    }
    void finish() override {}

private:
    QByteArray &m_bytes;
    const std::stop_token &m_stop;
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

/// qpdf and Poppler go down these trees by recursion, and a tree that is one long branch would take
/// more stack than there is.
void checkTree(QPDF &pdf, const char *name)
{
    constexpr int deepest = 500;
    using Nodes = std::vector<QPDFObjectHandle>;
    std::set<QPDFObjGen> seen;
    Nodes level{entryOf(pdf.getRoot(), name)};
    for (int depth = 0; !level.empty(); ++depth) {
        if (depth > deepest) {
            throw QSError::invalid(u"This PDF is damaged, so it can't be opened here."_s);
        }
        Nodes next;
        for (const QPDFObjectHandle &node : std::as_const(level)) {
            QPDFObjectHandle kids = entryOf(node, "/Kids");
            if (kids.isArray() && (!node.isIndirect() || seen.insert(node.getObjGen()).second)) {
                const Nodes below = kids.getArrayAsVector();
                next.insert(next.end(), below.begin(), below.end());
            }
        }
        level = std::move(next);
    }
}
} // namespace

QpdfFile::QpdfFile() : m_pdf(silentQpdf())
{
    m_pdf->emptyPDF();
}

QpdfFile::QpdfFile(QByteArray bytes, std::stop_token stop)
    : m_stop(std::move(stop)), m_bytes(std::move(bytes)), m_pdf(silentQpdf())
{
    // qpdf only reads, whatever the type of its buffer says.
    auto *data = const_cast<char *>(m_bytes.constData());
    m_buffer = std::make_shared<Buffer>(reinterpret_cast<unsigned char *>(data),
                                        static_cast<size_t>(m_bytes.size()));
    m_pdf->processInputSource(std::make_shared<Source>(*m_buffer, m_stop));
    endIfStopped(m_stop);
    checkTree(*m_pdf, "/Pages");
    checkTree(*m_pdf, "/PageLabels");
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
    ByteArrayPipeline pipeline(bytes, m_stop);
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

std::optional<std::string> dataOf(QPDFObjectHandle stream, size_t most)
{
    LimitedPipeline data(most);
    try {
        stream.pipeStreamData(&data, 0, qpdf_dl_specialized);
    } catch (const std::length_error &) {
        return std::nullopt;
    }
    return data.isFull() ? std::nullopt : std::optional(data.data());
}

QPDFObjectHandle entryOf(QPDFObjectHandle dictionary, const std::string &key)
{
    return dictionary.isDictionary() ? dictionary.getKey(key) : QPDFObjectHandle::newNull();
}
