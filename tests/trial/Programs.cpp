#include "Programs.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>

#include <array>

using namespace Qt::Literals::StringLiterals;

Programs::Output Programs::run(const QString &program, const QStringList &arguments, int seconds)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments);
    const bool inTime = process.waitForFinished(seconds * 1000);
    if (!inTime) {
        process.kill();
        process.waitForFinished();
    }
    return {.ended = inTime && process.exitStatus() == QProcess::NormalExit,
            .status = process.exitCode(),
            .text = process.readAllStandardOutput()};
}

QStringList Programs::missing()
{
    constexpr auto programs =
        std::to_array<QStringView>({u"qpdf", u"pdftotext", u"pdftoppm", u"mutool", u"pdftk"});
    QStringList missing;
    for (const QStringView program : programs) {
        if (QStandardPaths::findExecutable(program.toString()).isEmpty()) {
            missing.append(program.toString());
        }
    }
    return missing;
}
