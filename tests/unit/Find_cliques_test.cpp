// SPDX-License-Identifier: MIT
#include "Clique_find/Find_cliques.h"

#include "Clique_find/Appr_core_cliques.h"
#include "Clique_find/Clique_find.h"
#include "support/Captured_console.h"
#include "support/Graph_makers.h"
#include "support/Test_clocks.h"

#include <gtest/gtest.h>
#include <string>

namespace cpm::test {
namespace {

using Sets = std::vector<std::vector<Node>>;

constexpr double ample = 1e9;
constexpr double none_at_all = -1;

// Each pair one way, or the other, or both ways.
Graph Directed(Links const& links, Random_numbers& random) {
    Index_links const undirected = To_index_links(links);
    std::set<Node_pair> directed;
    for (Node_pair const& pair : undirected.pairs) {
        std::uint32_t const ways = random.Below(5);
        if (ways != 0) {
            directed.insert(pair);
        }
        if (ways < 3) {
            directed.insert({pair.second, pair.first});
        }
    }
    Index_links index_links;
    for (Node_pair const& pair : directed) {
        index_links.pairs.push_back(pair);
    }
    return Graph(index_links, true);
}

struct Result {
    Found_cliques found;
    std::string reports;
    Sets Cliques() const { return To_vectors(found.cliques); }
};

// With a clock that goes on by a second each time it is read.
Result Find(Graph const& graph, std::optional<double> max_time) {
    Captured_console console;
    Result result;
    double seconds = 0;
    Clock_of clock([&] { return ++seconds; });
    Find_cliques(result.found, graph, max_time, clock, console);
    result.reports = console.Output();
    return result;
}

// The text of the error that ends a search with this limit, or nothing.
std::string Error_at(std::size_t max_cliques, Graph const& graph, std::optional<double> max_time) {
    Found_cliques found;
    Progress nobody;
    double seconds = 0;
    Clock_of clock([&] { return ++seconds; });
    try {
        Find_cliques(found, graph, max_time, clock, nobody, max_cliques);
    } catch (Too_large const& error) {
        return error.what();
    }
    return "";
}

// The same, put together from the searches and the approximation.
Result Find_by_parts(Graph const& graph, double max_time) {
    Captured_console console;
    Result result;
    double seconds = 0;
    Clock_of clock([&] { return ++seconds; });
    std::vector<Node> core;
    Set_list& cliques = result.found.cliques;
    if (graph.Directed()) {
        Clique_find_dir_time(cliques, graph, core, max_time, clock, console);
    } else {
        Clique_find_part_time(cliques, graph, core, max_time, clock, console);
    }
    result.found.n_exact = cliques.size();
    if (!core.empty()) {
        console.Get().Put_line("_____________________________________________");
        console.Get().Put_line(" Approximating cliques in the remaing core...");
        Set_list const before = cliques;
        Set_list approx;
        Appr_core_cliques(Core_of_nodes(core, graph), cliques, approx);
        bool const of_all = true; // what an undirected search need not ask
        if (Extend_clique_vec(cliques, result.found.n_exact, approx, of_all)) {
            result.found.before_merge = before;
        }
        console.Get().Put_line(" Clique approximation finished,\n number of   exact cliques=" +
                               std::to_string(result.found.n_exact) +
                               ",\n number of approx. cliques=" + std::to_string(approx.size()));
    }
    result.reports = console.Output();
    return result;
}

void Expect_same(Result const& result, Result const& expected) {
    EXPECT_EQ(result.Cliques(), expected.Cliques());
    EXPECT_EQ(result.found.n_exact, expected.found.n_exact);
    EXPECT_EQ(result.found.before_merge, expected.found.before_merge);
    EXPECT_EQ(result.reports, expected.reports);
}

TEST(Find_cliques, Without_a_limit_all_cliques_are_exact) {
    Graph const graph(To_index_links({{1, 2}, {1, 3}, {2, 3}, {2, 4}, {3, 4}}));
    Result const result = Find(graph, std::nullopt);
    EXPECT_EQ(result.Cliques(), (Sets{{1, 2, 3}, {2, 3, 4}}));
    EXPECT_EQ(result.found.n_exact, 2U);
    EXPECT_FALSE(result.found.nested);
    EXPECT_FALSE(result.found.before_merge);
    Captured_console console;
    Set_list cliques;
    Clique_find(cliques, graph, console);
    EXPECT_EQ(result.reports, console.Output()) << "nothing is said beside the search";
}

TEST(Find_cliques, Directed_without_a_limit_all_cliques_are_exact) {
    Random_numbers random(107);
    for (int round = 0; round < 20; ++round) {
        Graph const graph = Directed(Random_links(12, 50, random), random);
        Result const result = Find(graph, std::nullopt);
        Captured_console console;
        Set_list cliques;
        Clique_find_dir(cliques, graph, console);
        ASSERT_EQ(result.Cliques(), To_vectors(cliques));
        ASSERT_EQ(result.found.n_exact, cliques.size());
        ASSERT_EQ(result.reports, console.Output());
        ASSERT_FALSE(result.found.nested);
    }
}

TEST(Find_cliques, A_node_never_skipped_needs_no_approximation) {
    Graph const graph(To_index_links(Complete(1, 5)));
    Result const result = Find(graph, ample);
    EXPECT_EQ(result.Cliques(), (Sets{{1, 2, 3, 4, 5}}));
    EXPECT_EQ(result.found.n_exact, 1U);
    EXPECT_EQ(result.reports.find("Approximating"), std::string::npos);
    EXPECT_TRUE(result.reports.ends_with(" no approximation was needed\n"));
    Expect_same(result, Find_by_parts(graph, ample));
}

TEST(Find_cliques, The_cliques_of_the_core_are_approximated) {
    // Nodes 5 and 6 are done, nodes 1 to 4 are not.
    Links links = Complete(1, 4);
    links.merge(Links{{4, 5}, {4, 6}, {5, 6}});
    Result const result = Find(Graph(To_index_links(links)), none_at_all);
    EXPECT_EQ(result.Cliques(), (Sets{{4, 5, 6}, {2, 3, 4}, {1, 3, 4}, {1, 2, 4}, {1, 2, 3}}));
    EXPECT_EQ(result.found.n_exact, 1U);
    EXPECT_FALSE(result.found.before_merge) << "no exact clique was dropped";
    EXPECT_TRUE(result.reports.ends_with("__________________________________\n"
                                         " Altogether 1 exact cliques found.\n"
                                         "_____________________________________________\n"
                                         " Approximating cliques in the remaing core...\n"
                                         " Clique approximation finished,\n"
                                         " number of   exact cliques=1,\n"
                                         " number of approx. cliques=4\n"));
}

TEST(Find_cliques, Undirected_searches_are_completed_by_their_approximation) {
    Random_numbers random(109);
    for (int round = 0; round < 60; ++round) {
        Graph const graph(To_index_links(Random_links(6 + random.Below(12), 60, random)));
        double const max_time = random.Below(4);
        Result const result = Find(graph, max_time);
        ASSERT_NO_FATAL_FAILURE(Expect_same(result, Find_by_parts(graph, max_time)));
        ASSERT_FALSE(result.found.nested);
    }
}

TEST(Find_cliques, Directed_searches_keep_the_list_that_the_merge_drops_cliques_of) {
    Random_numbers random(113);
    int dropped = 0;
    for (int round = 0; round < 300; ++round) {
        Graph const graph = Directed(Random_links(5 + random.Below(10), 75, random), random);
        double const max_time = random.Below(4) - 1.0;
        Result const result = Find(graph, max_time);
        ASSERT_NO_FATAL_FAILURE(Expect_same(result, Find_by_parts(graph, max_time)))
            << "round " << round;
        bool const has_core = result.reports.find("Approximating") != std::string::npos;
        ASSERT_EQ(result.found.nested, has_core);
        if (result.found.before_merge) {
            ++dropped;
            ASSERT_GT(result.found.before_merge->size(), result.found.n_exact);
        }
    }
    EXPECT_GT(dropped, 0);
}

TEST(Find_cliques, More_cliques_than_can_be_numbered_end_the_search) {
    Random_numbers random(127);
    Links const links = Random_links(14, 60, random);
    for (Graph const& graph : {Graph(To_index_links(links)), Directed(links, random)}) {
        for (std::optional<double> const max_time : {std::optional<double>(), {ample}}) {
            std::size_t const n = Find(graph, max_time).found.cliques.size();
            ASSERT_GT(n, 2U);
            EXPECT_EQ(Error_at(n, graph, max_time), "");
            EXPECT_EQ(Error_at(n - 1, graph, max_time),
                      "ERROR: the network has more than " + std::to_string(n - 1) + " cliques.");
            EXPECT_EQ(Error_at(1, graph, max_time), "ERROR: the network has more than 1 cliques.");
        }
    }
    EXPECT_EQ(max_n_cliques, 4294967295U);
}

TEST(Find_cliques, Approximated_cliques_are_numbered_too) {
    Links links = Complete(1, 4);
    links.merge(Links{{4, 5}, {4, 6}, {5, 6}});
    Graph const graph(To_index_links(links));
    ASSERT_EQ(Find(graph, none_at_all).found.cliques.size(), 5U);
    ASSERT_EQ(Find(graph, none_at_all).found.n_exact, 1U);
    EXPECT_EQ(Error_at(5, graph, none_at_all), "");
    EXPECT_EQ(Error_at(4, graph, none_at_all), "ERROR: the network has more than 4 cliques.");
}

} // namespace
} // namespace cpm::test
