// SPDX-License-Identifier: MIT
#include "Plexor_io/Record_text.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace cpm {
namespace {

std::string Number_text(std::uint32_t number) {
    Text sink;
    Record_text(sink).Put_number(number);
    return std::string(sink.View());
}

TEST(Record_text, Numbers_are_plain_decimals) {
    for (std::uint32_t number = 0; number <= 120000; ++number) {
        ASSERT_EQ(Number_text(number), std::to_string(number));
    }
    for (std::uint32_t power = 100000; power <= 1000000000; power *= 10) {
        for (std::uint32_t const number : {power - 1, power, power + 1, 3 * power + 10203}) {
            EXPECT_EQ(Number_text(number), std::to_string(number));
        }
        if (power == 1000000000) {
            break; // the next power has no place in 32 bits
        }
    }
    EXPECT_EQ(Number_text(4294967295), "4294967295");
    std::mt19937 random(1);
    for (int i = 0; i < 100000; ++i) {
        auto const number = static_cast<std::uint32_t>(random() >> random() % 32);
        ASSERT_EQ(Number_text(number), std::to_string(number));
    }
}

TEST(Record_text, Approximated_numbers_carry_a_sign_0_included) {
    Text sink;
    {
        Record_text text(sink);
        text.Put_number(0, true);
        text.Put(' ');
        text.Put_number(12, true);
        text.Put(' ');
        text.Put_number(12, false);
    }
    EXPECT_EQ(sink.View(), "-0 -12 12");
}

TEST(Record_text, Padding_is_not_written) {
    Text sink;
    {
        Record_text text(sink);
        text.Put_padded<4>("abcd", 1);
        text.Put_padded<4>("efgh", 0);
        text.Put_padded<4>("ijkl", 4);
    }
    EXPECT_EQ(sink.View(), "aijkl");
}

// Pieces of all lengths, so that every place at which the block can be full is met, and some that
// no block can hold.
TEST(Record_text, Keeps_the_order_of_short_long_and_very_long_pieces) {
    Text sink;
    std::string expected;
    {
        Record_text text(sink);
        std::mt19937 random(1);
        for (int i = 0; i < 20000; ++i) {
            std::string piece(random() % (i % 100 == 0 ? 40000 : 40),
                              static_cast<char>('a' + i % 26));
            expected += piece;
            if (piece.size() <= 32) {
                std::size_t const size = piece.size();
                piece.resize(32, '?');
                text.Put_padded<32>(piece.data(), size);
            } else {
                text.Put(piece);
            }
            expected += std::to_string(i) + '\n';
            text.Put_number(static_cast<std::uint32_t>(i));
            text.Put('\n');
        }
    }
    EXPECT_EQ(sink.View(), expected);
}

} // namespace
} // namespace cpm
