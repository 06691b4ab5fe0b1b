// SPDX-License-Identifier: MIT
#include "Coms_funcs/Percolation.h"

#include "support/Graph_makers.h"

#include <gtest/gtest.h>
#include <map>
#include <set>
#include <thread>

namespace cpm::test {
namespace {

using Lists = std::vector<std::vector<std::uint32_t>>;

struct Result {
    Lists nodes;
    Lists cliques;
    std::vector<std::vector<Node_pair>> links;
    std::uint32_t n_exact = 0;
    friend bool operator==(Result const&, Result const&) = default;
};

// Percolation as it is defined: a stored matrix, recursion, maps.
class By_matrix {
public:
    By_matrix(Set_list const& cliques, std::size_t n_exact)
        : cliques_(To_vectors(cliques)), n_exact_(n_exact), matrix_(cliques_.size()) {
        for (std::uint32_t i = 0; i < cliques_.size(); ++i) {
            for (std::uint32_t j = 0; j < cliques_.size(); ++j) {
                std::vector<Node> shared;
                std::set_intersection(cliques_[i].begin(), cliques_[i].end(), cliques_[j].begin(),
                                      cliques_[j].end(), std::back_inserter(shared));
                if (i == j || !shared.empty()) {
                    matrix_[i][j] = static_cast<std::uint32_t>(shared.size());
                }
            }
        }
    }

    Result Communities_at(std::uint32_t k) {
        Result exact;
        Result approximated;
        taken_.assign(cliques_.size(), false);
        for (std::uint32_t i = 0; i < cliques_.size(); ++i) {
            if (taken_[i] || cliques_[i].size() < k) {
                continue;
            }
            members_.clear();
            Extend(i, k, false);
            if (members_.empty()) {
                continue;
            }
            bool const is_exact =
                std::ranges::all_of(members_, [&](std::uint32_t c) { return c < n_exact_; });
            Result& result = is_exact ? exact : approximated;
            std::set<Node> nodes;
            std::set<std::pair<Node, Node>> links;
            for (std::uint32_t const c : members_) {
                for (Node const a : cliques_[c]) {
                    nodes.insert(a);
                    for (Node const b : cliques_[c]) {
                        if (a < b) {
                            links.insert({a, b});
                        }
                    }
                }
            }
            result.nodes.emplace_back(nodes.begin(), nodes.end());
            result.cliques.push_back(members_);
            result.links.emplace_back();
            for (auto const& [a, b] : links) {
                result.links.back().push_back({a, b});
            }
        }
        exact.n_exact = static_cast<std::uint32_t>(exact.nodes.size());
        exact.nodes.insert(exact.nodes.end(), approximated.nodes.begin(), approximated.nodes.end());
        exact.cliques.insert(exact.cliques.end(), approximated.cliques.begin(),
                             approximated.cliques.end());
        exact.links.insert(exact.links.end(), approximated.links.begin(), approximated.links.end());
        return exact;
    }

private:
    void Extend(std::uint32_t i, std::uint32_t k, bool is_member) {
        std::vector<std::uint32_t> collected;
        bool large_enough = is_member;
        for (auto const& [j, shared] : matrix_[i]) {
            if (shared >= k - 1 && !(is_member && taken_[j])) {
                collected.push_back(j);
                large_enough |= shared >= k;
            }
        }
        if (!large_enough) {
            return;
        }
        for (std::uint32_t const j : collected) {
            taken_[j] = true;
            members_.push_back(j);
        }
        for (std::uint32_t const j : collected) {
            Extend(j, k, true);
        }
    }

