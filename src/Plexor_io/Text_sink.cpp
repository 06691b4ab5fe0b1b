// SPDX-License-Identifier: MIT
#include "Plexor_io/Text_sink.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace cpm {

namespace {

// A double has at most 309 digits before the decimal point and at most 1074 after it that are not
// zero; one byte for the sign and one for the point.
constexpr unsigned most_exact_decimals = 1074;
constexpr std::size_t longest_exact = 309 + most_exact_decimals + 2;

} // namespace

constexpr Text_sink::Digit_table Text_sink::Make_digits() {
    Digit_table digits{};
    for (std::size_t number = 0; number < ten_to_4; ++number) {
        std::size_t rest = number;
        for (std::size_t place = 4; place-- > 0; rest /= 10) {
            digits[4 * number + place] = static_cast<char>('0' + rest % 10);
        }
    }
    return digits;
}

Text_sink::Digit_table const Text_sink::digits_ = Make_digits();

void Text_sink::Put_large(std::string_view text) {
    while (!text.empty()) {
        Need(1);
        std::size_t const part = std::min(text.size(), Room());
        std::memcpy(next_, text.data(), part);
        next_ += part;
        text.remove_prefix(part);
    }
}

void Text_sink::Put_repeated(char c, std::size_t count) {
    while (count > 0) {
        Need(1);
        std::size_t const part = std::min(count, Room());
        std::memset(next_, c, part);
        next_ += part;
        count -= part;
    }
}

void Text_sink::Put_fixed(double value, unsigned digits) {
    std::array<char, longest_exact> text{};
    unsigned const exact = std::min(digits, most_exact_decimals);
    char* const end = std::to_chars(text.data(), text.data() + text.size(), value,
                                    std::chars_format::fixed, static_cast<int>(exact))
                          .ptr;
    Put(std::string_view(text.data(), static_cast<std::size_t>(end - text.data())));
    Put_repeated('0', digits - exact);
}

void Text_sink::Put_general(double value) {
    constexpr int significant_digits = 6;
    std::array<char, largest_request> text{};
    char* const end = std::to_chars(text.data(), text.data() + text.size(), value,
                                    std::chars_format::general, significant_digits)
                          .ptr;
    Put(std::string_view(text.data(), static_cast<std::size_t>(end - text.data())));
}

void Text::Make_room(std::size_t bytes) {
    std::size_t const used = View().size();
    buffer_.resize(std::max(2 * buffer_.size(), used + bytes + largest_request));
    Set_buffer(buffer_.data() + used, buffer_.data() + buffer_.size());
}

} // namespace cpm
