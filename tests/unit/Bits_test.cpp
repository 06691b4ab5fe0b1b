// SPDX-License-Identifier: MIT
#include "support/Bits.h"

#include "support/Random_numbers.h"

#include <gtest/gtest.h>
#include <set>
#include <vector>

namespace cpm::test {
namespace {

TEST(Bits, Of_words_are_set_cleared_and_seen_each_alone) {
    std::vector<std::uint64_t> words(Words_for(128), 0);
    ASSERT_EQ(words.size(), 3U);
    std::set<std::size_t> const numbers{0, 1, 63, 64, 127, 128};
    for (std::size_t const number : numbers) {
        Set_bit(words.data(), number);
    }
    for (std::size_t number = 0; number <= 128; ++number) {
        EXPECT_EQ(Has_bit(words.data(), number), numbers.contains(number)) << number;
    }
    Clear_bit(words.data(), 64);
    EXPECT_FALSE(Has_bit(words.data(), 64));
    EXPECT_TRUE(Has_bit(words.data(), 63));
}

TEST(For_each_bit, Comes_by_all_set_bits_ascending) {
    std::vector<std::size_t> seen;
    For_each_bit(0x8000000000000005U, [&](std::size_t bit) { seen.push_back(bit); });
    EXPECT_EQ(seen, (std::vector<std::size_t>{0, 2, 63}));
    For_each_bit(0, [&](std::size_t) { FAIL(); });
}

// By comparisons and by the bitmap.
TEST(Sort_unique, Sorts_and_drops_repeats_and_leaves_the_scratch_as_it_was) {
    Random_numbers random(11);
    Flat_array<std::uint64_t> bits;
    for (int round = 0; round < 300; ++round) {
        std::uint32_t const begin = random.Below(500);
        std::uint32_t const range = begin + 1 + random.Below(5000);
        Flat_array<std::uint32_t> values;
        for (std::uint32_t left = random.Below(60); left > 0; --left) {
            values.push_back(begin + random.Below(range - begin));
        }
        std::set<std::uint32_t> const expected(values.begin(), values.end());
        Sort_unique(values, begin, range, round % 2 == 0 ? 1 : 100000, bits);
        ASSERT_TRUE(std::ranges::equal(values, expected));
        for (std::uint64_t const word : bits) {
            ASSERT_EQ(word, 0U);
        }
    }
}

} // namespace
} // namespace cpm::test
