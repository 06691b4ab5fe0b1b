// SPDX-License-Identifier: MIT
// Sets of small numbers as bits of 64-bit words, and walks over the bits that are set.
#ifndef PLEXOR_BITS_H
#define PLEXOR_BITS_H

#include "support/Flat_array.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace cpm {

/// The bits of a word.
inline constexpr std::size_t word_bits = 64;

/// How many words hold a bit for each number below `range`, and at least one more bit.
constexpr std::size_t Words_for(std::size_t range) {
    return range / word_bits + 1;
}

/// The word with only the bit of this number, whichever word that is in.
constexpr std::uint64_t Bit(std::size_t number) {
    return std::uint64_t{1} << (number % word_bits);
}

/// The number of the lowest bit; the word is not 0.
constexpr std::size_t Lowest_bit(std::uint64_t word) {
    return static_cast<std::size_t>(std::countr_zero(word));
}

/// Calls `visit(number)` for the bits of a word, ascending.
template <class Visit>
[[gnu::always_inline]] inline void For_each_bit(std::uint64_t word, Visit const& visit) {
    for (; word != 0; word &= word - 1) {
        visit(Lowest_bit(word));
    }
}

/// Bits in an array of words.
inline bool Has_bit(std::uint64_t const* words, std::size_t number) {
    return (words[number / word_bits] >> (number % word_bits) & 1) != 0;
}
inline void Set_bit(std::uint64_t* words, std::size_t number) {
    words[number / word_bits] |= Bit(number);
}
inline void Clear_bit(std::uint64_t* words, std::size_t number) {
    words[number / word_bits] &= ~Bit(number);
}

/// Sorts numbers below `range` and drops repeats. Where the numbers are many for their range, more
/// than one in `bits_worth_a_comparison_sort`, a bitmap does it in one pass over the range.
/// `bits` is scratch: all zero before and after. `range_begin` is a lower bound of the numbers.
template <class T>
void Sort_unique(Flat_array<T>& values, std::size_t range_begin, std::size_t range,
                 std::size_t bits_worth_a_comparison_sort, Flat_array<std::uint64_t>& bits) {
    if ((range - range_begin) / bits_worth_a_comparison_sort > values.size()) {
        std::sort(values.begin(), values.end());
        T* const end = std::unique(values.begin(), values.end());
        values.Resize_uninitialised(static_cast<std::size_t>(end - values.begin()));
        return;
    }
    bits.Resize(std::max(bits.size(), Words_for(range)), 0);
    for (T const value : values) {
        Set_bit(bits.data(), value);
    }
    values.clear();
    for (std::size_t w = range_begin / word_bits; w < Words_for(range); ++w) {
        For_each_bit(bits[w], [&](std::size_t bit) {
            values.push_back(static_cast<T>(w * word_bits + bit));
        });
        bits[w] = 0;
    }
}

} // namespace cpm

#endif
