// SPDX-License-Identifier: MIT
#include "Coms_funcs/Signatures.h"

#include <bit>
#include <gtest/gtest.h>
#include <random>

namespace cpm::test {
namespace {

TEST(Signature, Holds_the_size_and_a_bit_for_each_node) {
    std::vector<Node> const nodes{3, 8, 21};
    Signature const signature = Signature_of(nodes);
    EXPECT_EQ(signature & signature_size_mask, 3U);
    EXPECT_EQ(signature & ~signature_size_mask, Signature_bits(nodes));
    for (Node const node : nodes) {
        EXPECT_EQ(std::popcount(Signature_bit(node)), 1);
        EXPECT_EQ(Signature_bit(node) & signature_size_mask, 0U);
        EXPECT_NE(signature & Signature_bit(node), 0U);
    }
}

TEST(Signature, Tells_nothing_of_a_clique_of_255_nodes_or_more) {
    std::vector<Node> nodes(254);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        nodes[i] = static_cast<Node>(i + 1);
    }
    EXPECT_NE(Signature_of(nodes), signature_size_mask);
    nodes.push_back(255);
    EXPECT_EQ(Signature_of(nodes), signature_size_mask);
}

TEST(Signature, Bits_of_many_nodes_are_spread) {
    Signature all = 0;
    for (Node node = 1; node <= 1000; ++node) {
        all |= Signature_bit(node);
    }
    EXPECT_EQ(all, ~signature_size_mask);
}

std::vector<std::uint32_t> By_definition(std::vector<Signature> const& signatures,
                                         Signature_query const& query) {
    std::vector<std::uint32_t> places;
    for (std::uint32_t i = 0; i < signatures.size(); ++i) {
        std::uint64_t const size = signatures[i] % 256;
        std::uint64_t missing = 0;
        bool needed = false;
        for (unsigned bit = 8; bit < 64; ++bit) {
            bool const has = (signatures[i] >> bit) % 2 == 1;
            missing += has && (query.bits >> bit) % 2 == 0 ? 1U : 0U;
            needed = needed || (has && (query.needed >> bit) % 2 == 1);
        }
        if (size == 255 || (needed && size >= missing + query.min_shared)) {
            places.push_back(i);
        }
    }
    return places;
}

TEST(Signature_scan, Each_finds_what_can_belong_to_an_adjacent_clique) {
    std::mt19937_64 random(20);
    std::size_t n_found = 0;
    std::size_t n_walked = 0;
    for (std::size_t round = 0; round < 2000; ++round) {
        std::vector<Signature> signatures(round % 41);
        for (Signature& signature : signatures) {
            signature = random() & random() & ~signature_size_mask;
            signature |= random() % 8 == 0
                             ? signature_size_mask
                             : static_cast<unsigned>(std::popcount(signature)) + random() % 3;
        }
        Signature_query const query{(random() | random()) & ~signature_size_mask,
                                    random() & random() & random() & ~signature_size_mask,
                                    1 + random() % 16};
        std::vector<std::uint32_t> const expected = By_definition(signatures, query);
        for (Signature_scan const walk : All_scans()) {
            std::vector<std::uint32_t> places(signatures.size() + scan_slack);
            places.resize(walk(signatures.data(), signatures.size(), query, places.data()));
            ASSERT_EQ(places, expected) << "round " << round;
        }
        n_found += expected.size();
        n_walked += signatures.size();
    }
    // Neither everything nor nothing.
    EXPECT_GT(n_found, n_walked / 10);
    EXPECT_LT(n_found, n_walked * 9 / 10);
}

TEST(Signature_scan, The_fastest_is_one_of_them) {
    std::vector<Signature_scan> const walks = All_scans();
    EXPECT_NE(std::ranges::find(walks, Fastest_scan()), walks.end());
}

} // namespace
} // namespace cpm::test
