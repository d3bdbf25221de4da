// Searching 10,000 documents after every letter typed, against the same query in C, and against
// the time between two frames on a screen.
#include "Measure.h"
#include "QSInfo.h"
#include "Samples.h"
#include "peer.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdlib>
#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int turns = 5;
constexpr int limit = 60;

struct Finalizer
{
    void operator()(sqlite3_stmt *search) const { peer_finalize(search); }
};
using Search = std::unique_ptr<sqlite3_stmt, Finalizer>;

/// The two find the same, or comparing their times would say nothing.
void checkEqual(QSStore &store, const QString &text, sqlite3_stmt *search)
{
    QByteArray ours;
    for (const QSSearchHit &hit : store.search(text, limit)) {
        ours += hit.ref.toUtf8() + '\n';
    }
    char *peers = peer_refs(search);
    if (ours != peers) {
        std::fprintf(stderr, "The peer finds something else for \"%s\".\n", qPrintable(text));
        std::exit(1);
    }
    std::free(peers);
}
} // namespace

int main(int argc, char *argv[])
{
    const SampleUser user;
    const QCoreApplication application(argc, argv);
    QSStore store(QSInfo::databaseURL());
    Samples().fill(store, 10'000);
    sqlite3 *peer = peer_open(QFile::encodeName(QSInfo::databaseURL().toLocalFile()).constData());

    Measure::Series ours;
    Measure::Series peers;
    for (const QString &query : Samples::searches()) {
        for (qsizetype letters = 1; letters <= query.size(); ++letters) {
            const QString text = query.first(letters);
            const Search search(
                peer_prepare(peer, QSStore::ftsQuery(text).toUtf8().constData(), limit));
            checkEqual(store, text, search.get());
            for (int turn = 0; turn < turns; ++turn) {
                ours.add(Measure::milliseconds([&] { (void)store.search(text, limit); }));
                peers.add(Measure::milliseconds([&] { (void)peer_search(search.get()); }));
            }
        }
    }
    peer_close(peer);
    const std::string path = "search as you type over 10,000 documents, 95th percentile";
    Measure::print({.path = path,
                    .ours = ours.percentile(95),
                    .peer = peers.percentile(95),
                    .unit = "ms",
                    .peerName = "same query in C",
                    .wanted = 1.3});
    Measure::print(
        {.path = path, .ours = ours.percentile(95), .peer = 16, .unit = "ms", .peerName = "limit"});
    return 0;
}
