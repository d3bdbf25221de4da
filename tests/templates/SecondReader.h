#pragma once

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

/// Other programs that read what the exporters wrote.
namespace SecondReader {
inline bool has(const QString &program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

/// What a program prints about a file of these bytes, which its argument "@" stands for. A program
/// that fails prints what can't be mistaken for a result.
inline QString read(const QByteArray &bytes, const QString &program, QStringList arguments)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("input")));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        return QStringLiteral("no input file");
    }
    file.close();
    arguments.replaceInStrings(QStringLiteral("@"), file.fileName());
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(120'000);
    const QString output = QString::fromUtf8(process.readAllStandardOutput());
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0
               ? output
               : QStringLiteral("%1 failed: %2").arg(program, output);
}
} // namespace SecondReader

#define QS_NEEDS(program)                                                                          \
    if (!SecondReader::has(QStringLiteral(program))) {                                             \
        QSKIP(program " is not installed");                                                        \
    }
