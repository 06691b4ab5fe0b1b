// SPDX-License-Identifier: MIT
// Adjacent cliques when the slices of the lists need more room than they may have: large cliques of
// few nodes, whose lists are all long and scanned all the time.
#include "Coms_funcs/Adjacent_cliques.h"

#include "support/Random_numbers.h"

#include <bit>
#include <gtest/gtest.h>

namespace cpm::test {
namespace {

constexpr std::uint32_t n_cliques = 8000;
constexpr Node n_nodes = 64;
constexpr int clique_size = 33;

// One bit per node, node 1 first.
using Mask = std::uint64_t;

struct Network {
    Set_list cliques;
    std::vector<Mask> masks;
};

Network Random_halves(std::uint32_t seed) {
    Random_numbers random(seed);
    Network network;
    for (std::uint32_t c = 0; c < n_cliques; ++c) {
        Mask mask = 0;
        while (std::popcount(mask) < clique_size) {
            mask |= Mask{1} << random.Below(n_nodes);
        }
        for (Node node = 1; node <= n_nodes; ++node) {
            if ((mask >> (node - 1) & 1) != 0) {
                network.cliques.Append(node);
            }
        }
        network.cliques.Close_list();
        network.masks.push_back(mask);
    }
    return network;
}

// What each clique in turn finds among those that none before it has found.
std::vector<std::vector<Clique_number>> By_counting(Network const& network,
                                                    std::uint32_t min_shared) {
    std::vector<Mask> unvisited = network.masks; // 0 once visited
    std::vector<std::vector<Clique_number>> found(n_cliques);
    for (Clique_number from = 0; from < n_cliques; ++from) {
        // Tests are not optimised, and this loop is passed many million times: a plain pointer.
        Mask const mask = network.masks[from];
        Mask* const masks = unvisited.data();
        for (Clique_number c = 0; c < n_cliques; ++c) {
            if (__builtin_popcountll(masks[c] & mask) >= static_cast<int>(min_shared)) {
                masks[c] = 0;
                found[from].push_back(c);
            }
        }
    }
    return found;
}

// With 256 buckets of nodes the slices of a list take 32 bytes per clique. At 24 shared nodes each
// clique is in ten lists, 320 bytes in all, 2.6 MB for all cliques; there is room for 1 MB and 132
// bytes for each clique of 33 nodes, 2.1 MB. What does not fit makes all lists give way, and come
// back, time and again.
TEST(Adjacent_cliques_room, Lists_that_give_way_to_others_lose_no_adjacent_clique) {
    // With signatures in all lists, and with none.
    for (std::uint32_t const min_very_long : {Posting_lists::very_long, 1U}) {
        Network const network = Random_halves(83);
        Ranked_cliques const ranked(network.cliques, n_nodes);
        Adjacent_cliques index(ranked, min_very_long);
        std::size_t n_others = 0;
        for (std::uint32_t const min_shared : {25U, 24U}) {
            auto const expected = By_counting(network, min_shared);
            index.Start_level(min_shared, min_shared);
            for (Clique_number from = 0; from < n_cliques; ++from) {
                Flat_array<Adjacent_clique> adjacent;
                index.Visit_adjacent({from, all_new}, adjacent);
                std::vector<Clique_number> found;
                for (Adjacent_clique const& one : adjacent) {
                    found.push_back(one.clique);
                    n_others += one.clique == from ? 0 : 1;
                }
                ASSERT_EQ(found, expected[from]) << "asked by " << from << " at " << min_shared;
            }
        }
        EXPECT_GT(n_others, 1000U);
    }
}

} // namespace
} // namespace cpm::test
