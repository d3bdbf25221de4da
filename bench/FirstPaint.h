#pragma once

#include "PaintWatch.h"
#include "Resident.h"

#include <QTimer>

#include <unistd.h>

/// What the programs whose start is measured have in common: they say when they have painted.
namespace FirstPaint {
/// As soon as any window has painted, writes the kilobytes in memory, a line, to the file
/// descriptor that the first argument names, and ends the program.
inline void reportAndEnd(PaintWatch &application)
{
    const int descriptor = QApplication::arguments().value(1).toInt();
    application.whenPainted(nullptr, [&application, descriptor] {
        if (::dprintf(descriptor, "%ld\n", Resident::kilobytes()) <= 0) {
            ::_exit(1);
        }
        QTimer::singleShot(0, &application, &QApplication::quit);
    });
}
} // namespace FirstPaint
