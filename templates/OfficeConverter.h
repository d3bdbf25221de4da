#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <stop_token>

/// Converts documents with LibreOffice as a child process.
///
/// It runs headless with a profile folder of its own in the user's cache, so that a running copy of
/// LibreOffice neither sees nor disturbs it, and one conversion at a time, over all processes of
/// the user. Any thread but the main one: a call takes half a second to a minute.
namespace OfficeConverter {
/// The converted document's bytes. target is LibreOffice's own name of the format, "docx" or "rtf"
/// with an optional filter ("docx:MS Word 2007 XML"). Throws QSError::invalid with the cause when
/// LibreOffice is missing, fails, or takes more than 60 seconds, waiting for another conversion
/// included, and within about a tenth of a second when it is stopped, and QSError::io when the
/// files between the two can't be written or read; no process and no file of the conversion is left
/// behind. What a crash leaves behind is readable by the user alone and goes with the next
/// conversion.
[[nodiscard]] QByteArray convert(const QByteArray &flatODF, const QString &target,
                                 const std::stop_token &stop = {});

/// For quitting: conversions that are running, and any that are started later, fail within about a
/// tenth of a second. Any thread.
void cancelAll();

/// Uses this program instead of the installed one; empty goes back. For tests.
void setProgramOverride(const QString &path);

inline constexpr std::chrono::milliseconds defaultTimeLimit{60'000};
/// What a conversion may take at most. For tests.
void setTimeLimit(std::chrono::milliseconds limit);
} // namespace OfficeConverter
