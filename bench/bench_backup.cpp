// Making a backup of a large store and restoring it, each in a process of its own, against copying
// the same PDF files and turning the same bytes into base64.
#include "Measure.h"
#include "QSBackup.h"
#include "QSInfo.h"
#include "Samples.h"

#include <QCoreApplication>
#include <QDir>

#include <functional>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int turns = 7;
constexpr int documents = 1'000;
constexpr int filledPDFs = 500;
constexpr qsizetype pdfSize = 1'000'000;

struct Run
{
    double milliseconds = 0;
    double megabytes = 0; ///< largest resident set
};

/// Runs a program to its end, in front of an empty folder for what it writes.
Run run(const QStringList &command, const QString &output)
{
    QDir(output).removeRecursively();
    QDir().mkpath(output);
    ::sync(); // what was written before is nobody's burden now
    QByteArrayList words;
    std::vector<char *> arguments;
    for (const QString &word : command) {
        words.append(QFile::encodeName(word));
    }
    for (QByteArray &word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    int status = 0;
    rusage usage = {};
    Run run;
    run.milliseconds = Measure::milliseconds([&] {
        const pid_t child = ::fork();
        if (child == 0) {
            ::execvp(arguments.front(), arguments.data());
            ::_exit(127);
        }
        if (child < 0 || ::wait4(child, &status, 0, &usage) != child || status != 0) {
            qFatal("%s failed", qPrintable(command.join(u' ')));
        }
    });
    run.megabytes = static_cast<double>(usage.ru_maxrss) / 1024;
    return run;
}

/// What the measured process does.
int backUp(const QUrl &file)
{
    QSStore store(QSInfo::databaseURL(), QSStore::Indexing::later);
    return QSBackup::write(store, file);
}

int restore(const QUrl &file)
{
    QSStore store(QSInfo::databaseURL(), QSStore::Indexing::later);
    QSBackup::restore(QSBackup::stage(file, store.url()), store);
    return store.documents().size() == documents && store.filledPDFs().size() == filledPDFs ? 0 : 1;
}

void fillStore()
{
    QSStore store(QSInfo::databaseURL());
    Samples().fill(store, documents);
    std::mt19937 random(20'270'301);
    QByteArray pdf(pdfSize, '\0');
    for (int number = 0; number < filledPDFs; ++number) {
        std::ranges::generate(pdf, [&random] { return static_cast<char>(random()); });
        pdf.replace(0, 4, "%PDF");
        store.saveFilledPDF(u"us-w-9"_s, u"W-9 %1"_s.arg(number), pdf);
    }
}

/// Prints how one of the two ways compares with the peer, and the most memory it took.
void compare(const std::string &path, double wanted, const std::function<Run()> &ours,
             const std::function<Run()> &peer)
{
    Measure::Series memory;
    const auto measured = [&] {
        const Run figures = ours();
        memory.add(figures.megabytes);
        return figures.milliseconds;
    };
    const auto [oursTime, peersTime] =
        Measure::inTurns(turns, measured, [&] { return peer().milliseconds; });
    Measure::print({.path = path + ", 1,000 documents and 500 filled PDFs of 1 MB",
                    .ours = oursTime.median(),
                    .peer = peersTime.median(),
                    .unit = "ms",
                    .peerName = "cp and base64",
                    .wanted = wanted});
    Measure::print({.path = "peak memory of that " + path,
                    .ours = memory.largest(),
                    .peer = 150,
                    .unit = "MB",
                    .peerName = "limit",
                    .wanted = 1});
}
} // namespace

int main(int argc, char *argv[])
{
    if (argc == 3) {
        const QCoreApplication application(argc, argv);
        const QUrl file = QUrl::fromLocalFile(QString::fromLocal8Bit(argv[2]));
        return QByteArrayView(argv[1]) == "backup" ? backUp(file) : restore(file);
    }
    const SampleUser user;
    const QCoreApplication application(argc, argv);
    fillStore();
    const QString self = QCoreApplication::applicationFilePath();
    const QString output = user.path(u"output"_s);
    const QString file = user.path(u"all.qsbackup"_s);
    const auto peer = [&] {
        return run({u"sh"_s, u"-c"_s,
                    u"cp \"$0\"/*.pdf \"$1\" && cat \"$0\"/*.pdf | base64 -w0 >\"$1\"/all"_s,
                    QSInfo::filledFolder().path(), output},
                   output);
    };
    compare(
        "backup", 2,
        [&] {
            return run({self, u"backup"_s, output + u"/all"_s}, output);
        },
        peer);
    (void)backUp(QUrl::fromLocalFile(file));
    compare(
        "restore", 3,
        [&] {
            return run({self, u"restore"_s, file}, output);
        },
        peer);
    return 0;
}
