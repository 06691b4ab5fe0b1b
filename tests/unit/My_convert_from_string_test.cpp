// SPDX-License-Identifier: MIT
#include "Plexor_io/My_convert_from_string.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace cpm {
namespace {

/// The result of a conversion, whose target held `untouched` before.
template <class T> struct Converted {
    bool read;
    T value;
    bool warning;
    friend bool operator==(Converted const&, Converted const&) = default;
    friend void PrintTo(Converted const& c, std::ostream* out) {
        *out << (c.read ? "read " : "refused ") << c.value << (c.warning ? " with a warning" : "");
    }
};

template <class T> Converted<T> Convert(std::string const& text, T untouched, bool warning = true) {
    bool const read = Convert_from_string(text, untouched, warning);
    return {read, untouched, warning};
}

using To_int = Converted<int>;
using To_unsigned = Converted<unsigned>;
using To_double = Converted<double>;
using To_bool = Converted<bool>;

TEST(GRound, Takes_the_nearest_whole_number) {
    EXPECT_EQ(gRound(2.4), 2);
    EXPECT_EQ(gRound(2.6), 3);
    EXPECT_EQ(gRound(-2.4), -2);
    EXPECT_EQ(gRound(-2.6), -3);
    EXPECT_EQ(gRound(0.0), 0);
    EXPECT_EQ(gRound(-7.0), -7);
}

TEST(GRound, Rounds_halves_up) {
    EXPECT_EQ(gRound(2.5), 3);
    EXPECT_EQ(gRound(-2.5), -2);
    EXPECT_EQ(gRound(0.5), 1);
    EXPECT_EQ(gRound(-0.5), 0);
    EXPECT_EQ(gRound(-1.5), -1);
}

TEST(GRound, Is_exact_next_to_a_half) {
    EXPECT_EQ(gRound(0.49999999999999994), 0);
    EXPECT_EQ(gRound(-0.50000000000000011), -1);
    EXPECT_EQ(gRound(2147483646.5), 2147483647);
    EXPECT_EQ(gRound(-2147483648.5), -2147483647 - 1);
}

TEST(Convert_to_double, Never_warns) {
    EXPECT_EQ(Convert("2.5", -1.0), (To_double{true, 2.5, false}));
    EXPECT_EQ(Convert("1e3", -1.0), (To_double{true, 1000, false}));
    EXPECT_EQ(Convert("abc", -1.0), (To_double{false, -1, false}));
}

TEST(Convert_to_int, Takes_a_whole_number_without_a_warning) {
    EXPECT_EQ(Convert("4", 9), (To_int{true, 4, false}));
    EXPECT_EQ(Convert("-4", 9), (To_int{true, -4, false}));
    EXPECT_EQ(Convert(" 4 ", 9), (To_int{true, 4, false}));
}

TEST(Convert_to_int, Rounds_and_warns) {
    EXPECT_EQ(Convert("3.5", 9), (To_int{true, 4, true}));
    EXPECT_EQ(Convert("-2.5", 9), (To_int{true, -2, true}));
    EXPECT_EQ(Convert("2e1", 9), (To_int{true, 20, true}));
}

TEST(Convert_to_int, Warns_when_it_fails) {
    EXPECT_EQ(Convert("abc", 9, false), (To_int{false, 9, true}));
    EXPECT_EQ(Convert("", 9, false), (To_int{false, 9, true}));
}

TEST(Convert_to_int, Refuses_what_does_not_fit) {
    EXPECT_EQ(Convert("2147483647.4", 9), (To_int{true, 2147483647, true}));
    EXPECT_EQ(Convert("2147483647.5", 9), (To_int{false, 9, true}));
    EXPECT_EQ(Convert("-2147483648.5", 9), (To_int{true, -2147483647 - 1, true}));
    EXPECT_EQ(Convert("-2147483649", 9), (To_int{false, 9, true}));
    EXPECT_EQ(Convert("1e20", 9), (To_int{false, 9, true}));
}

TEST(Convert_to_unsigned, Takes_a_whole_number_without_a_warning) {
    EXPECT_EQ(Convert("4", 9U), (To_unsigned{true, 4, false}));
    EXPECT_EQ(Convert("0", 9U), (To_unsigned{true, 0, false}));
}

TEST(Convert_to_unsigned, Warns_at_a_decimal_point_or_an_exponent) {
    EXPECT_EQ(Convert("4.0", 9U), (To_unsigned{true, 4, true}));
    EXPECT_EQ(Convert("2.2", 9U), (To_unsigned{true, 2, true}));
    EXPECT_EQ(Convert("3.5", 9U), (To_unsigned{true, 4, true}));
    EXPECT_EQ(Convert("2e1", 9U), (To_unsigned{true, 20, true}));
    EXPECT_EQ(Convert("2E1", 9U), (To_unsigned{true, 20, false}));
}

TEST(Convert_to_unsigned, Refuses_a_negative_number) {
    EXPECT_EQ(Convert("-1", 9U), (To_unsigned{false, 9, true}));
    EXPECT_EQ(Convert("-0.3", 9U), (To_unsigned{false, 9, true}));
    EXPECT_EQ(Convert("-0", 9U), (To_unsigned{true, 0, false}));
}

TEST(Convert_to_unsigned, Refuses_what_does_not_fit) {
    EXPECT_EQ(Convert("4294967295", 9U), (To_unsigned{true, 4294967295U, false}));
    EXPECT_EQ(Convert("4294967295.4", 9U), (To_unsigned{true, 4294967295U, true}));
    EXPECT_EQ(Convert("4294967295.5", 9U), (To_unsigned{false, 9, true}));
    EXPECT_EQ(Convert("4294967296", 9U), (To_unsigned{false, 9, true}));
    EXPECT_EQ(Convert("1e20", 9U), (To_unsigned{false, 9, true}));
}

TEST(Convert_to_bool, Takes_six_spellings_each) {
    for (char const* const yes : {"yes", "Yes", "YES", "true", "True", "TRUE"}) {
        EXPECT_EQ(Convert(yes, false), (To_bool{true, true, false})) << yes;
    }
    for (char const* const no : {"no", "No", "NO", "false", "False", "FALSE"}) {
        EXPECT_EQ(Convert(no, true), (To_bool{true, false, false})) << no;
    }
}

TEST(Convert_to_bool, Refuses_every_other_text) {
    for (char const* const text : {"", "1", "0", "y", "n", "yEs", " yes", "yes ", "on", "tRUE"}) {
        EXPECT_FALSE(Convert(text, false).read) << text;
        EXPECT_TRUE(Convert(text, true).value) << text;
        EXPECT_FALSE(Convert(text, false).value) << text;
    }
}

TEST(Convert_to_bool, Sets_one_element_of_a_bit_vector) {
    std::vector<bool> bits{false, false, true};
    bool warning = true;
    EXPECT_TRUE(Convert_from_string("Yes", bits[1], warning));
    EXPECT_FALSE(warning);
    EXPECT_EQ(bits, (std::vector<bool>{false, true, true}));
    EXPECT_TRUE(Convert_from_string("no", bits[2], warning));
    EXPECT_EQ(bits, (std::vector<bool>{false, true, false}));
    EXPECT_FALSE(Convert_from_string("maybe", bits[1], warning));
    EXPECT_EQ(bits, (std::vector<bool>{false, true, false}));
}

TEST(Convert_to_string, Copies_every_text) {
    for (char const* const text : {"", "abc", " a b "}) {
        std::string value = "before";
        bool warning = true;
        EXPECT_TRUE(Convert_from_string(text, value, warning));
        EXPECT_EQ(value, text);
        EXPECT_FALSE(warning);
    }
}

} // namespace
} // namespace cpm
