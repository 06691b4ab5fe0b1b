// SPDX-License-Identifier: MIT
#include "Plexor_io/My_double2string.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>

namespace cpm {
namespace {

TEST(Double2string, Has_exactly_the_decimals_asked_for) {
    EXPECT_EQ(double2string(0.15, 6), "0.150000");
    EXPECT_EQ(double2string(0.15, 2), "0.15");
    EXPECT_EQ(double2string(1.35, 3), "1.350");
    EXPECT_EQ(double2string(10, 6), "10.000000");
}

TEST(Double2string, No_decimals_give_no_decimal_point) {
    EXPECT_EQ(double2string(0.15, 0), "0");
    EXPECT_EQ(double2string(1.5, 0), "2");
    EXPECT_EQ(double2string(2.5, 0), "2");
}

TEST(Double2string, Rounds) {
    EXPECT_EQ(double2string(0.15327, 4), "0.1533");
    EXPECT_EQ(double2string(-0.001, 2), "-0.00");
}

TEST(Double2string, Is_fixed_notation_for_large_and_small_numbers) {
    EXPECT_EQ(double2string(1e22, 1), "10000000000000000000000.0");
    EXPECT_EQ(double2string(1e-7, 6), "0.000000");
}

TEST(Double2string, Says_what_a_fixed_stream_says) {
    for (double const value : {0.0, -0.0, 0.1, 1.0 / 3, 2.675, 123456.7890625, 1e300, 5e-324}) {
        for (unsigned const digits : {0U, 1U, 3U, 6U, 17U, 60U, 1100U}) {
            std::ostringstream stream;
            stream << std::fixed << std::setprecision(static_cast<int>(digits)) << value;
            EXPECT_EQ(double2string(value, digits), stream.str());
        }
    }
}

} // namespace
} // namespace cpm
