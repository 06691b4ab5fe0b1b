// SPDX-License-Identifier: MIT
#include "Coms_funcs/Bit_slices.h"

#include "support/Random_numbers.h"

#include <gtest/gtest.h>
#include <random>
#include <set>

namespace cpm::test {
namespace {

using Buckets = std::vector<Node_bucket>;
using Sets = std::vector<std::set<Node_bucket>>;

constexpr std::size_t n_buckets = 128;
using Numbers = std::vector<std::uint32_t>;

void Fill(Bit_slices& list, Sets const& sets) {
    for (std::uint32_t i = 0; i < sets.size(); ++i) {
        for (Node_bucket const one : sets[i]) {
            list.Add(i, one);
        }
    }
}

Numbers Found(Bit_slices const& list, Buckets const& nodes, Buckets const& needed,
              std::uint32_t max_missing) {
    Numbers found;
    list.Scan({nodes, needed, max_missing}, found);
    return found;
}

Numbers By_counting(Sets const& sets, std::vector<bool> const& closed, Buckets const& nodes,
                    Buckets const& needed, std::uint32_t max_missing) {
    Numbers found;
    for (std::uint32_t i = 0; i < sets.size(); ++i) {
        auto const has = [&](Node_bucket one) { return sets[i].contains(one); };
        auto const lacking = std::ranges::count_if(nodes, [&](Node_bucket c) { return !has(c); });
        if (!closed[i] && lacking <= max_missing &&
            (needed.empty() || std::ranges::any_of(needed, has))) {
            found.push_back(i);
        }
    }
    return found;
}

Buckets Some_buckets(std::mt19937& random, std::size_t count, unsigned range) {
    Buckets buckets(count);
    for (Node_bucket& one : buckets) {
        one = static_cast<Node_bucket>(random() % range);
    }
    return buckets;
}

TEST(Bit_slices, Finds_what_counting_finds) {
    std::mt19937 random(7);
    std::size_t n_found = 0;
    for (std::uint32_t const n_sets : {1U, 63U, 64U, 511U, 512U, 513U, 1500U}) {
        for (unsigned const range : {12U, 128U}) {
            Sets sets(n_sets);
            for (auto& set : sets) {
                Buckets const buckets = Some_buckets(random, 2 + random() % 30, range);
                set.insert(buckets.begin(), buckets.end());
            }
            Bit_slices list(n_sets, n_buckets);
            Fill(list, sets);
            std::vector<bool> closed(n_sets, false);
            for (unsigned round = 0; round < Rounds(20); ++round) {
                Buckets const nodes = Some_buckets(random, random() % 40, range);
                Buckets const needed = Some_buckets(random, random() % 4, range);
                auto const max_missing = static_cast<std::uint32_t>(random() % (nodes.size() + 1));
                Numbers const found = Found(list, nodes, needed, max_missing);
                ASSERT_EQ(found, By_counting(sets, closed, nodes, needed, max_missing))
                    << n_sets << " sets, round " << round;
                n_found += found.size();
                if (!found.empty()) {
                    std::uint32_t const one = found[random() % found.size()];
                    list.Close(one);
                    closed[one] = true;
                }
            }
        }
    }
    EXPECT_GT(n_found, 1000U);
}

TEST(Bit_slices, Counts_up_to_any_number_of_lacking_nodes) {
    Bit_slices list(3, n_buckets);
    list.Add(1, 5);
    for (std::uint32_t const lacking : {0U, 1U, 2U, 3U, 4U, 7U, 8U, 15U, 16U, 100U, 255U}) {
        Buckets nodes(lacking + 1, 9); // sets 0 to 2 lack them all
        EXPECT_EQ(Found(list, nodes, {}, lacking), Numbers{}) << lacking;
        EXPECT_EQ(Found(list, nodes, {}, lacking + 1), (Numbers{0, 1, 2})) << lacking;
        nodes.back() = 5;
        EXPECT_EQ(Found(list, nodes, {}, lacking), (Numbers{1})) << lacking;
    }
    // Beyond what the counters hold, sets are found without need, but none is lost.
    EXPECT_EQ(Found(list, Buckets(300, 5), {}, 256), (Numbers{0, 1, 2}));
}

TEST(Bit_slices, Of_no_sets_finds_nothing) {
    EXPECT_EQ(Found(Bit_slices(), {1, 2}, {}, 2), Numbers{});
    EXPECT_EQ(Found(Bit_slices(0, n_buckets), {1, 2}, {}, 2), Numbers{});
}

TEST(Bit_slice_cache, Keep_to_their_room) {
    Bit_slice_cache lists(3 * Bit_slices::Bytes(512, n_buckets), 10, n_buckets);
    EXPECT_EQ(lists.N_buckets(), n_buckets);
    EXPECT_EQ(lists.Find(4), nullptr);
    ASSERT_NE(lists.Begin(4, 512), nullptr);
    ASSERT_NE(lists.Begin(5, 513), nullptr);
    EXPECT_NE(lists.Find(4), nullptr);
    EXPECT_NE(lists.Find(5), nullptr);
    EXPECT_EQ(lists.Begin(6, 1), nullptr);
    EXPECT_EQ(lists.Find(6), nullptr);
    // In place of an old list there is its room.
    EXPECT_NE(lists.Begin(5, 512), nullptr);
    EXPECT_NE(lists.Begin(6, 1), nullptr);
    EXPECT_NE(lists.Find(4), nullptr);
    lists.Give_up_all();
    EXPECT_EQ(lists.Find(4), nullptr);
    EXPECT_NE(lists.Begin(9, 3 * 512), nullptr);
    EXPECT_EQ(lists.Begin(9, 3 * 512 + 1), nullptr);
    EXPECT_EQ(lists.Find(9), nullptr);
}

TEST(Bit_slice_cache, A_new_list_knows_nothing_of_the_old_one) {
    Bit_slice_cache lists(Bit_slices::Bytes(512, n_buckets), 2, n_buckets);
    Bit_slices* list = lists.Begin(1, 2);
    list->Add(0, 3);
    list->Close(1);
    list = lists.Begin(1, 2);
    EXPECT_EQ(Found(*list, {3}, {}, 0), Numbers{});
    EXPECT_EQ(Found(*list, {3}, {}, 1), (Numbers{0, 1}));
}

} // namespace
} // namespace cpm::test
