// SPDX-License-Identifier: MIT
#include "Clique_find/Finder.h"

#include "Clique_find/Search_driver.h"
#include "support/Graph_makers.h"
#include "support/Test_clocks.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace cpm::test {
namespace {

using Sets = std::vector<std::vector<Node>>;

// Teams in one network, so that one clique often holds all around a node; each pair one way, or the
// other, or both ways, if directed.
Graph Random_graph(bool directed, Random_numbers& random) {
    Node const n = 10 + random.Below(60);
    Links links = Random_links(n, 5 + random.Below(30), random);
    links.merge(Random_teams(n, 5, n / 2, random));
    Index_links const pairs = To_index_links(links);
    if (!directed) {
        return Graph(pairs);
    }
    bool const forward = random.Percent(50);
    return Graph(forward ? pairs : In_random_directions(pairs, random), true);
}

// The blocks of start nodes are searched in any order, each by either of two finders.
TEST(Finder, Start_nodes_can_be_shared_out_among_finders) {
    Random_numbers random(31);
    std::size_t n_cliques = 0;
    for (int round = 0; round < 200; ++round) {
        Graph const graph = Random_graph(round % 2 == 0, random);
        Progress nobody;
        std::array<std::unique_ptr<Finder>, 2> const finders{Make_finder(graph, nobody),
                                                             Make_finder(graph, nobody)};
        std::size_t const n_blocks = 1 + random.Below(12);
        std::vector<std::size_t> order(n_blocks);
        for (std::size_t i = 0; i < n_blocks; ++i) {
            order[i] = i;
            std::swap(order[i], order[random.Below(static_cast<std::uint32_t>(i + 1))]);
        }
        std::vector<Set_list> blocks(n_blocks);
        auto const& nodes = graph.Nodes();
        for (std::size_t const block : order) {
            Finder& finder = *finders[random.Below(2)];
            for (std::size_t i = block * nodes.size() / n_blocks;
                 i < (block + 1) * nodes.size() / n_blocks; ++i) {
                finder.Find(nodes[i], blocks[block]);
            }
        }
        Sets joined;
        for (Set_list const& block : blocks) {
            for (auto const& set : To_vectors(block)) {
                joined.push_back(set);
            }
        }
        Set_list whole;
        std::vector<Node> core;
        Search_graph(whole, graph, std::nullopt, core, nobody);
        ASSERT_EQ(joined, To_vectors(whole));
        n_cliques += joined.size();
    }
    EXPECT_GT(n_cliques, 2000U);
}

// How often a search looks at those who wait: once for about a hundred thousand steps.
class Counting_progress : public Progress {
public:
    void Tick() override { ++n_ticks; }
    std::size_t n_ticks = 0;
};

// The links of one clique of n nodes, each one way and none of them in a cycle if directed.
std::size_t Ticks_for_a_clique(Node n, bool directed, std::optional<double> max_time) {
    Index_links links;
    for (Node a = 1; a <= n; ++a) {
        for (Node b = a + 1; b <= n; ++b) {
            links.pairs.push_back({a, b});
        }
    }
    Graph const graph(links, directed);
    Counting_progress counting;
    Clock_of clock([seconds = 0.0]() mutable { return ++seconds; }); // at each reading
    std::optional<Time_limit> limit;
    if (max_time) {
        limit.emplace(Time_limit{*max_time, clock});
    }
    Set_list cliques;
    std::vector<Node> core;
    Search_graph(cliques, graph, limit, core, counting);
    EXPECT_EQ(core.size(), max_time == 0 ? n : 0);
    EXPECT_EQ(cliques.size(), max_time == 0 ? 0U : 1U);
    return counting.n_ticks;
}

TEST(Finder, One_large_clique_takes_steps_by_the_square_of_its_nodes) {
    for (bool const directed : {false, true}) {
        for (std::optional<double> const max_time :
             {std::optional<double>(), std::optional(1e9), std::optional(0.0)}) {
            std::size_t const small = Ticks_for_a_clique(500, directed, max_time);
            std::size_t const large = Ticks_for_a_clique(2000, directed, max_time);
            EXPECT_LE(large, 17 * (small + 1)) << directed << ' ' << max_time.value_or(-1);
        }
    }
}

} // namespace
} // namespace cpm::test
