// SPDX-License-Identifier: MIT
#include "Plexor_io/My_int2string.h"

#include <gtest/gtest.h>

#include <string>

namespace cpm {
namespace {

TEST(Int2string, Is_the_plain_decimal_number) {
    EXPECT_EQ(int2string(0), "0");
    EXPECT_EQ(int2string(-12), "-12");
    EXPECT_EQ(int2string(-2147483647 - 1), "-2147483648");
    EXPECT_EQ(int2string(4294967295U), "4294967295");
}

TEST(Int2string_with_width, Puts_zeros_in_front) {
    EXPECT_EQ(int2string(5, 3U), "005");
    EXPECT_EQ(int2string(10, 3U), "010");
    EXPECT_EQ(int2string(99, 3U), "099");
    EXPECT_EQ(int2string(100, 3U), "100");
    EXPECT_EQ(int2string(100000, 9U), "000100000");
}

TEST(Int2string_with_width, A_longer_number_stays_whole) {
    EXPECT_EQ(int2string(1234, 3U), "1234");
    EXPECT_EQ(int2string(7, 1U), "7");
    EXPECT_EQ(int2string(7, 0U), "7");
}

TEST(Int2string_with_width, Zero_is_zeros) {
    EXPECT_EQ(int2string(0, 3U), "000");
    EXPECT_EQ(int2string(0, 2U), "00");
    EXPECT_EQ(int2string(0U, 2U), "00");
    EXPECT_EQ(int2string(0, 0U), "");
}

TEST(Int2string_with_width, Zeros_go_after_the_sign) {
    EXPECT_EQ(int2string(-5, 3U), "-005");
    EXPECT_EQ(int2string(-99, 3U), "-099");
    EXPECT_EQ(int2string(-1234, 3U), "-1234");
}

TEST(Int2string_with_width, An_unsigned_is_taken_as_an_int) {
    EXPECT_EQ(int2string(5U, 3U), "005");
    EXPECT_EQ(int2string(4294967295U, 3U), "-001");
}

TEST(Int2string_with_width, Just_below_a_large_power_of_ten_a_zero_is_missing) {
    EXPECT_EQ(int2string(9999999, 9U), "009999999");
    EXPECT_EQ(int2string(99999999, 10U), "099999999");
    EXPECT_EQ(int2string(999999999, 12U), "00999999999");
}

TEST(Text_plus_number, Appends_the_decimal_number) {
    std::string const out = "out";
    EXPECT_EQ(out + 1U, "out1");
    EXPECT_EQ(out + -12, "out-12");
    EXPECT_EQ(out + 0, "out0");
}

} // namespace
} // namespace cpm
