#pragma once

#include "QSRendered.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <stop_token>

class QPagedPaintDevice;

/// A rendered document as a file of another program's kind, or on paper.
///
/// Each function may be called on any thread; docx() and rtf() start LibreOffice and take up to a
/// minute, so they belong on a worker. Failures are thrown as QSError with the cause.
namespace QSExport {
enum class Format { pdf, docx, rtf };

struct FormatInfo
{
    Format format;
    QStringView extension; ///< the format's id as well
    QStringView label;     ///< in menus and the save panel
};

/// In the order of menus.
inline constexpr std::array<FormatInfo, 3> formats = {{
    {Format::pdf, u"pdf", u"PDF"},
    {Format::docx, u"docx", u"Word (.docx)"},
    {Format::rtf, u"rtf", u"Rich Text (.rtf)"},
}};
[[nodiscard]] const FormatInfo &info(Format format);

/// US Letter pages with one-inch margins and "Page k of N" at the foot; fonts embedded.
[[nodiscard]] QByteArray pdf(const QSRendered &rendered);
/// This and the next throw, too, when they are stopped.
[[nodiscard]] QByteArray docx(const QSRendered &rendered, const std::stop_token &stop = {});
[[nodiscard]] QByteArray rtf(const QSRendered &rendered, const std::stop_token &stop = {});
[[nodiscard]] QByteArray data(const QSRendered &rendered, Format format,
                              const std::stop_token &stop = {});

/// Draws the pages of pdf(), or those of them in the device's page ranges, on a printer or any
/// other paged device. The device's paper is the caller's: a page stands in its middle, whatever
/// border can't be printed on, and shrinks to fit smaller paper. Throws when the device can't be
/// drawn on or no page is in its ranges.
void print(const QSRendered &rendered, QPagedPaintDevice &device);

/// A stem for a file's name: characters that file systems refuse become "-", at most 120
/// characters (fewer where they would not fit in a name's bytes), no leading dot, which would hide
/// the file, and "Document" when nothing is left.
[[nodiscard]] QString safeFileName(const QString &text);
} // namespace QSExport
