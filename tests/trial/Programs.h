#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The other programs that judge, each started with a limit of time. Any thread.
namespace Programs {
struct Output
{
    bool ended = false; ///< of itself and in time
    int status = -1;
    QByteArray text; ///< standard output, as far as it came

    [[nodiscard]] bool isGood() const { return ended && status == 0; }
};

[[nodiscard]] Output run(const QString &program, const QStringList &arguments, int seconds = 120);
/// Those of the judges that aren't installed.
[[nodiscard]] QStringList missing();
} // namespace Programs
