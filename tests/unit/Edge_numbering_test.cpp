// SPDX-License-Identifier: MIT
#include "Coms_funcs/Edge_numbering.h"

#include "support/Errors.h"
#include "support/Graph_makers.h"

#include <gtest/gtest.h>
#include <numeric>
#include <set>

namespace cpm::test {
namespace {

using Pairs = std::vector<Node_pair>;

Index_links To_links(Pairs const& pairs) {
    Index_links links;
    links.pairs.Append(pairs);
    return links;
}

// All pairs of the table, by number.
Pairs All(Edge_numbering const& table) {
    Pairs pairs;
    for (Node first = 0; first < table.Smaller_ends_end(); ++first) {
        EXPECT_EQ(table.First_number(first), pairs.size());
        for (Node const second : table.Larger_neighbours(first)) {
            pairs.push_back({first, second});
        }
    }
    EXPECT_EQ(pairs.size(), table.size());
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        EXPECT_EQ(table.Number(pairs[i].first, pairs[i].second), i);
        EXPECT_EQ(table.Number(pairs[i].second, pairs[i].first), i) << "in either order";
    }
    return pairs;
}

TEST(Edge_numbering, Undirected_pairs_are_numbered_as_the_links_are) {
    Pairs const pairs{{1, 2}, {1, 5}, {2, 3}, {4, 5}};
    Edge_numbering const table(To_links(pairs), 5, {}, 0);
    EXPECT_EQ(All(table), pairs);
    EXPECT_EQ(table.Smaller_ends_end(), 6U);
    EXPECT_EQ(To_vector(table.Larger_neighbours(1)), (std::vector<Node>{2, 5}));
    EXPECT_EQ(To_vector(table.Larger_neighbours(3)), std::vector<Node>());
    EXPECT_EQ(To_vector(table.Larger_neighbours(5)), std::vector<Node>());
}

TEST(Edge_numbering, Directed_links_lose_their_direction) {
    EXPECT_EQ(All(Edge_numbering(To_links({{1, 2}, {2, 1}, {3, 1}, {3, 2}, {4, 3}}), 4, {}, 0)),
              (Pairs{{1, 2}, {1, 3}, {2, 3}, {3, 4}}));
}

TEST(Edge_numbering, Pairs_inside_approximated_cliques_are_added) {
    Set_list const cliques{{1, 2, 3}, {2, 4, 5}, {1, 4, 5}};
    Index_links const links = To_links({{1, 2}, {1, 3}, {2, 3}, {4, 5}});
    EXPECT_EQ(All(Edge_numbering(links, 5, cliques, 3)), (Pairs{{1, 2}, {1, 3}, {2, 3}, {4, 5}}));
    EXPECT_EQ(All(Edge_numbering(links, 5, cliques, 2)),
              (Pairs{{1, 2}, {1, 3}, {1, 4}, {1, 5}, {2, 3}, {4, 5}}));
    EXPECT_EQ(All(Edge_numbering(links, 5, cliques, 1)),
              (Pairs{{1, 2}, {1, 3}, {1, 4}, {1, 5}, {2, 3}, {2, 4}, {2, 5}, {4, 5}}));
}

TEST(Edge_numbering, A_set_of_too_many_pairs_is_refused_before_any_is_stored) {
    Node const n = 92683; // one node less has 4294930221 pairs, which can be numbered
    std::vector<Node> all(n);
    std::iota(all.begin(), all.end(), 1U);
    Set_list cliques;
    cliques.Add(all);
    EXPECT_THROW(Edge_numbering(Index_links(), n, cliques, 0), Too_large);
    EXPECT_EQ(Edge_numbering(Index_links(), n, cliques, 1).size(), 0U) << "its pairs are links";
}

TEST(Edge_numbering, No_links_make_an_empty_table) {
    EXPECT_EQ(All(Edge_numbering(Index_links(), 0, {}, 0)), Pairs());
    EXPECT_EQ(Edge_numbering().size(), 0U);
    EXPECT_EQ(Edge_numbering().Smaller_ends_end(), 0U);
}

TEST(Edge_numbering, Random_tables_agree_with_a_set) {
    Random_numbers random(83);
    for (int round = 0; round < 300; ++round) {
        // Among many nodes the cliques are small, among few they are not.
        Node const n = 2 + random.Below(round % 3 == 0 ? 700 : 25);
        bool const directed = round % 2 == 0;
        std::set<Node_pair> links;
        std::set<Node_pair> expected;
        for (std::uint32_t left = random.Below(3 * n); left > 0; --left) {
            Node const a = 1 + random.Below(n);
            Node const b = 1 + random.Below(n);
            Node_pair const ascending{std::min(a, b), std::max(a, b)};
            if (a != b) {
                links.insert(directed ? Node_pair{a, b} : ascending);
                expected.insert(ascending);
            }
        }
        Set_list cliques;
        std::size_t const n_cliques = random.Below(8);
        std::size_t const n_exact = random.Below(9);
        for (std::size_t c = 0; c < n_cliques; ++c) {
            Nodes clique;
            for (std::uint32_t left = 1 + random.Below(6); left > 0; --left) {
                clique.insert(1 + random.Below(n));
            }
            cliques.Add(std::vector<Node>(clique.begin(), clique.end()));
            if (c >= n_exact) {
                for (Node const a : clique) {
                    for (Node const b : clique) {
                        if (a < b) {
                            expected.insert({a, b});
                        }
                    }
                }
            }
        }
        Edge_numbering const table(To_links(Pairs(links.begin(), links.end())), n, cliques,
                                   n_exact);
        ASSERT_EQ(All(table), Pairs(expected.begin(), expected.end())) << "round " << round;
    }
}

} // namespace
} // namespace cpm::test
