// Finding the papers of every task in every state, all together, against a limit.
#include "Measure.h"
#include "QSFinder.h"

#include <QCoreApplication>

#include <cstdlib>

namespace {
constexpr int turns = 100;

/// Counts what is found, so that none of it goes unused.
qsizetype findAll()
{
    qsizetype papers = 0;
    for (const QSTask &task : QSFinder::tasks) {
        for (QStringView state : QSDirectory::covered) {
            const QSFinderResult found = QSFinder::result(task, state).value();
            papers += found.forms.size() + found.templates.size();
        }
    }
    return papers;
}
} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const qsizetype papers = findAll(); // reads the directory and the templates first
    Measure::Series ours;
    for (int turn = 0; turn < turns; ++turn) {
        qsizetype found = 0;
        ours.add(Measure::milliseconds([&] { found = findAll(); }));
        if (found != papers || found == 0) {
            std::fprintf(stderr, "The finder found %lld papers, then %lld.\n",
                         static_cast<long long>(papers), static_cast<long long>(found));
            return EXIT_FAILURE;
        }
    }
    Measure::print({.path = "finder, all tasks in all states together, median",
                    .ours = ours.median(),
                    .peer = 5,
                    .unit = "ms",
                    .peerName = "limit"});
    return EXIT_SUCCESS;
}
