// SPDX-License-Identifier: MIT
#include "parallel/Parallel_finder.h"

#include "Clique_find/Search_driver.h"
#include "support/Captured_console.h"
#include "support/Errors.h"
#include "support/Graph_makers.h"
#include "support/Test_clocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace cpm::test {
namespace {

// Teams among links at random; in a directed network each pair one way, the other, or both ways.
Graph Random_graph(bool directed, Random_numbers& random) {
    Node const n = 5 + random.Below(80);
    Links links = Random_links(n, 2 + random.Below(30), random);
    links.merge(Random_teams(n, 6, 3 + n / 3, random));
    Index_links const pairs = To_index_links(links);
    if (!directed) {
        return Graph(pairs);
    }
    return Graph(In_random_directions(pairs, random), true);
}

// Of many start nodes with cliques.
Graph Chain(Node n) {
    Index_links links;
    for (Node node = 1; node < n; ++node) {
        links.pairs.push_back({node, node + 1});
        if (node + 2 <= n) {
            links.pairs.push_back({node, node + 2});
        }
    }
    return Graph(links);
}

// 3 ** (n / 3) maximal cliques, all of them at one start node: a search that does not end.
Graph Hopeless_graph(Node n) {
    Index_links links;
    for (Node a = 1; a <= n; ++a) {
        for (Node b = a + 1; b <= n; ++b) {
            if ((a - 1) / 3 != (b - 1) / 3) {
                links.pairs.push_back({a, b});
            }
        }
    }
    return Graph(links);
}

struct Result {
    Found_cliques found;
    std::string reports;
    std::string error;
};

Result Search(Graph const& graph, unsigned n_threads, std::optional<double> limit = std::nullopt,
              std::size_t max_cliques = max_n_cliques) {
    Result result;
    Captured_console console;
    Clock_of clock([seconds = 0.0]() mutable { return ++seconds; });
    try {
        Find_cliques(result.found, graph, limit, clock, n_threads, console, max_cliques);
    } catch (Too_large const& error) {
        result.error = error.what();
    }
    result.reports = console.Output();
    return result;
}

void Expect_same(Result const& result, Result const& expected) {
    EXPECT_EQ(result.found.cliques, expected.found.cliques);
    EXPECT_EQ(result.found.n_exact, expected.found.n_exact);
    EXPECT_EQ(result.reports, expected.reports);
    EXPECT_EQ(result.error, expected.error);
}

TEST(Parallel_finder, Finds_and_reports_what_one_finder_does) {
    Random_numbers random(77);
    std::size_t n_cliques = 0;
    for (unsigned round = 0; round < Rounds(120); ++round) {
        Graph const graph = Random_graph(round % 2 == 1, random);
        Result const expected = Search(graph, 1);
        n_cliques += expected.found.cliques.size();
        for (unsigned const n_threads : {2U, 3U, 8U}) {
            SCOPED_TRACE(std::to_string(n_threads) + " threads, round " + std::to_string(round));
            Expect_same(Search(graph, n_threads), expected);
        }
    }
    EXPECT_GT(n_cliques, 5000U);
}

TEST(Parallel_finder, Finds_nothing_in_a_graph_without_links) {
    Graph const graph{Index_links{}};
    Expect_same(Search(graph, 4), Search(graph, 1));
}

TEST(Parallel_finder, Ends_at_the_same_clique_when_there_are_too_many) {
    Random_numbers random(5);
    for (int round = 0; round < 20; ++round) {
        Graph const graph = Random_graph(round % 2 == 1, random);
        std::size_t const n = Search(graph, 1).found.cliques.size();
        for (std::size_t const max_cliques :
             {std::size_t{0}, n / 2, n - std::min<std::size_t>(n, 1), n}) {
            Result const expected = Search(graph, 1, std::nullopt, max_cliques);
            EXPECT_EQ(expected.error.empty(), max_cliques >= n);
            Expect_same(Search(graph, 3, std::nullopt, max_cliques), expected);
        }
    }
}

TEST(Parallel_finder, Leaves_a_search_within_a_time_to_one_thread) {
    Random_numbers random(6);
    for (int round = 0; round < 20; ++round) {
        Graph const graph = Random_graph(round % 2 == 1, random);
        Expect_same(Search(graph, 3, 0.5), Search(graph, 1, 0.5));
    }
}

TEST(Parallel_finder, Cuts_the_nodes_into_blocks) {
    Random_numbers random(9);
    for (int round = 0; round < 50; ++round) {
        Graph const graph = Random_graph(round % 2 == 1, random);
        for (unsigned const n_threads : {1U, 2U, 100U}) {
            auto const begins = Search_blocks(graph, n_threads);
            ASSERT_GE(begins.size(), 2U);
            EXPECT_EQ(begins.front(), 0U);
            EXPECT_EQ(begins.back(), graph.size());
            EXPECT_TRUE(std::ranges::is_sorted(begins, std::less_equal())); // ascending
            EXPECT_LE(begins.size() - 1, graph.size());
        }
    }
    EXPECT_EQ(Search_blocks(Graph{Index_links{}}, 2), std::vector<std::size_t>{0});
    // Equal nodes: each of the threads has 32 of them.
    EXPECT_NEAR(static_cast<double>(Search_blocks(Chain(1000), 2).size()), 65.0, 3.0);
    // A larger network: as many as are enough for a few threads, more for more of them.
    EXPECT_NEAR(static_cast<double>(Search_blocks(Chain(1000000), 2).size()), 1024.0, 40.0);
    EXPECT_GT(Search_blocks(Chain(1000000), 100).size(), 3000U);
}

// Counts the blocks that are waited for; a test can throw at one.
class Counting_progress : public Progress {
public:
    void Tick() override {
        if (++n_ticks == throw_at) {
            throw Cancelled();
        }
    }
    void Node_started(std::uint32_t to_do, std::uint32_t) override {
        if (to_do == throw_at_to_do) {
            throw std::runtime_error("enough");
        }
    }
    std::size_t n_ticks = 0;
    std::size_t throw_at = 0;
    std::uint32_t throw_at_to_do = 0;
};

TEST(Parallel_finder, Ticks_on_the_calling_thread_at_each_block) {
    Graph const graph = Chain(10000);
    Counting_progress progress;
    Found_cliques found;
    Processor_clock clock;
    Find_cliques(found, graph, std::nullopt, clock, 2, progress);
    EXPECT_GE(progress.n_ticks, Search_blocks(graph, 2).size() - 1);
}

TEST(Parallel_finder, Ends_when_it_is_cancelled) {
    Processor_clock clock;
    for (bool const at_once : {true, false}) {
        Graph const graph = Hopeless_graph(120);
        Counting_progress progress;
        progress.throw_at = at_once ? 1 : 5;
        Found_cliques found;
        EXPECT_THROW(Find_cliques(found, graph, std::nullopt, clock, 3, progress), Cancelled);
    }
}

TEST(Parallel_finder, Ends_by_what_the_progress_throws) {
    Processor_clock clock;
    Graph const graph = Chain(1000);
    for (std::uint32_t const to_do : {1000U, 500U, 1U}) {
        Counting_progress progress;
        progress.throw_at_to_do = to_do;
        Found_cliques found;
        EXPECT_THROW(Find_cliques(found, graph, std::nullopt, clock, 3, progress),
                     std::runtime_error);
    }
}

// What is found ahead waits only until there is too much of it; the list is the same.
TEST(Parallel_finder, Finds_no_more_ahead_than_it_may) {
    Random_numbers random(11);
    for (int round = 0; round < 30; ++round) {
        Graph const graph = Random_graph(round % 2 == 1, random);
        Result const expected = Search(graph, 1);
        for (std::size_t const max_waiting : {0U, 1U, 500U}) {
            Captured_console console;
            Parallel_finder finder(graph, 3, console, max_waiting);
            Found_cliques found;
            Find_cliques(found, graph, finder, console);
            EXPECT_EQ(found.cliques, expected.found.cliques);
            EXPECT_EQ(console.Output(), expected.reports);
        }
    }
}

TEST(Parallel_finder, Is_ended_before_its_last_node) {
    Graph const graph = Chain(5000);
    Progress nobody;
    for (std::size_t const n_asked : {0U, 1U, 2500U}) {
        Parallel_finder finder(graph, 3, nobody);
        Set_list cliques;
        for (std::size_t i = 0; i < n_asked; ++i) {
            finder.Find(graph.Nodes()[i], cliques);
        }
        EXPECT_LE(cliques.size(), n_asked);
    }
}

} // namespace
} // namespace cpm::test
