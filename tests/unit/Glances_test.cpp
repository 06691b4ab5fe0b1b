// SPDX-License-Identifier: MIT
#include "Coms_funcs/Glances.h"

#include <bit>
#include <gtest/gtest.h>
#include <random>

namespace cpm::test {
namespace {

TEST(Glance, Holds_the_size_and_a_bit_for_each_node) {
    std::vector<Node> const nodes{3, 8, 21};
    Glance const glance = First_sight(nodes);
    EXPECT_EQ(glance & glance_size_mask, 3U);
    EXPECT_EQ(glance & ~glance_size_mask, Glance_bits(nodes));
    for (Node const node : nodes) {
        EXPECT_EQ(std::popcount(Glance_bit(node)), 1);
        EXPECT_EQ(Glance_bit(node) & glance_size_mask, 0U);
        EXPECT_NE(glance & Glance_bit(node), 0U);
    }
}

TEST(Glance, Tells_nothing_of_a_clique_of_255_nodes_or_more) {
    std::vector<Node> nodes(254);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        nodes[i] = static_cast<Node>(i + 1);
    }
    EXPECT_NE(First_sight(nodes), glance_size_mask);
    nodes.push_back(255);
    EXPECT_EQ(First_sight(nodes), glance_size_mask);
}

TEST(Glance, Bits_of_many_nodes_are_spread) {
    Glance all = 0;
    for (Node node = 1; node <= 1000; ++node) {
        all |= Glance_bit(node);
    }
    EXPECT_EQ(all, ~glance_size_mask);
}

std::vector<std::uint32_t> By_definition(std::vector<Glance> const& glances,
                                         Glance_question const& question) {
    std::vector<std::uint32_t> places;
    for (std::uint32_t i = 0; i < glances.size(); ++i) {
        std::uint64_t const size = glances[i] % 256;
        std::uint64_t missing = 0;
        bool needed = false;
        for (unsigned bit = 8; bit < 64; ++bit) {
            bool const has = (glances[i] >> bit) % 2 == 1;
            missing += has && (question.bits >> bit) % 2 == 0 ? 1U : 0U;
            needed = needed || (has && (question.needed >> bit) % 2 == 1);
        }
        if (size == 255 || (needed && size >= missing + question.least_shared)) {
            places.push_back(i);
        }
    }
    return places;
}

TEST(Glance_walk, Each_finds_what_can_belong_to_a_partner) {
    std::mt19937_64 random(20);
    std::size_t n_found = 0;
    std::size_t n_walked = 0;
    for (std::size_t round = 0; round < 2000; ++round) {
        std::vector<Glance> glances(round % 41);
        for (Glance& glance : glances) {
            glance = random() & random() & ~glance_size_mask;
            glance |= random() % 8 == 0
                          ? glance_size_mask
                          : static_cast<unsigned>(std::popcount(glance)) + random() % 3;
        }
        Glance_question const question{(random() | random()) & ~glance_size_mask,
                                       random() & random() & random() & ~glance_size_mask,
                                       1 + random() % 16};
        std::vector<std::uint32_t> const expected = By_definition(glances, question);
        for (Glance_walk const walk : Glance_walks()) {
            std::vector<std::uint32_t> places(glances.size() + glance_walk_slack);
            places.resize(walk(glances.data(), glances.size(), question, places.data()));
            ASSERT_EQ(places, expected) << "round " << round;
        }
        n_found += expected.size();
        n_walked += glances.size();
    }
    // Neither everything nor nothing.
    EXPECT_GT(n_found, n_walked / 10);
    EXPECT_LT(n_found, n_walked * 9 / 10);
}

TEST(Glance_walk, The_fastest_is_one_of_them) {
    std::vector<Glance_walk> const walks = Glance_walks();
    EXPECT_NE(std::ranges::find(walks, Fastest_glance_walk()), walks.end());
}

} // namespace
} // namespace cpm::test
