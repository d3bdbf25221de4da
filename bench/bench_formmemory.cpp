// The memory that the program needs with Form I-912 open, against Poppler alone.
#include "Measure.h"
#include "RealForms.h"
#include "Samples.h"

#include <QCoreApplication>

namespace {
constexpr int turns = 3;

struct Memory
{
    double whole; ///< MB
    double added; ///< MB of it since the program had started
};

/// As the program of that name tells.
Memory memoryOf(const QString &name)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationDirPath() + u'/' + name, QStringList());
    if (!process.waitForFinished(-1) || process.exitCode() != 0) {
        qFatal("%s failed", qPrintable(name));
    }
    const QByteArrayList numbers = process.readAllStandardOutput().simplified().split(' ');
    const double whole = numbers.at(1).toDouble() / 1024;
    return {whole, whole - numbers.at(0).toDouble() / 1024};
}
} // namespace

int main(int argc, char *argv[])
{
    const SampleUser user;
    const QCoreApplication application(argc, argv);
    if (!QFile::exists(RealForms::i912())) {
        std::fprintf(stderr, "The real forms are not at hand.\n");
        return 0;
    }
    Measure::Series ours;
    Measure::Series oursAdded;
    Measure::Series peers;
    Measure::Series peersAdded;
    for (int turn = 0; turn < turns; ++turn) {
        const Memory program = memoryOf(QStringLiteral("bench_formwindow"));
        const Memory peer = memoryOf(QStringLiteral("bench_formpeer"));
        ours.add(program.whole);
        oursAdded.add(program.added);
        peers.add(peer.whole);
        peersAdded.add(peer.added);
    }
    Measure::print({.path = "memory with Form I-912 open at 100 %, the whole program",
                    .ours = ours.median(),
                    .peer = peers.median(),
                    .unit = "MB",
                    .peerName = "Poppler alone, same pages",
                    .wanted = 1.5});
    Measure::print({.path = "memory that opening Form I-912 at 100 % adds",
                    .ours = oursAdded.median(),
                    .peer = peersAdded.median(),
                    .unit = "MB",
                    .peerName = "Poppler alone, same pages",
                    .wanted = 1.5});
    return 0;
}
