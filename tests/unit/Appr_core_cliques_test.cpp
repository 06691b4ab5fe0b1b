// SPDX-License-Identifier: MIT
#include "Clique_find/Appr_core_cliques.h"

#include "support/Graph_makers.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <vector>

namespace cpm::test {
namespace {

using Sets = std::vector<std::vector<Node>>;

Core Made_core(std::map<Node, std::vector<Node>> const& neighs) {
    Core core;
    for (auto const& [node, nodes] : neighs) {
        core.nodes.push_back(node);
        core.neighs.Add(nodes);
    }
    return core;
}

Set_list List(Sets const& sets) {
    Set_list list;
    for (auto const& set : sets) {
        list.Add(set);
    }
    return list;
}

Sets Approximated(Core const& core, Sets const& exact) {
    Set_list approx{{1, 2, 3}}; // what was there before goes
    Appr_core_cliques(core, List(exact), approx);
    return To_vectors(approx);
}

bool Inside_one(std::vector<Node> const& part, Sets const& sets) {
    return std::ranges::any_of(sets,
                               [&](auto const& set) { return std::ranges::includes(set, part); });
}

// One candidate after the other, as the rule is told.
Sets Approximated_step_by_step(Core const& core, Sets const& exact) {
    Sets accepted;
    for (std::size_t i = 0; i < core.neighs.size(); ++i) {
        std::vector<Node> const candidate = To_vector(core.neighs[i]);
        if (!Inside_one(candidate, accepted) && !Inside_one(candidate, exact)) {
            accepted.push_back(candidate);
        }
    }
    Sets kept;
    for (std::size_t a = 0; a < accepted.size(); ++a) {
        bool covered = false;
        for (std::size_t b = 0; b < accepted.size(); ++b) {
            covered = covered || (a != b && std::ranges::includes(accepted[b], accepted[a]));
        }
        if (!covered) {
            kept.push_back(accepted[a]);
        }
    }
    return kept;
}

std::vector<Node> Random_set(Node largest, std::uint32_t size, Random_numbers& random) {
    Nodes nodes;
    for (std::uint32_t i = 0; i < size; ++i) {
        nodes.insert(1 + random.Below(largest));
    }
    return {nodes.begin(), nodes.end()};
}

TEST(Appr_core_cliques, A_node_alone_gives_the_empty_set_unless_there_is_an_exact_clique) {
    EXPECT_EQ(Approximated(Made_core({{5, {}}}), {}), (Sets{{}}));
    EXPECT_EQ(Approximated(Made_core({{5, {}}}), {{1, 2, 3}}), Sets{});
}

TEST(Appr_core_cliques, Of_equal_neighbourhoods_one_stays) {
    EXPECT_EQ(Approximated(Made_core({{1, {3, 4, 5}}, {2, {3, 4, 5}}}), {}), (Sets{{3, 4, 5}}));
}

TEST(Appr_core_cliques, A_neighbourhood_inside_an_exact_clique_gives_nothing) {
    EXPECT_EQ(Approximated(Made_core({{1, {2, 3}}, {4, {5, 6}}}), {{2, 3, 9}}), (Sets{{5, 6}}));
}

TEST(Appr_core_cliques, A_triangle_gives_its_three_links) {
    EXPECT_EQ(Approximated(Made_core({{1, {2, 3}}, {2, {1, 3}}, {3, {1, 2}}}), {}),
              (Sets{{2, 3}, {1, 3}, {1, 2}}));
}

TEST(Appr_core_cliques, A_larger_later_neighbourhood_takes_the_place_of_a_smaller_one) {
    EXPECT_EQ(Approximated(Made_core({{1, {3, 4}}, {2, {3, 4, 5}}}), {}), (Sets{{3, 4, 5}}));
}

TEST(Appr_core_cliques, The_neighbours_need_not_be_linked_and_the_node_is_not_among_them) {
    EXPECT_EQ(Approximated(Made_core({{1, {2, 3, 4}}, {2, {1}}, {3, {1}}, {4, {1}}}), {}),
              (Sets{{2, 3, 4}, {1}}));
}

TEST(Appr_core_cliques, Judging_each_by_itself_is_the_same_as_step_by_step) {
    Random_numbers random(1);
    for (int run = 0; run < 2000; ++run) {
        Node const largest = 2 + random.Below(8);
        Links const links = Random_links(largest, 10 + random.Below(90), random);
        Core core;
        for (Node node = 1; node <= largest; ++node) {
            core.nodes.push_back(node);
            for (Node other = 1; other <= largest; ++other) {
                if (links.contains({std::min(node, other), std::max(node, other)})) {
                    core.neighs.Append(other);
                }
            }
            core.neighs.Close_list();
        }
        Sets exact;
        for (std::uint32_t i = random.Below(4); i > 0; --i) {
            exact.push_back(Random_set(largest + 2, random.Below(5), random));
        }
        ASSERT_EQ(Approximated(core, exact), Approximated_step_by_step(core, exact));
    }
}

TEST(Core_of_nodes, Neighbours_outside_the_core_are_left_out) {
    Graph const network(To_index_links(Complete(1, 4)));
    Core const core = Core_of_nodes({1, 3, 4}, network);
    EXPECT_EQ(core.nodes, (std::vector<Node>{1, 3, 4}));
    EXPECT_EQ(To_vectors(core.neighs), (Sets{{3, 4}, {1, 4}, {1, 3}}));
}

TEST(Core_of_nodes, In_a_directed_network_both_directions_make_neighbours) {
    Index_links links;
    links.pairs.Append(std::vector<Node_pair>{{1, 2}, {2, 3}, {3, 1}});
    EXPECT_EQ(To_vectors(Core_of_nodes({1, 2, 3}, Graph(links, true)).neighs),
              (Sets{{2, 3}, {1, 3}, {1, 2}}));
}

struct Merged {
    Sets cliques;
    std::size_t n_exact = 0;
    Sets approx;
    bool dropped = false;
    friend bool operator==(Merged const&, Merged const&) = default;
};

Merged Extended(Sets const& exact, Sets const& approx, bool directed = true) {
    Set_list cliques = List(exact);
    Set_list more = List(approx);
    std::size_t n_exact = 99;
    bool const dropped = Extend_clique_vec(cliques, n_exact, more, directed);
    return {To_vectors(cliques), n_exact, To_vectors(more), dropped};
}

TEST(Extend_clique_vec, Approximated_cliques_come_after_the_exact_ones) {
    EXPECT_EQ(Extended({{1, 2, 3}}, {{4, 5}, {1, 4}}),
              (Merged{{{1, 2, 3}, {4, 5}, {1, 4}}, 1, {{4, 5}, {1, 4}}, false}));
}

TEST(Extend_clique_vec, An_approximated_clique_inside_an_exact_one_goes) {
    EXPECT_EQ(Extended({{1, 2, 3}}, {{1, 3}, {1, 2, 3}}), (Merged{{{1, 2, 3}}, 1, {}, false}));
}

TEST(Extend_clique_vec, An_exact_clique_inside_an_approximated_one_goes_and_this_is_told) {
    EXPECT_EQ(Extended({{1, 2, 3}, {4, 5, 6}}, {{1, 2, 3, 7}}),
              (Merged{{{4, 5, 6}, {1, 2, 3, 7}}, 1, {{1, 2, 3, 7}}, true}));
}

TEST(Extend_clique_vec, An_undirected_set_of_three_nodes_can_lie_inside_one_too) {
    bool const directed = false;
    EXPECT_EQ(Extended({{1, 2, 3}, {4, 5, 6, 7}}, {{1, 2, 3, 8}}, directed),
              (Merged{{{4, 5, 6, 7}, {1, 2, 3, 8}}, 1, {{1, 2, 3, 8}}, true}));
}

TEST(Extend_clique_vec, Nothing_to_add_changes_nothing) {
    EXPECT_EQ(Extended({{1, 2, 3}}, {}), (Merged{{{1, 2, 3}}, 1, {}, false}));
    EXPECT_EQ(Extended({}, {}), (Merged{{}, 0, {}, false}));
}

TEST(Extend_clique_vec, Random_lists_are_merged_as_the_rule_says) {
    Random_numbers random(2);
    for (int run = 0; run < 2000; ++run) {
        Sets exact;
        Sets approx;
        for (Sets* const list : {&exact, &approx}) {
            for (std::uint32_t i = random.Below(7); i > 0; --i) {
                list->push_back(Random_set(7, random.Below(6), random));
            }
        }
        Merged expected;
        for (auto const& set : approx) {
            if (!Inside_one(set, exact)) {
                expected.approx.push_back(set);
            }
        }
        for (auto const& set : exact) {
            if (!Inside_one(set, expected.approx)) {
                expected.cliques.push_back(set);
            }
        }
        expected.n_exact = expected.cliques.size();
        expected.dropped = expected.n_exact < exact.size();
        expected.cliques.insert(expected.cliques.end(), expected.approx.begin(),
                                expected.approx.end());
        ASSERT_EQ(Extended(exact, approx), expected);
    }
}

TEST(Max_clique_size_in_cl_vec, Is_the_size_of_the_largest_clique_or_0) {
    EXPECT_EQ(Max_clique_size_in_cl_vec({{1, 2, 3}, {4, 5}}), 3U);
    EXPECT_EQ(Max_clique_size_in_cl_vec({}), 0U);
}

} // namespace
} // namespace cpm::test
