#include "BackupBase64.h"

#include <modp_b64.h>

namespace BackupBase64 {
QByteArray encoded(QByteArrayView bytes)
{
    const auto size = static_cast<std::size_t>(bytes.size());
    QByteArray text(static_cast<qsizetype>(modp_b64_encode_len(size)), Qt::Uninitialized);
    text.truncate(static_cast<qsizetype>(modp_b64_encode(text.data(), bytes.data(), size)));
    return text;
}

bool appendDecoded(QByteArrayView text, QByteArray &bytes)
{
    constexpr qsizetype group = 3; // bytes, in four characters
    const auto size = static_cast<std::size_t>(text.size());
    const qsizetype before = bytes.size();
    bytes.resize(before + static_cast<qsizetype>(modp_b64_decode_len(size)));
    const std::size_t decoded = modp_b64_decode(bytes.data() + before, text.data(), size);
    if (decoded == static_cast<std::size_t>(-1)) {
        bytes.truncate(before);
        return false;
    }
    const auto added = static_cast<qsizetype>(decoded);
    bytes.truncate(before + added);
    // The last character may have bits that stand for nothing: they are to be zero.
    const qsizetype rest = added % group;
    if (rest != 0 && !text.endsWith(encoded(QByteArrayView(bytes).last(rest)))) {
        bytes.truncate(before);
        return false;
    }
    return true;
}
} // namespace BackupBase64
