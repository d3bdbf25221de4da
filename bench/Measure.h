#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

/// Times two ways of doing the same thing in turns, and prints how they compare.
namespace Measure {
/// How long a call takes, in milliseconds.
template <typename Call>
[[nodiscard]] double milliseconds(Call call)
{
    const auto before = std::chrono::steady_clock::now();
    call();
    const std::chrono::duration<double, std::milli> passed =
        std::chrono::steady_clock::now() - before;
    return passed.count();
}

/// The figures of one way, in any unit.
class Series final
{
public:
    void add(double figure) { m_figures.push_back(figure); }
    void add(const Series &figures)
    {
        m_figures.insert(m_figures.end(), figures.m_figures.begin(), figures.m_figures.end());
    }
    /// The one added last. Not for an empty series.
    [[nodiscard]] double last() const { return m_figures.back(); }
    [[nodiscard]] double median() const { return percentile(50); }
    /// The smallest figure that at least so many percent of all don't exceed. Not for an empty
    /// series.
    [[nodiscard]] double percentile(double percent) const
    {
        std::vector<double> sorted = m_figures;
        std::ranges::sort(sorted);
        const double rank = std::ceil(percent / 100 * static_cast<double>(sorted.size()));
        return sorted[static_cast<std::size_t>(std::max(rank, 1.0)) - 1];
    }
    [[nodiscard]] double largest() const { return percentile(100); }

private:
    std::vector<double> m_figures;
};

/// Runs both in turns (A B A B ...), so that what else the machine does falls on both alike. Each
/// call returns its own figure; the first turn warms up and does not count.
template <typename Ours, typename Peers>
[[nodiscard]] std::pair<Series, Series> inTurns(int turns, Ours ours, Peers peers)
{
    std::pair<Series, Series> figures;
    (void)ours();
    (void)peers();
    for (int turn = 0; turn < turns; ++turn) {
        figures.first.add(ours());
        figures.second.add(peers());
    }
    return figures;
}

/// One measured path: our figure, the peer's or the limit, and the largest ratio that will do.
struct Row
{
    std::string path;
    double ours = 0;
    double peer = 0;
    std::string unit;     ///< of both figures
    std::string peerName; ///< what the second figure is of
    double wanted = 1;
};

/// Prints the row of a Markdown table: path, ours, peer or limit, ratio, wanted, met.
inline void print(const Row &row)
{
    const double ratio = row.ours / row.peer;
    std::printf("| %s | %.3g %s | %.3g %s, %s | %.2f x | at most %g x | %s |\n", row.path.c_str(),
                row.ours, row.unit.c_str(), row.peer, row.unit.c_str(), row.peerName.c_str(), ratio,
                row.wanted, ratio <= row.wanted ? "yes" : "**no**");
    std::fflush(stdout);
}
} // namespace Measure
