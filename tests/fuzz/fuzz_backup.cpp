#include "BackupJSON.h"
#include "QSError.h"

#include <QBuffer>

#include <cstdlib>

namespace {
void require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

/// What was read, written anew.
QByteArray written(const QSBackup::File &file)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    BackupJSON::write(
        file, [](const QSBackup::PDF &pdf) { return std::optional(pdf.data); }, buffer);
    return buffer.data();
}

void check(const QSBackup::File &file)
{
    require(file.format == QSBackup::format && file.version <= QSBackup::formatVersion);
    for (const QSBackup::PDF &pdf : file.filledPDFs) {
        require(pdf.data.startsWith("%PDF"));
        require(!pdf.fileName.contains(u'/') && pdf.fileName.endsWith(QStringLiteral(".pdf")));
    }
    require(QSBackup::read(written(file)) == file);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    try {
        check(QSBackup::read(
            QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size))));
    } catch (const QSError &error) {
        require(error.errorCase() == QSError::Case::badBackup);
    }
    return 0;
}
