#pragma once

#include <QString>
#include <QStringList>

#include <functional>

/// The checks of one run, printed as they are made and counted.
struct QSTestRun
{
    int passed = 0;
    int failed = 0;
    QStringList lines; ///< of the checks, as they were printed

    /// Opens a group of checks.
    static void begin(const QString &title);
    /// Counts a check and prints how it ended.
    void check(bool ok, const QString &text);
    /// A check whose work may throw: it has failed then, and its line goes on with the cause.
    void attempt(const QString &text, const std::function<bool()> &holds);
};
