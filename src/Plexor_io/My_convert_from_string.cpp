// SPDX-License-Identifier: MIT
#include "Plexor_io/My_convert_from_string.h"

#include "Plexor_io/My_string_to_d.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <limits>
#include <string_view>

namespace cpm {

namespace {

// Adding 0.5 and cutting off would be wrong: the sum itself is rounded, and 0.49999999999999994
// would give 1. The part after the decimal point, however, is always exact.
double Nearest_whole(double number) {
    double const truncated = std::trunc(number);
    double const rest = number - truncated;
    if (rest >= 0.5) {
        return truncated + 1;
    }
    return rest < -0.5 ? truncated - 1 : truncated;
}

template <class Whole> bool Fits(double whole) {
    return whole >= std::numeric_limits<Whole>::min() && whole <= std::numeric_limits<Whole>::max();
}

template <class Whole>
bool Convert_to_whole(std::string const& text, Whole& value, bool& warning, double least) {
    warning = true;
    double number = 0;
    if (!stringtodouble(text, number) || number < least) {
        return false;
    }
    double const whole = Nearest_whole(number);
    if (!Fits<Whole>(whole)) {
        return false;
    }
    warning = text.find_first_of(".e") != std::string::npos;
    value = static_cast<Whole>(whole);
    return true;
}

} // namespace

int gRound(double const& number) {
    double const whole = Nearest_whole(number);
    assert(Fits<int>(whole));
    return static_cast<int>(whole);
}

bool Convert_from_string(std::string const& text, double& value, bool& warning) {
    warning = false;
    return stringtodouble(text, value);
}

bool Convert_from_string(std::string const& text, int& value, bool& warning) {
    return Convert_to_whole(text, value, warning, -std::numeric_limits<double>::infinity());
}

bool Convert_from_string(std::string const& text, unsigned& value, bool& warning) {
    // -0.3 would round to a fitting 0, but is negative.
    return Convert_to_whole(text, value, warning, 0.0);
}

bool Convert_from_string(std::string const& text, bool& value, bool& warning) {
    constexpr std::array<std::string_view, 6> yes{"yes", "Yes", "YES", "true", "True", "TRUE"};
    constexpr std::array<std::string_view, 6> no{"no", "No", "NO", "false", "False", "FALSE"};
    warning = false;
    bool const is_yes = std::ranges::find(yes, text) != yes.end();
    if (!is_yes && std::ranges::find(no, text) == no.end()) {
        return false;
    }
    value = is_yes;
    return true;
}

bool Convert_from_string(std::string const& text, std::vector<bool>::reference value,
                         bool& warning) {
    bool read = false;
    if (!Convert_from_string(text, read, warning)) {
        return false;
    }
    value = read;
    return true;
}

bool Convert_from_string(std::string const& text, std::string& value, bool& warning) {
    warning = false;
    value = text;
    return true;
}

} // namespace cpm
