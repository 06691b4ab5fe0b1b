// SPDX-License-Identifier: MIT
#include "Coms_funcs/Percolation.h"

#include "support/Graph_makers.h"

#include <gtest/gtest.h>
#include <map>
#include <set>

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

Result Communities_at(std::uint32_t k, Percolation& percolation, Edge_numbering const& pairs) {
    Communities coms;
    percolation.Coms_from_appr_ovlp_matr(coms, k);
    Result result;
    result.nodes = To_vectors(coms.nodes);
    result.cliques = To_vectors(coms.cliques);
    result.n_exact = coms.n_exact;
    std::vector<Node_pair> all_pairs;
    for (Node a = 0; a < pairs.Smaller_ends_end(); ++a) {
        for (Node const b : pairs.Larger_neighbours(a)) {
            all_pairs.push_back({a, b});
        }
    }
    for (std::size_t i = 0; i < coms.size(); ++i) {
        result.links.emplace_back();
        coms.links(i, test::To_pairs(all_pairs, result.links.back()));
    }
    return result;
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
    Edge_numbering const pairs(To_index_links(Complete(1, 3)), 3, cliques, 1);
    Percolation percolation(cliques, 1, 3, pairs);
    Communities coms;
    percolation.Coms_from_appr_ovlp_matr(coms, 4);
    EXPECT_EQ(coms.size(), 0U);
    EXPECT_EQ(coms.n_exact, 0U);
}

TEST(Percolation, A_clique_without_a_neighbour_is_a_community_with_all_its_pairs) {
    Set_list const cliques{{1, 2, 3}};
    Edge_numbering const pairs(To_index_links(Complete(1, 3)), 3, cliques, 1);
    Percolation percolation(cliques, 1, 3, pairs);
    Result const result = Communities_at(3, percolation, pairs);
    EXPECT_EQ(result.nodes, (Lists{{1, 2, 3}}));
    EXPECT_EQ(result.cliques, (Lists{{0}}));
    EXPECT_EQ(result.links, (std::vector<std::vector<Node_pair>>{{{1, 2}, {1, 3}, {2, 3}}}));
}

TEST(Percolation, A_shared_pair_is_listed_once_smaller_node_first) {
    Set_list const cliques{{1, 2, 3}, {2, 3, 4}};
    Links links = Complete(1, 4);
    links.erase({1, 4});
    Edge_numbering const pairs(To_index_links(links), 4, cliques, 2);
    Percolation percolation(cliques, 2, 4, pairs);
    Result const result = Communities_at(3, percolation, pairs);
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
    Edge_numbering const pairs(To_index_links(links), 13, cliques, 3);
    Percolation percolation(cliques, 3, 13, pairs);
    Result const result = Communities_at(3, percolation, pairs);
    EXPECT_EQ(result.cliques, (Lists{{0}, {2}, {1, 3}, {4}}));
    EXPECT_EQ(result.n_exact, 2U);
}

TEST(Percolation, K_0_finds_nothing_and_k_1_needs_a_shared_node) {
    Set_list const cliques{{1, 2, 3}, {3, 4, 5}, {6, 7, 8}};
    Links links = Complete(1, 3);
    links.merge(Complete(3, 5));
    links.merge(Complete(6, 8));
    Edge_numbering const pairs(To_index_links(links), 8, cliques, 3);
    Percolation percolation(cliques, 3, 8, pairs);
    EXPECT_EQ(Communities_at(0, percolation, pairs).nodes.size(), 0U);
    EXPECT_EQ(Communities_at(1, percolation, pairs).cliques, (Lists{{0, 1}, {2}}));
    EXPECT_EQ(Communities_at(2, percolation, pairs).cliques, (Lists{{0, 1}, {2}}));
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
    Edge_numbering const pairs(links, length + 2, cliques, length);
    Percolation percolation(cliques, length, length + 2, pairs);
    Communities coms;
    percolation.Coms_from_appr_ovlp_matr(coms, 3);
    ASSERT_EQ(coms.size(), 1U);
    EXPECT_EQ(coms.nodes[0].size(), length + 2);
    EXPECT_EQ(coms.cliques[0].size(), length);
}

// Orders, nodes and links of every k, downwards as in a run and in any order, against the matrix.
TEST(Percolation, Random_networks_agree_with_the_matrix) {
    Random_numbers random(20);
    for (int round = 0; round < 1500; ++round) {
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
        Edge_numbering const pairs(index_links, n, cliques, n_exact);
        By_matrix by_matrix(cliques, n_exact);
        Percolation percolation(cliques, n_exact, n, pairs);
        auto const largest = static_cast<std::uint32_t>(Largest(cliques));
        for (std::uint32_t k = largest + 1; k > 1; --k) {
            ASSERT_EQ(Communities_at(k, percolation, pairs), by_matrix.Communities_at(k))
                << "round " << round << ", k " << k;
        }
        for (int again = 0; again < 3; ++again) {
            std::uint32_t const k = 1 + random.Below(largest + 2);
            if (k > 1) {
                ASSERT_EQ(Communities_at(k, percolation, pairs), by_matrix.Communities_at(k))
                    << "round " << round << ", k " << k << " out of turn";
            }
        }
    }
}

} // namespace
} // namespace cpm::test
