// SPDX-License-Identifier: MIT
#include "support/Disjoint_sets.h"

#include "support/Random_numbers.h"

#include <gtest/gtest.h>
#include <vector>

namespace cpm::test {
namespace {

TEST(Disjoint_sets, The_smallest_member_stands_for_its_set) {
    Disjoint_sets sets(8);
    EXPECT_EQ(sets.size(), 8U);
    sets.Unite(6, 7);
    sets.Unite(3, 5);
    sets.Unite(7, 3);
    sets.Unite(5, 2);
    sets.Unite(2, 7);
    EXPECT_EQ(sets.Find(7), 2U);
    EXPECT_EQ(sets.Find(4), 4U);
    auto const numbers = std::move(sets).Number_sets();
    EXPECT_EQ(std::vector<std::uint32_t>(numbers.begin(), numbers.end()),
              (std::vector<std::uint32_t>{0, 1, 2, 2, 3, 2, 2, 2}));
}

TEST(Disjoint_sets, Random_unions_agree_with_relabelling) {
    Random_numbers random(41);
    for (int round = 0; round < 200; ++round) {
        std::uint32_t const n = 1 + random.Below(30);
        Disjoint_sets sets(n);
        std::vector<std::uint32_t> label(n);
        for (std::uint32_t i = 0; i < n; ++i) {
            label[i] = i;
        }
        for (std::uint32_t left = random.Below(40); left > 0; --left) {
            std::uint32_t const a = random.Below(n);
            std::uint32_t const b = random.Below(n);
            sets.Unite(a, b);
            std::uint32_t const from = std::max(label[a], label[b]);
            std::uint32_t const to = std::min(label[a], label[b]);
            for (std::uint32_t& one : label) {
                one = one == from ? to : one;
            }
        }
        std::uint32_t n_sets = 0;
        std::vector<std::uint32_t> number(n);
        for (std::uint32_t i = 0; i < n; ++i) {
            ASSERT_EQ(sets.Find(i), label[i]);
            number[i] = label[i] == i ? n_sets++ : number[label[i]];
        }
        auto const numbers = std::move(sets).Number_sets();
        ASSERT_EQ(std::vector<std::uint32_t>(numbers.begin(), numbers.end()), number);
    }
}

} // namespace
} // namespace cpm::test