    std::vector<std::vector<Node>> cliques_;
    std::size_t n_exact_;
    std::vector<std::map<std::uint32_t, std::uint32_t>> matrix_;
    std::vector<bool> taken_;
    std::vector<std::uint32_t> members_;
};

std::vector<Node_pair> All_pairs(Edge_numbering const& edges) {
    std::vector<Node_pair> pairs;
    for (Node a = 0; a < edges.Smaller_ends_end(); ++a) {
        for (Node const b : edges.Larger_neighbours(a)) {
            pairs.push_back({a, b});
        }
    }
    return pairs;
}

Result Listed(Communities const& coms, Edge_numbering const& edges) {
    Result result;
    result.nodes = To_vectors(coms.nodes);
    result.cliques = To_vectors(coms.cliques);
    result.n_exact = coms.n_exact;
    std::vector<Node_pair> const all_pairs = All_pairs(edges);
    for (std::size_t i = 0; i < coms.size(); ++i) {
        result.links.push_back(Links_of(coms, i, all_pairs));
    }
    return result;
}

Result Communities_at(std::uint32_t k, Percolation& percolation, Edge_numbering const& edges) {
    Communities coms;
    percolation.Coms_from_appr_ovlp_matr(coms, k);
    return Listed(coms, edges);
}

// The maximal cliques of three nodes or more, by trying to grow every clique; a list without order.
std::set<std::vector<Node>> Maximal_cliques(Links const& links, Node n) {
    auto const linked = [&](Node a, Node b) {
        return links.count({std::min(a, b), std::max(a, b)}) > 0;
    };
    std::set<std::vector<Node>> all;
    std::vector<std::vector<Node>> open{{}};
    while (!open.empty()) {
        std::vector<Node> const clique = open.back();
        open.pop_back();
        bool maximal = true;
        for (Node node = 1; node <= n; ++node) {
            if (std::ranges::all_of(clique, [&](Node m) { return m != node && linked(m, node); })) {
                maximal = false;
                if (clique.empty() || node > clique.back()) {
                    open.push_back(clique);
                    open.back().push_back(node);
                }
            }
        }
        if (maximal && clique.size() >= 3) {
            all.insert(clique);
        }
    }
    return all;
}

Set_list Shuffled(std::set<std::vector<Node>> const& cliques, Random_numbers& random) {
    std::vector<std::vector<Node>> order(cliques.begin(), cliques.end());
    for (std::size_t i = order.size(); i > 1; --i) {
        std::swap(order[i - 1], order[random.Below(static_cast<std::uint32_t>(i))]);
    }
    Set_list list;
    for (auto const& clique : order) {
        list.Add(clique);
    }
    return list;
}

std::size_t Largest(Set_list const& cliques) {
    std::size_t largest = 0;
    for (std::size_t i = 0; i < cliques.size(); ++i) {
        largest = std::max(largest, cliques[i].size());
    }
    return largest;
}

TEST(Percolation, No_clique_of_k_nodes_gives_no_communities) {
    Set_list const cliques{{1, 2, 3}};
    Edge_numbering const edges(To_index_links(Complete(1, 3)), 3, cliques, 1);
    Found_cliques const found{cliques, 1};
    Percolation percolation(found, std::make_shared<Ranked_cliques>(found.cliques, 3), edges);
    Communities coms;
    percolation.Coms_from_appr_ovlp_matr(coms, 4);
    EXPECT_EQ(coms.size(), 0U);
    EXPECT_EQ(coms.n_exact, 0U);
}

TEST(Percolation, A_clique_without_a_neighbour_is_a_community_with_all_its_pairs) {
    Set_list const cliques{{1, 2, 3}};
    Edge_numbering const edges(To_index_links(Complete(1, 3)), 3, cliques, 1);
    Found_cliques const found{cliques, 1};
    Percolation percolation(found, std::make_shared<Ranked_cliques>(found.cliques, 3), edges);
    Result const result = Communities_at(3, percolation, edges);
    EXPECT_EQ(result.nodes, (Lists{{1, 2, 3}}));
    EXPECT_EQ(result.cliques, (Lists{{0}}));
    EXPECT_EQ(result.links, (std::vector<std::vector<Node_pair>>{{{1, 2}, {1, 3}, {2, 3}}}));
}

TEST(Percolation, A_shared_pair_is_listed_once_smaller_node_first) {
    Set_list const cliques{{1, 2, 3}, {2, 3, 4}};
    Links links = Complete(1, 4);
    links.erase({1, 4});
    Edge_numbering const edges(To_index_links(links), 4, cliques, 2);
    Found_cliques const found{cliques, 2};
    Percolation percolation(found, std::make_shared<Ranked_cliques>(found.cliques, 4), edges);
    Result const result = Communities_at(3, percolation, edges);
    EXPECT_EQ(result.links,
              (std::vector<std::vector<Node_pair>>{{{1, 2}, {1, 3}, {2, 3}, {2, 4}, {3, 4}}}));
}

TEST(Percolation, Approximated_communities_follow_and_may_hold_exact_cliques) {
    // 0 and 3 are exact and apart; 1 and 2 meet, and 2 is approximated; 4 stands alone.
    Set_list const cliques{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {5, 6, 10}, {11, 12, 13}};
    Links links;
    for (std::size_t c = 0; c < cliques.size(); ++c) {
        for (Node const a : cliques[c]) {
            for (Node const b : cliques[c]) {
                if (a < b) {
                    links.insert({a, b});
                }
            }
        }
    }
    Edge_numbering const edges(To_index_links(links), 13, cliques, 3);
    Found_cliques const found{cliques, 3};
    Percolation percolation(found, std::make_shared<Ranked_cliques>(found.cliques, 13), edges);
    Result const result = Communities_at(3, percolation, edges);
    EXPECT_EQ(result.cliques, (Lists{{0}, {2}, {1, 3}, {4}}));
    EXPECT_EQ(result.n_exact, 2U);
}

TEST(Percolation, K_0_finds_nothing_and_k_1_needs_a_shared_node) {
    Set_list const cliques{{1, 2, 3}, {3, 4, 5}, {6, 7, 8}};
    Links links = Complete(1, 3);
    links.merge(Complete(3, 5));
    links.merge(Complete(6, 8));
    Edge_numbering const edges(To_index_links(links), 8, cliques, 3);
    Found_cliques const found{cliques, 3};
    Percolation percolation(found, std::make_shared<Ranked_cliques>(found.cliques, 8), edges);
    EXPECT_EQ(Communities_at(0, percolation, edges).nodes.size(), 0U);
    EXPECT_EQ(Communities_at(1, percolation, edges).cliques, (Lists{{0, 1}, {2}}));
    EXPECT_EQ(Communities_at(2, percolation, edges).cliques, (Lists{{0, 1}, {2}}));
}

TEST(Percolation, A_long_chain_does_not_exhaust_the_stack) {
    Set_list cliques;
    Index_links links;
    constexpr Node length = 300000;
    for (Node i = 1; i <= length; ++i) {
        Node const clique[] = {i, i + 1, i + 2};
        cliques.Add(clique);
        links.pairs.push_back({i, i + 1});
        links.pairs.push_back({i, i + 2});
    }
    links.pairs.push_back({length + 1, length + 2});
    Edge_numbering const edges(links, length + 2, cliques, length);
    Found_cliques const found{cliques, length};
    Percolation percolation(found, std::make_shared<Ranked_cliques>(found.cliques, length + 2),
                            edges);
    Communities coms;
    percolation.Coms_from_appr_ovlp_matr(coms, 3);
    ASSERT_EQ(coms.size(), 1U);
    EXPECT_EQ(coms.nodes[0].size(), length + 2);
    EXPECT_EQ(coms.cliques[0].size(), length);
}

// Orders, nodes and links of every k, downwards as in a run and in any order, against the matrix.
TEST(Percolation, Random_networks_agree_with_the_matrix) {
    Random_numbers random(20);
    for (unsigned round = 0; round < Rounds(150); ++round) {
        Node const n = 4 + random.Below(round % 10 == 0 ? 40 : 12);
        Links const links = round % 2 == 0
                                ? Random_links(n, 20 + random.Below(n > 16 ? 25 : 70), random)
                                : Random_teams(n, 2 + random.Below(12), std::min(n, 9U), random);
        Set_list const cliques = Shuffled(Maximal_cliques(links, n), random);
        std::size_t const n_exact =
            round % 3 == 0 ? random.Below(static_cast<std::uint32_t>(cliques.size()) + 1)
                           : cliques.size();
        Index_links index_links; // with the numbers as they are
        for (auto const& [a, b] : links) {
            index_links.pairs.push_back({a, b});
        }
        Edge_numbering const edges(index_links, n, cliques, n_exact);
        By_matrix by_matrix(cliques, n_exact);
        Found_cliques const found{cliques, n_exact};
        Percolation percolation(found, std::make_shared<Ranked_cliques>(found.cliques, n), edges);
        auto const largest = static_cast<std::uint32_t>(Largest(cliques));
        for (std::uint32_t k = largest + 1; k > 1; --k) {
            ASSERT_EQ(Communities_at(k, percolation, edges), by_matrix.Communities_at(k))
                << "round " << round << ", k " << k;
        }
        for (int again = 0; again < 3; ++again) {
            std::uint32_t const k = 1 + random.Below(largest + 2);
            if (k > 1) {
                ASSERT_EQ(Communities_at(k, percolation, edges), by_matrix.Communities_at(k))
                    << "round " << round << ", k " << k << " out of turn";
            }
        }
    }
}

struct One_network {
    explicit One_network(std::uint32_t seed) {
        Random_numbers random(seed);
        Links const links = Random_teams(40, 30, 9, random);
        found.cliques = Shuffled(Maximal_cliques(links, 40), random);
        found.n_exact = found.cliques.size() - 2;
        Index_links index_links;
        for (auto const& [a, b] : links) {
            index_links.pairs.push_back({a, b});
        }
        edges = Edge_numbering(index_links, 40, found.cliques, found.n_exact);
    }
    Found_cliques found;
    Edge_numbering edges;
};

TEST(Percolation,
     Communities_stay_valid_when_the_levels_below_are_found_and_when_all_else_is_gone) {
    One_network const network(53);
    std::vector<Communities> kept;
    auto const largest = static_cast<std::uint32_t>(Largest(network.found.cliques));
    {
        Percolation percolation(network.found,
                                std::make_shared<Ranked_cliques>(network.found.cliques, 40),
                                network.edges);
        for (std::uint32_t k = largest; k > 1; --k) {
            kept.emplace_back();
            percolation.Coms_from_appr_ovlp_matr(kept.back(), k);
        }
    }
    By_matrix by_matrix(network.found.cliques, network.found.n_exact);
    for (std::uint32_t k = largest; k > 1; --k) {
        EXPECT_EQ(Listed(kept[largest - k], network.edges), by_matrix.Communities_at(k)) << k;
    }
}

TEST(Percolation, Levels_run_side_by_side_and_share_the_cliques) {
    One_network const network(59);
    auto const cliques = std::make_shared<Ranked_cliques>(network.found.cliques, 40);
    auto const largest = static_cast<std::uint32_t>(Largest(network.found.cliques));
    std::vector<Communities> levels(largest + 1);
    auto const every_second = [&](std::uint32_t from) {
        Percolation percolation(network.found, cliques, network.edges);
        for (std::uint32_t k = from; k > 1; k -= std::min(k, 2U)) {
            percolation.Coms_from_appr_ovlp_matr(levels[k], k);
        }
    };
    std::thread other(every_second, largest);
    every_second(largest - 1);
    other.join();
    By_matrix by_matrix(network.found.cliques, network.found.n_exact);
    for (std::uint32_t k = largest; k > 1; --k) {
        EXPECT_EQ(Listed(levels[k], network.edges), by_matrix.Communities_at(k)) << k;
    }
}

} // namespace
} // namespace cpm::test
