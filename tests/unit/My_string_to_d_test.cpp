// SPDX-License-Identifier: MIT
#include "Plexor_io/My_string_to_d.h"

#include <gtest/gtest.h>

#include <locale>
#include <string>

namespace cpm {
namespace {

constexpr double untouched = -77.25;

void Expect_number(std::string const& text, double expected) {
    double value = untouched;
    EXPECT_TRUE(stringtodouble(text, value)) << "'" << text << "'";
    EXPECT_EQ(value, expected) << "'" << text << "'";
}

void Expect_no_number(std::string const& text) {
    double value = untouched;
    EXPECT_FALSE(stringtodouble(text, value)) << "'" << text << "'";
    EXPECT_EQ(value, untouched) << "'" << text << "'";
}

TEST(Stringtodouble, Reads_plain_and_scientific_numbers) {
    Expect_number("7", 7);
    Expect_number("-2.5", -2.5);
    Expect_number("1e3", 1000);
    Expect_number("0.15", 0.15);
}

TEST(Stringtodouble, Allows_white_space_around_the_number) {
    Expect_number(" 7 ", 7);
    Expect_number("\t7\r\n", 7);
    Expect_number("0.5 ", 0.5);
}

TEST(Stringtodouble, Refuses_a_word_after_the_number) {
    Expect_no_number("0.5 x");
    Expect_no_number("7 8");
    Expect_no_number("7x");
}

TEST(Stringtodouble, Refuses_a_text_without_a_number) {
    Expect_no_number("");
    Expect_no_number("   ");
    Expect_no_number("abc");
    Expect_no_number("-");
    Expect_no_number("x7");
}

TEST(Stringtodouble, Reads_what_a_stream_reads_of_odd_spellings) {
    Expect_number("+3", 3);
    Expect_number(".5", 0.5);
    Expect_number("5.", 5);
    Expect_number("007", 7);
    Expect_number("1E3", 1000);
    Expect_number("1e-400", 0);
}

TEST(Stringtodouble, Refuses_what_a_stream_refuses_of_odd_spellings) {
    Expect_no_number("1e");
    Expect_no_number("1e+");
    Expect_no_number("0x10");
    Expect_no_number("inf");
    Expect_no_number("nan");
    Expect_no_number("1e400");
    Expect_no_number("1,5");
    Expect_no_number("1.2.3");
    Expect_no_number("--1");
}

// A decimal comma and groups of thousands, made here, since no named locale is sure to exist.
struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST(Stringtodouble, Does_not_depend_on_the_locale) {
    std::locale const before = std::locale::global(std::locale(std::locale(), new Comma));
    Expect_number("1.5", 1.5);
    Expect_no_number("1,5");
    std::locale::global(before);
}

} // namespace
} // namespace cpm
