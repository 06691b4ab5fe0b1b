// SPDX-License-Identifier: MIT
#include "Coms_funcs/Community_graph.h"

#include "support/Errors.h"
#include "support/Random_numbers.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

namespace cpm {
namespace {

using Pair = std::pair<std::uint32_t, std::uint32_t>;
using Graph = std::map<Pair, std::uint32_t>;

Communities Coms(Set_list const& nodes, std::uint32_t n_exact) {
    Communities coms;
    coms.nodes = nodes;
    coms.n_exact = n_exact;
    return coms;
}

// All rows, with the order they came in checked.
Graph Walked(Community_graph& graph) {
    Graph pairs;
    Pair last{0, 0};
    graph.Walk([&](std::uint32_t community, std::span<Overlap const> row) {
        EXPECT_FALSE(row.empty());
        for (Overlap const& overlap : row) {
            Pair const pair{community, overlap.community};
            EXPECT_LT(last, pair);
            EXPECT_LT(community, overlap.community);
            last = pair;
            pairs[pair] = overlap.shared;
        }
    });
    return pairs;
}

Graph Walked(Communities const& coms) {
    Community_graph graph;
    Prepare_community_graph(coms, graph);
    return Walked(graph);
}

Community_distributions Statistics(Communities const& coms, Community_part part, Node node_count) {
    Community_graph graph;
    Prepare_community_graph(coms, graph);
    Community_distributions distributions;
    Community_statistics(distributions, graph, part, node_count);
    return distributions;
}

Distribution Listed(std::map<std::size_t, std::uint64_t> const& counts) {
    Distribution distribution;
    for (auto const& [value, count] : counts) {
        distribution.push_back({static_cast<std::uint32_t>(value), count});
    }
    return distribution;
}

// By definition, from nothing but the sets of one part.
Community_distributions Plain_statistics(std::vector<std::set<Node>> const& coms, Node node_count) {
    std::map<std::size_t, std::uint64_t> memberships;
    std::map<std::size_t, std::uint64_t> sizes;
    std::map<std::size_t, std::uint64_t> overlaps;
    std::map<std::size_t, std::uint64_t> degrees;
    std::map<Node, std::size_t> coms_of;
    for (std::size_t i = 0; i < coms.size(); ++i) {
        ++sizes[coms[i].size()];
        std::size_t degree = 0;
        for (std::size_t j = 0; j < coms.size(); ++j) {
            std::size_t shared = 0;
            for (Node const node : coms[i]) {
                shared += coms[j].count(node);
            }
            if (j != i && shared > 0) {
                ++degree;
                overlaps[shared] += j > i ? 1u : 0u;
            }
        }
        ++degrees[degree];
        for (Node const node : coms[i]) {
            ++coms_of[node];
        }
    }
    for (auto const& [node, count] : coms_of) {
        ++memberships[count];
    }
    memberships[0] = node_count - coms_of.size();
    return {Listed(memberships), Listed(sizes), Listed(overlaps), Listed(degrees)};
}

void Expect_equal(Community_distributions const& got, Community_distributions const& expected) {
    EXPECT_EQ(got.membership, expected.membership);
    EXPECT_EQ(got.size, expected.size);
    EXPECT_EQ(got.overlap, expected.overlap);
    EXPECT_EQ(got.degree, expected.degree);
}

TEST(Prepare_community_graph, No_communities_give_an_empty_graph) {
    EXPECT_TRUE(Walked(Coms({}, 0)).empty());
}

TEST(Prepare_community_graph, Communities_without_shared_nodes_give_no_pairs) {
    EXPECT_TRUE(Walked(Coms({{1, 2}, {3, 4}, {5}}, 3)).empty());
}

TEST(Prepare_community_graph, Counts_the_shared_nodes_of_each_pair) {
    EXPECT_EQ(Walked(Coms({{1, 2, 3, 4}, {7, 8}, {2, 3, 4, 5}, {5, 8}}, 2)),
              (Graph{{{0, 2}, 3}, {{1, 3}, 1}, {{2, 3}, 1}}));
}

TEST(Prepare_community_graph, Can_be_walked_again) {
    Communities const coms = Coms({{1, 2, 3}, {2, 3, 4}, {3, 4, 5}}, 2);
    Community_graph graph;
    Prepare_community_graph(coms, graph);
    Graph const once = Walked(graph);
    EXPECT_EQ(Walked(graph), once);
    Community_distributions distributions;
    Community_statistics(distributions, graph, Community_part::all, 5);
    Expect_equal(distributions, Statistics(coms, Community_part::all, 5));
}

TEST(Community_statistics, No_communities_leave_all_nodes_in_none) {
    for (Community_part const part :
         {Community_part::all, Community_part::exact, Community_part::approximated}) {
        Expect_equal(Statistics(Coms({}, 0), part, 7), {{{0, 7}}, {}, {}, {}});
    }
}

TEST(Community_statistics, Two_communities_that_share_three_nodes) {
    Expect_equal(Statistics(Coms({{1, 2, 3, 4}, {2, 3, 4, 5, 6}}, 2), Community_part::all, 10),
                 {{{0, 4}, {1, 3}, {2, 3}}, {{4, 1}, {5, 1}}, {{3, 1}}, {{1, 2}}});
}

TEST(Community_statistics, A_community_that_shares_nothing_has_degree_0) {
    Expect_equal(Statistics(Coms({{1, 2, 3}}, 1), Community_part::all, 3),
                 {{{0, 0}, {1, 3}}, {{3, 1}}, {}, {{0, 1}}});
}

TEST(Community_statistics, Parts_count_their_own_communities_only) {
    Communities const coms = Coms({{1, 2, 3}, {2, 3, 4}, {3, 4, 5}, {8, 9}, {1, 9}}, 2);
    Expect_equal(Statistics(coms, Community_part::exact, 9),
                 {{{0, 5}, {1, 2}, {2, 2}}, {{3, 2}}, {{2, 1}}, {{1, 2}}});
    Expect_equal(Statistics(coms, Community_part::approximated, 9),
                 {{{0, 3}, {1, 5}, {2, 1}}, {{2, 2}, {3, 1}}, {{1, 1}}, {{0, 1}, {1, 2}}});
    Expect_equal(Statistics(coms, Community_part::all, 9), {{{0, 2}, {1, 2}, {2, 4}, {3, 1}},
                                                            {{2, 2}, {3, 3}},
                                                            {{1, 3}, {2, 2}},
                                                            {{1, 1}, {2, 3}, {3, 1}}});
}

TEST(Community_statistics, More_nodes_in_communities_than_there_are_is_an_error) {
    Communities const coms = Coms({{1, 2, 3}, {3, 4}}, 2);
    try {
        Statistics(coms, Community_part::all, 3);
        FAIL() << "no error";
    } catch (Xerror_msg const& error) {
        EXPECT_STREQ(error.what(), "ERROR: Community_statistics() : More vertex in the communities "
                                   "than in the graph.");
    }
    EXPECT_EQ(Statistics(coms, Community_part::all, 4).membership.front(), (Value_count{0, 0}));
    EXPECT_EQ(Statistics(coms, Community_part::exact, 4).membership.front(), (Value_count{0, 0}));
}

// From a few communities to so many that rows are sorted in either way.
TEST(Community_graph, Random_communities_agree_with_the_definition) {
    std::mt19937 random(1);
    Community_graph used_before;
    for (unsigned round = 0; round < test::Rounds(20); ++round) {
        std::size_t const n_coms = random() % (round % 10 == 9 ? 700 : 30);
        auto const n_nodes = static_cast<Node>(1 + random() % (round % 3 == 0 ? 2000 : 40));
        auto const n_exact = static_cast<std::uint32_t>(random() % (n_coms + 1));
        std::vector<std::set<Node>> sets(n_coms);
        Set_list lists;
        for (std::set<Node>& set : sets) {
            std::size_t const size = 1 + random() % 8;
            for (std::size_t i = 0; i < size; ++i) {
                set.insert(static_cast<Node>(1 + random() % n_nodes));
            }
            lists.Add(std::vector<Node>(set.begin(), set.end()));
        }
        Graph expected;
        for (std::uint32_t i = 0; i < n_coms; ++i) {
            for (std::uint32_t j = i + 1; j < n_coms; ++j) {
                std::uint32_t shared = 0;
                for (Node const node : sets[i]) {
                    shared += sets[j].contains(node) ? 1u : 0u;
                }
                if (shared > 0) {
                    expected[{i, j}] = shared;
                }
            }
        }
        Communities const coms = Coms(lists, n_exact);
        ASSERT_EQ(Walked(coms), expected);
        Prepare_community_graph(coms, used_before);
        ASSERT_EQ(Walked(used_before), expected);
        Community_distributions again;
        Community_statistics(again, used_before, Community_part::all, n_nodes);
        Expect_equal(again, Plain_statistics(sets, n_nodes));
        auto const middle = sets.begin() + n_exact;
        Expect_equal(Statistics(coms, Community_part::all, n_nodes),
                     Plain_statistics(sets, n_nodes));
        Expect_equal(Statistics(coms, Community_part::exact, n_nodes),
                     Plain_statistics({sets.begin(), middle}, n_nodes));
        Expect_equal(Statistics(coms, Community_part::approximated, n_nodes),
                     Plain_statistics({middle, sets.end()}, n_nodes));
    }
}

} // namespace
} // namespace cpm
