// SPDX-License-Identifier: MIT
#include "Clique_find/Clique_find.h"

#include "support/Captured_console.h"
#include "support/Cliques_by_sets.h"
#include "support/Graph_makers.h"
#include "support/Test_clocks.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace cpm::test {
namespace {

using Sets = std::vector<std::vector<Node>>;

constexpr double ample = 1e9;
constexpr double none_at_all = -1;

Graph Vertices(Links const& links) {
    return Graph(To_index_links(links));
}

struct Result {
    Sets cliques;
    std::vector<Node> core;
    std::string reports;
    int readings = 0; ///< of the clock
};

// With a clock that goes on by a second each time it is read.
Result Search(Graph const& vertices, double max_time) {
    Captured_console console;
    Set_list cliques{{7, 8, 9}}; // what was there before goes
    std::vector<Node> core{5};
    Result result;
    Clock_of clock([&] { return static_cast<double>(++result.readings); });
    Clique_find_part_time(cliques, vertices, core, max_time, clock, console);
    result.cliques = To_vectors(cliques);
    result.core = core;
    result.reports = console.Output();
    return result;
}

Sets Exact(Links const& links) {
    Captured_console console;
    Set_list cliques;
    Clique_find(cliques, Graph(To_index_links(links)), console);
    return To_vectors(cliques);
}

TEST(Clique_find_part_time, Enough_time_finds_what_the_search_without_a_limit_finds) {
    Random_numbers random(59);
    for (int round = 0; round < 200; ++round) {
        Node const n = 3 + random.Below(round % 10 == 0 ? 90 : 14);
        Links links = round % 2 == 0
                          ? Random_links(n, 10 + random.Below(n > 16 ? 20 : 90), random)
                          : Random_teams(n, 2 + random.Below(12), std::min(n, 9U), random);
        if (round % 20 == 0) { // a hub, for long lists of neighbours and many candidates
            for (Node node = 2; node <= n; ++node) {
                links.insert({1, node});
            }
        }
        Result const result = Search(Vertices(links), ample);
        ASSERT_EQ(result.cliques, Exact(links)) << "round " << round;
        ASSERT_EQ(result.core, std::vector<Node>());
        ASSERT_TRUE(result.reports.ends_with(" cliques found.\n no approximation was needed\n"));
    }
}

TEST(Clique_find_part_time, No_node_too_slow_says_so) {
    EXPECT_EQ(Search(Vertices(Complete(1, 3)), 0.5).reports,
              "________________________________________________\n"
              " Locating cliques, max. allowed time/node=0.500:\n"
              " 3 of 3 nodes to do (0.00% done)\n"
              "________________________________________________\n"
              " Locating cliques, max. allowed time/node=0.500:\n"
              " 2 of 3 nodes to do (33.33% done)\n"
              "________________________________________________\n"
              " Locating cliques, max. allowed time/node=0.500:\n"
              " 1 of 3 nodes to do (66.67% done)\n"
              "____________________________\n"
              " Altogether 1 cliques found.\n"
              " no approximation was needed\n");
}

TEST(Clique_find_part_time, An_empty_network_needs_no_clock) {
    Result const result = Search(Vertices({}), 1);
    EXPECT_EQ(result.cliques, Sets());
    EXPECT_EQ(result.core, std::vector<Node>());
    EXPECT_EQ(result.readings, 0);
    EXPECT_EQ(result.reports, "____________________________\n"
                              " Altogether 0 cliques found.\n"
                              " no approximation was needed\n");
}

TEST(Clique_find_part_time, Cliques_of_three_nodes_need_no_time) {
    // Triangles around node 1, and one beside.
    Links const links{{1, 2}, {1, 3}, {2, 3}, {1, 4}, {1, 5}, {4, 5}, {6, 7}, {6, 8}, {7, 8}};
    Result const result = Search(Vertices(links), none_at_all);
    EXPECT_EQ(result.cliques, Exact(links));
    EXPECT_EQ(result.core, std::vector<Node>());
    EXPECT_EQ(result.readings, 8) << "one at the start of each node";
}

TEST(Clique_find_part_time, When_all_nodes_overrun_in_a_row_the_search_ends) {
    Result const result = Search(Vertices(Complete(1, 4)), none_at_all);
    EXPECT_EQ(result.cliques, Sets());
    EXPECT_EQ(result.core, (std::vector<Node>{1, 2, 3, 4}));
    std::string const title = "_________________________________________________\n"
                              " Locating cliques, max. allowed time/node=-1.000:\n"
                              " 4 of 4 nodes to do (0.00% done)\n";
    EXPECT_EQ(result.reports, title +
                                  " Exceeded allowed time at node no.1,\n"
                                  " skipping, 1 out of 4 skipped in a row, (25.00%)\n" +
                                  title +
                                  " Exceeded allowed time at node no.2,\n"
                                  " skipping, 2 out of 4 skipped in a row, (50.00%)\n" +
                                  title +
                                  " Exceeded allowed time at node no.3,\n"
                                  " skipping, 3 out of 4 skipped in a row, (75.00%)\n" +
                                  title +
                                  " Exceeded allowed time at node no.4,\n"
                                  " skipping, 4 out of 4 skipped in a row, (100.00%)\n"
                                  "__________________________________________________\n"
                                  " The extraction of cliques has been found too slow \n"
                                  " at all of the remaining nodes.\n"
                                  "__________________________________\n"
                                  " Altogether 0 exact cliques found.\n");
}

TEST(Clique_find_part_time, The_time_must_be_exceeded) {
    // The first reading after the start is a second later.
    EXPECT_EQ(Search(Vertices(Complete(1, 4)), 1).core, std::vector<Node>());
    EXPECT_EQ(Search(Vertices(Complete(1, 4)), 0.999).core.size(), 4U);
}

TEST(Clique_find_part_time, What_was_found_at_nodes_given_up_is_listed) {
    // The triangle {1, 2, 3}; at each of its nodes hangs a clique of four that takes too long.
    Links links = Complete(1, 3);
    for (Node const node : {1U, 2U, 3U}) {
        for (auto const& [a, b] : Complete(1, 3)) {
            links.insert({3 * node + a, 3 * node + b});
            links.insert({node, 3 * node + a});
            links.insert({node, 3 * node + b});
        }
    }
    Result const result = Search(Vertices(links), none_at_all);
    EXPECT_EQ(result.cliques, (Sets{{1, 2, 3}}));
    EXPECT_EQ(result.core.size(), 12U);
    EXPECT_TRUE(result.reports.ends_with(" Altogether 1 exact cliques found.\n"));
}

TEST(Clique_find_part_time, Nodes_that_overrun_are_tried_again_after_the_others) {
    Graph const vertices = Vertices(Complete(1, 5));
    std::vector<bool> const overruns{true, true, false, true, true, true, false};
    Captured_console console;
    Set_list cliques;
    std::vector<Node> core;
    Fitful_clock clock(overruns);
    Clique_find_part_time(cliques, vertices, core, 0.5, clock, console);
    EXPECT_EQ(To_vectors(cliques), (Sets{{1, 2, 3, 4, 5}}));
    EXPECT_EQ(core, std::vector<Node>());
    std::string text = console.Output();
    std::vector<std::string> skips;
    for (std::size_t at = 0; (at = text.find("at node no.", at)) != std::string::npos; ++at) {
        std::size_t const end = text.find(" skipped", at);
        skips.push_back(text.substr(at + 11, end - at - 11));
    }
    // Node 3 is done with all cliques; then nothing of the others takes time.
    EXPECT_EQ(skips,
              (std::vector<std::string>{"1,\n skipping, 1 out of 5", "2,\n skipping, 2 out of 5"}));
}

TEST(Clique_find_part_time, The_cliques_of_a_done_hub_are_not_found_again) {
    // Node 1 has many more neighbours than there are candidates. The leaves come first and take no
    // time, then nodes 2 to 5 overrun, and node 1 is done before all of them.
    Links links = Complete(1, 5);
    for (Node leaf = 6; leaf <= 200; ++leaf) {
        links.insert({1, leaf});
    }
    std::vector<bool> overruns(195, false);
    overruns.resize(199, true);
    Captured_console console;
    Set_list cliques;
    std::vector<Node> core;
    Fitful_clock clock(overruns);
    Clique_find_part_time(cliques, Vertices(links), core, 0.5, clock, console);
    EXPECT_NE(console.Output().find("4 out of 5 skipped"), std::string::npos);
    EXPECT_EQ(To_vectors(cliques), (Sets{{1, 2, 3, 4, 5}}));
}

TEST(Clique_find_part_time, Random_overruns_agree_with_the_search_by_sets) {
    Random_numbers random(61);
    int given_up = 0;
    int listed_pending = 0;
    for (int round = 0; round < 600; ++round) {
        Node const n = 4 + random.Below(10);
        Links const links = round % 2 == 0
                                ? Random_links(n, 20 + random.Below(80), random)
                                : Random_teams(n, 2 + random.Below(9), std::min(n, 6U), random);
        Graph const vertices = Vertices(links);
        Vtx_map records;
        Vtx_map_from_link_map(records, To_index_links(links));
        std::vector<bool> overruns(1000);
        std::uint32_t const chance = random.Below(120);
        for (std::size_t i = 0; i < overruns.size(); ++i) {
            overruns[i] = random.Percent(chance);
        }
        Cliques_by_sets by_sets(records);
        by_sets.Search(" Locating cliques, max. allowed time/node=0.500:", overruns);
        Captured_console console;
        Set_list cliques;
        std::vector<Node> core;
        Fitful_clock clock(overruns);
        Clique_find_part_time(cliques, vertices, core, 0.5, clock, console);
        ASSERT_EQ(console.Output(), by_sets.Reports()) << "round " << round;
        ASSERT_EQ(To_vectors(cliques), by_sets.Cliques()) << "round " << round;
        ASSERT_EQ(core, by_sets.Core()) << "round " << round;
        given_up += core.empty() ? 0 : 1;
        listed_pending += !core.empty() && !by_sets.Cliques().empty() &&
                                  std::ranges::includes(core, by_sets.Cliques().back())
                              ? 1
                              : 0;
    }
    EXPECT_GT(given_up, 50);
    EXPECT_GT(listed_pending, 5);
}

// Wherever the time runs out: what has a done node is known in full, nothing else than cliques is
// listed, and nothing twice.
TEST(Clique_find_part_time, Whenever_the_time_runs_out_the_cliques_of_done_nodes_are_all_there) {
    Random_numbers random(67);
    unsigned given_up = 0;
    unsigned const rounds = Rounds(30);
    for (unsigned round = 0; round < rounds; ++round) {
        // Neighbours by threes: many cliques, so that the clock is read often.
        Node const groups = 6 + random.Below(3);
        Links links = Complete(1, 3 * groups);
        std::erase_if(
            links, [](auto const& link) { return (link.first - 1) / 3 == (link.second - 1) / 3; });
        for (Node extra = 0; extra < 10; ++extra) {
            links.insert({1 + random.Below(3 * groups), 3 * groups + 1 + random.Below(8)});
        }
        Graph const vertices = Vertices(links);
        Sets const exact = Exact(links);
        Result const result = Search(vertices, random.Below(10));
        std::vector<bool> done(vertices.size() + 1, true);
        for (Node const node : result.core) {
            done[node] = false;
        }
        auto const has_done = [&](std::vector<Node> const& clique) {
            return std::ranges::any_of(clique, [&](Node node) { return done[node]; });
        };
        std::set<std::vector<Node>> const listed(result.cliques.begin(), result.cliques.end());
        ASSERT_EQ(listed.size(), result.cliques.size()) << "round " << round;
        std::set<std::vector<Node>> const all(exact.begin(), exact.end());
        for (auto const& clique : exact) {
            ASSERT_TRUE(!has_done(clique) || listed.count(clique) > 0) << "round " << round;
        }
        for (auto const& clique : result.cliques) {
            ASSERT_TRUE(clique.size() == 3 || all.count(clique) > 0) << "round " << round;
        }
        ASSERT_TRUE(std::ranges::is_partitioned(result.cliques, has_done)) << "round " << round;
        given_up += result.core.empty() ? 0U : 1U;
    }
    EXPECT_GT(given_up, 3U);
    EXPECT_LT(given_up, rounds);
}

} // namespace
} // namespace cpm::test
