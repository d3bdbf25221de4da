// Filling the search index anew with 10,000 documents, against a loop in C that inserts the same
// rows.
#include "Measure.h"
#include "QSInfo.h"
#include "Samples.h"
#include "peer.h"

#include <QCoreApplication>
#include <QFile>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {
constexpr int turns = 15;

/// The rows of the store's index, as the C loop takes them.
struct Rows
{
    explicit Rows(QSStore &store)
    {
        SQLStatement all = store.db().prepare(u"SELECT kind, ref, title, body FROM search"_s);
        while (all.step()) {
            texts.push_back({all.text(0).toUtf8(), all.text(1).toUtf8(), all.text(2).toUtf8(),
                             all.text(3).toUtf8()});
        }
        for (const auto &[kind, ref, title, body] : texts) {
            rows.push_back(
                {kind.constData(), ref.constData(), title.constData(), body.constData()});
        }
    }

    std::vector<std::array<QByteArray, 4>> texts;
    std::vector<PeerRow> rows;
};
} // namespace

int main(int argc, char *argv[])
{
    const SampleUser user;
    const QCoreApplication application(argc, argv);
    QSStore store(QSInfo::databaseURL());
    Samples().fill(store, 10'000);
    const Rows rows(store);
    const QByteArray create = store.db()
                                  .query(u"SELECT sql FROM sqlite_master WHERE name = 'search'"_s)
                                  .first()
                                  .string(u"sql"_s)
                                  .toUtf8();
    sqlite3 *peer = peer_open(QFile::encodeName(user.path(u"peer.sqlite"_s)).constData());

    const auto [ours, peers] = Measure::inTurns(
        turns, [&] { return Measure::milliseconds([&] { store.rebuildSearchIndex(); }); },
        [&] {
            return Measure::milliseconds([&] {
                peer_rebuild(peer, create.constData(), rows.rows.data(), rows.rows.size());
            });
        });
    Measure::print({.path = "rebuild of the search index, 10,000 documents",
                    .ours = ours.median(),
                    .peer = peers.median(),
                    .unit = "ms",
                    .peerName = "plain C loop",
                    .wanted = 1.5});
    peer_close(peer);
    return 0;
}
