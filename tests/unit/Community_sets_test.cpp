// SPDX-License-Identifier: MIT
#include "Coms_funcs/Community_sets.h"

#include "support/Graph_makers.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>
#include <set>

namespace cpm::test {
namespace {

using Node_list = std::vector<Node>;
using Pairs = std::vector<Node_pair>;

// All pairs inside the sets, as undirected links.
Index_links Pairs_inside(Set_list const& cliques) {
    std::set<Node_pair> pairs;
    for (std::size_t c = 0; c < cliques.size(); ++c) {
        for (Node const a : cliques[c]) {
            for (Node const b : cliques[c]) {
                if (a < b) {
                    pairs.insert({a, b});
                }
            }
        }
    }
    Index_links links;
    links.pairs.Append(Pairs(pairs.begin(), pairs.end()));
    return links;
}

// Cliques, and what Community_sets needs beside them.
struct Network {
    Set_list cliques;
    Node n_nodes;
    Index_links links = Pairs_inside(cliques);
    Ranked_cliques ranked{cliques, n_nodes};
    Edge_numbering edges{links, n_nodes, cliques, cliques.size()};
    Community_sets sets{ranked, edges};

    Network(Set_list const& list, Node n) : cliques(list), n_nodes(n) {}

    Pairs Links_of(std::size_t community) {
        std::vector<std::uint32_t> order(sets.size());
        std::iota(order.begin(), order.end(), 0U);
        Pairs result;
        test::To_pairs visitor(links.pairs, result);
        sets.Links(order)->Visit(community, sets.Nodes(community), visitor);
        return result;
    }
    // The clique, with the nodes that another clique lacks.
    Adjacent_clique Led_by(Clique_number leader, Clique_number clique) const {
        std::span<Node const> const nodes = ranked[clique];
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            if (!std::ranges::binary_search(cliques[leader], nodes[i])) {
                bits |= std::uint64_t{1} << i;
            }
        }
        return {clique, bits};
    }
    // Nodes and links of a community, straight from its cliques.
    Node_list Expected_nodes(std::vector<Clique_number> const& members) const {
        Nodes nodes;
        for (Clique_number const c : members) {
            nodes.insert(cliques[c].begin(), cliques[c].end());
        }
        return {nodes.begin(), nodes.end()};
    }
    Pairs Expected_links(std::vector<Clique_number> const& members) const {
        Set_list chosen;
        for (Clique_number const c : members) {
            chosen.Add(cliques[c]);
        }
        Index_links const inside = Pairs_inside(chosen);
        return {inside.pairs.begin(), inside.pairs.end()};
    }
};

Adjacent_clique Whole(Clique_number clique) {
    return {clique, all_new};
}

TEST(Community_sets, A_single_clique_is_its_community) {
    Network network({{1, 2, 4}, {3, 5, 6}}, 6);
    network.sets.Start_level(true);
    network.sets.Add_community(std::vector<Adjacent_clique>{Whole(1)});
    ASSERT_EQ(network.sets.size(), 1U);
    EXPECT_EQ(To_vector(network.sets.Nodes(0)), (Node_list{3, 5, 6}));
    EXPECT_EQ(network.Links_of(0), (Pairs{{3, 5}, {3, 6}, {5, 6}}));
}

TEST(Community_sets, A_clique_brings_what_its_leader_lacks) {
    Network network({{2, 3, 4}, {1, 2, 3}}, 4);
    network.sets.Start_level(true);
    network.sets.Add_community(std::vector<Adjacent_clique>{Whole(0), network.Led_by(0, 1)});
    EXPECT_EQ(To_vector(network.sets.Nodes(0)), (Node_list{1, 2, 3, 4}));
    EXPECT_EQ(network.Links_of(0), (Pairs{{1, 2}, {1, 3}, {2, 3}, {2, 4}, {3, 4}}));
}

TEST(Community_sets, A_level_takes_over_the_communities_of_the_one_before) {
    Network network({{1, 2, 3, 4}, {2, 3, 4, 5}, {5, 6, 7, 8}, {3, 5, 9}}, 9);
    network.sets.Start_level(true);
    network.sets.Add_community(std::vector<Adjacent_clique>{Whole(0), network.Led_by(0, 1)});
    network.sets.Add_community(std::vector<Adjacent_clique>{Whole(2)});
    network.sets.Start_level(true);
    network.sets.Add_community(std::vector<Adjacent_clique>{
        Whole(2), network.Led_by(2, 3), network.Led_by(3, 1), network.Led_by(1, 0)});
    ASSERT_EQ(network.sets.size(), 1U);
    EXPECT_EQ(To_vector(network.sets.Nodes(0)), (Node_list{1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(network.Links_of(0), network.Expected_links({0, 1, 2, 3}));
}

TEST(Community_sets, Links_given_out_stay_when_the_next_level_absorbs_their_community) {
    Network network({{1, 2, 3, 4}, {2, 3, 4, 5}, {3, 5, 6}}, 6);
    network.sets.Start_level(true);
    network.sets.Add_community(std::vector<Adjacent_clique>{Whole(0), network.Led_by(0, 1)});
    auto const kept = network.sets.Links({0});
    network.sets.Start_level(true);
    network.sets.Add_community(
        std::vector<Adjacent_clique>{Whole(0), network.Led_by(0, 1), network.Led_by(1, 2)});
    EXPECT_EQ(network.Links_of(0), network.Expected_links({0, 1, 2}));
    Pairs result;
    test::To_pairs visitor(network.links.pairs, result);
    kept->Visit(0, {}, visitor);
    EXPECT_EQ(result, network.Expected_links({0, 1}));
}

TEST(Community_sets, A_level_that_does_not_nest_takes_nothing_over) {
    Network network({{1, 2, 3}, {2, 3, 4}, {4, 5, 6}}, 6);
    network.sets.Start_level(true);
    network.sets.Add_community(std::vector<Adjacent_clique>{Whole(0), Whole(1), Whole(2)});
    network.sets.Start_level(false);
    EXPECT_EQ(network.sets.size(), 0U);
    network.sets.Add_community(std::vector<Adjacent_clique>{Whole(0), network.Led_by(0, 1)});
    network.sets.Add_community(std::vector<Adjacent_clique>{Whole(2)});
    EXPECT_EQ(To_vector(network.sets.Nodes(0)), (Node_list{1, 2, 3, 4}));
    EXPECT_EQ(network.Links_of(0), network.Expected_links({0, 1}));
    EXPECT_EQ(To_vector(network.sets.Nodes(1)), (Node_list{4, 5, 6}));
}

TEST(Community_sets, A_clique_may_be_in_two_communities_when_the_first_is_forgotten) {
    Network network({{1, 2, 3}, {2, 3, 4}, {4, 5, 6}}, 6);
    network.sets.Start_level(false);
    for (std::vector<Adjacent_clique> const& members :
         {std::vector<Adjacent_clique>{Whole(0), Whole(1)},
          std::vector<Adjacent_clique>{Whole(1), Whole(2)}}) {
        network.sets.Forget(members);
        network.sets.Add_community(members);
    }
    EXPECT_EQ(network.Links_of(0), network.Expected_links({0, 1}));
    EXPECT_EQ(network.Links_of(1), network.Expected_links({1, 2}));
    EXPECT_EQ(To_vector(network.sets.Nodes(1)), (Node_list{2, 3, 4, 5, 6}));
}

// Random groups of cliques that merge and grow from level to level.
void Compare_levels(Network& network, Random_numbers& random) {
    using Group = std::vector<Clique_number>;
    auto const n = static_cast<std::uint32_t>(network.cliques.size());
    std::vector<Group> groups;
    Clique_number next_new = 0; // cliques come into play in the order of their numbers
    while (next_new < n || groups.size() > 1) {
        bool const nested = random.Percent(90);
        // Groups merge; new cliques come in, alone or into a group, at any place of it.
        std::vector<Group> merged;
        for (Group const& group : groups) {
            if (merged.empty() || random.Percent(50)) {
                merged.push_back(group);
            } else {
                Group& into = merged[random.Below(static_cast<std::uint32_t>(merged.size()))];
                into.insert(into.end(), group.begin(), group.end());
            }
        }
        for (std::uint32_t more = random.Below(6); more > 0 && next_new < n; --more) {
            if (merged.empty() || random.Percent(30)) {
                merged.push_back({next_new++});
            } else {
                Group& into = merged[random.Below(static_cast<std::uint32_t>(merged.size()))];
                auto const place = random.Below(static_cast<std::uint32_t>(into.size()) + 1);
                into.insert(into.begin() + place, next_new++);
            }
        }
        network.sets.Start_level(nested);
        for (Group const& group : merged) {
            std::vector<Adjacent_clique> members{Whole(group[0])};
            for (std::uint32_t i = 1; i < group.size(); ++i) {
                bool const known = network.cliques[group[i]].size() <= 64 && random.Percent(80);
                members.push_back(known ? network.Led_by(group[random.Below(i)], group[i])
                                        : Whole(group[i]));
            }
            network.sets.Add_community(members);
        }
        ASSERT_EQ(network.sets.size(), merged.size());
        for (std::size_t i = 0; i < merged.size(); ++i) {
            ASSERT_EQ(To_vector(network.sets.Nodes(i)), network.Expected_nodes(merged[i]));
            ASSERT_EQ(network.Links_of(i), network.Expected_links(merged[i]));
        }
        groups = merged;
    }
}

TEST(Community_sets, Random_levels_agree_with_the_sets_of_the_cliques) {
    Random_numbers random(101);
    for (int round = 0; round < 100; ++round) {
        // Node indices far apart make the sets few among many.
        Node const apart = round % 2 == 0 ? 1 : 5000;
        Node const n = 4 + random.Below(20);
        Set_list cliques;
        for (std::uint32_t left = 1 + random.Below(25); left > 0; --left) {
            Nodes clique;
            for (std::uint32_t size = 1 + random.Below(8); size > 0; --size) {
                clique.insert(apart * (1 + random.Below(n)));
            }
            cliques.Add(Node_list(clique.begin(), clique.end()));
        }
        Network network(cliques, n * apart);
        ASSERT_NO_FATAL_FAILURE(Compare_levels(network, random)) << "round " << round;
    }
}

TEST(Community_sets, Cliques_of_more_nodes_than_bits_agree_with_the_sets_of_the_cliques) {
    Random_numbers random(103);
    Set_list cliques;
    for (Node size = 60; size < 70; ++size) {
        Nodes clique;
        while (clique.size() < size) {
            clique.insert(1 + random.Below(100));
        }
        cliques.Add(Node_list(clique.begin(), clique.end()));
    }
    Network network(cliques, 100);
    ASSERT_NO_FATAL_FAILURE(Compare_levels(network, random));
}

} // namespace
} // namespace cpm::test
