// SPDX-License-Identifier: MIT
#include "Plexor_io/Text_sink.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <iomanip>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace cpm {
namespace {

/// A sink with the smallest buffer that is allowed.
class Narrow_sink : public Text_sink {
public:
    Narrow_sink() { Restart(); }
    std::string All() const { return done_ + std::string(buffer_.data(), Filled()); }

protected:
    void Make_room(std::size_t bytes) override {
        EXPECT_LE(bytes, largest_request);
        done_.append(buffer_.data(), Filled());
        Restart();
    }

private:
    void Restart() { Set_buffer(buffer_.data(), buffer_.data() + buffer_.size()); }
    std::size_t Filled() const { return static_cast<std::size_t>(Next() - buffer_.data()); }

    std::string done_;
    std::array<char, largest_request> buffer_{};
};

std::string Number(std::uint64_t number) {
    Text text;
    text.Put_number(number);
    return std::string(text.View());
}

std::string Streamed(double value) {
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

std::string General(double value) {
    Text text;
    text.Put_general(value);
    return std::string(text.View());
}

std::string Streamed_fixed(double value, unsigned digits) {
    std::ostringstream stream;
    stream << std::fixed << std::setprecision(static_cast<int>(digits)) << value;
    return stream.str();
}

std::string Fixed(double value, unsigned digits) {
    Text text;
    text.Put_fixed(value, digits);
    return std::string(text.View());
}

TEST(Text_in_memory, Begins_empty) {
    Text const text;
    EXPECT_EQ(text.View(), "");
}

TEST(Text_in_memory, Joins_what_is_put) {
    Text text;
    text.Put('a');
    text.Put(' ');
    text.Put(std::string_view("b\0c", 3));
    text.Put("");
    text.Put_number(42);
    text.Put_repeated('_', 3);
    text.Put_repeated('x', 0);
    text.Put_fixed(0.5, 2);
    text.Put_general(0.25);
    EXPECT_EQ(text.View(), std::string_view("a b\0c42___0.500.25", 18));
}

TEST(Text_in_memory, Can_be_cleared_and_used_again) {
    Text text;
    text.Put(std::string(1000, 'x'));
    text.Clear();
    EXPECT_EQ(text.View(), "");
    text.Put("y");
    EXPECT_EQ(text.View(), "y");
}

TEST(Text_in_memory, Grows) {
    Text text;
    std::string expected;
    for (std::size_t length = 0; length < 300; ++length) {
        std::string const part(length, static_cast<char>('a' + length % 26));
        text.Put(part);
        text.Put_number(length);
        expected += part + std::to_string(length);
    }
    EXPECT_EQ(text.View(), expected);
}

// Every operation meets the end of the buffer at every distance.
TEST(Text_through_a_small_buffer, Is_not_cut) {
    for (std::size_t filled = 0; filled <= 70; ++filled) {
        Narrow_sink sink;
        std::string const before(filled, '.');
        sink.Put_repeated('.', filled);
        sink.Put("text");
        sink.Put('!');
        sink.Put_number(18446744073709551615U);
        sink.Put_padded<8>("paddings", 3);
        sink.Put_repeated('_', 150);
        sink.Put(std::string(150, 'x'));
        sink.Put_fixed(-1e300, 3);
        sink.Put_general(-1.23456789e-300);
        EXPECT_EQ(sink.All(), before + "text!18446744073709551615pad" + std::string(150, '_') +
                                  std::string(150, 'x') + Streamed_fixed(-1e300, 3) +
                                  "-1.23457e-300");
    }
}

TEST(Whole_numbers, Are_plain_decimals) {
    for (std::uint64_t const number : {std::uint64_t{0}, std::uint64_t{7}, std::uint64_t{10},
                                       std::uint64_t{4294967296}, ~std::uint64_t{0}}) {
        EXPECT_EQ(Number(number), std::to_string(number));
    }
    for (std::uint64_t number = 0; number <= 120000; ++number) {
        ASSERT_EQ(Number(number), std::to_string(number));
    }
    for (std::uint64_t power = 100000; power < std::uint64_t{1} << 60; power *= 10) {
        for (std::uint64_t const number : {power - 1, power, power + 1, 3 * power + 10203}) {
            EXPECT_EQ(Number(number), std::to_string(number));
        }
    }
    std::mt19937_64 random(1);
    for (int i = 0; i < 100000; ++i) {
        std::uint64_t const number = random() >> random() % 64;
        ASSERT_EQ(Number(number), std::to_string(number));
    }
}

TEST(Whole_numbers, Carry_a_sign_when_they_are_of_something_approximated_0_included) {
    Text text;
    text.Put_number(0, true);
    text.Put(' ');
    text.Put_number(12, true);
    text.Put(' ');
    text.Put_number(12, false);
    EXPECT_EQ(text.View(), "-0 -12 12");
}

TEST(Padded_text, Is_written_without_its_padding) {
    Text text;
    text.Put_padded<4>("abcd", 1);
    text.Put_padded<4>("efgh", 0);
    text.Put_padded<4>("ijkl", 4);
    EXPECT_EQ(text.View(), "aijkl");
}

TEST(Text_through_a_small_buffer, Lets_the_last_byte_be_replaced) {
    for (std::size_t filled = 0; filled <= 70; ++filled) {
        for (std::size_t const size : {1U, 2U, 16U, 63U, 64U, 65U, 128U, 150U}) {
            Narrow_sink sink;
            sink.Put_repeated('.', filled);
            std::string const piece(size - 1, 'x');
            sink.Put(piece + ' ');
            sink.Replace_last('\n');
            sink.Put('!');
            EXPECT_EQ(sink.All(), std::string(filled, '.') + piece + "\n!");
        }
    }
}

// Pieces of all lengths, among them some that no buffer can hold.
TEST(Text_through_a_small_buffer, Keeps_the_order_of_short_long_and_very_long_pieces) {
    Narrow_sink sink;
    std::string expected;
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
        std::string piece(random() % (i % 100 == 0 ? 40000 : 40), static_cast<char>('a' + i % 26));
        expected += piece;
        if (piece.size() <= 32) {
            std::size_t const size = piece.size();
            piece.resize(32, '?');
            sink.Put_padded<32>(piece.data(), size);
        } else {
            sink.Put(piece);
        }
        expected += std::to_string(i) + '\n';
        sink.Put_number(static_cast<std::uint64_t>(i));
        sink.Put('\n');
    }
    EXPECT_EQ(sink.All(), expected);
}

TEST(Fixed_notation, Has_exactly_the_decimals_asked_for) {
    EXPECT_EQ(Fixed(0.15, 6), "0.150000");
    EXPECT_EQ(Fixed(1.35, 3), "1.350");
    EXPECT_EQ(Fixed(0.15, 0), "0");
    EXPECT_EQ(Fixed(75, 2), "75.00");
}

TEST(Fixed_notation, The_longest_number_fits) {
    double const largest = std::numeric_limits<double>::max();
    double const smallest = std::numeric_limits<double>::denorm_min();
    for (double const value : {largest, -largest, smallest, -smallest}) {
        for (unsigned const digits : {0U, 1073U, 1074U, 1075U, 2000U}) {
            EXPECT_EQ(Fixed(value, digits), Streamed_fixed(value, digits));
        }
    }
}

TEST(General_notation, Has_six_significant_digits) {
    EXPECT_EQ(General(0.75), "0.75");
    EXPECT_EQ(General(0), "0");
    EXPECT_EQ(General(1234567), "1.23457e+06");
    EXPECT_EQ(General(123456), "123456");
    EXPECT_EQ(General(0.0001), "0.0001");
    EXPECT_EQ(General(0.00001), "1e-05");
}

TEST(General_notation, Is_that_of_the_standard_streams) {
    double const infinity = std::numeric_limits<double>::infinity();
    std::vector<double> values{-0.0,          infinity, -infinity, std::nan(""),
                               -std::nan(""), 999999.5, 9999995.0, 0.1 + 0.2,
                               2.5e-3,        5e-324,   1.7e308};
    for (int exponent = -30; exponent <= 30; ++exponent) {
        for (double const digits : {1.0, 1.5, 3.14159265, 9.999994, 9.999995, 9.999996, -2.0 / 3}) {
            values.push_back(digits * std::pow(10.0, exponent));
        }
    }
    for (double const value : values) {
        EXPECT_EQ(General(value), Streamed(value));
    }
}

} // namespace
} // namespace cpm
