// SPDX-License-Identifier: MIT
// One_word_problem: maximal cliques among at most 64 candidates, where every set of these is one
// word. What is left of larger problems ends here, too.
#ifndef PLEXOR_ONE_WORD_PROBLEM_H
#define PLEXOR_ONE_WORD_PROBLEM_H

#include "support/Bits.h"
#include "support/Flat_array.h"
#include "support/Pace.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace cpm::Bron_kerbosch_sub {

// Candidate i is bit 63 - i % 64 of word i / 64: of two cliques, neither inside the other, the one
// with the larger first different word is lexicographically first.
constexpr std::uint64_t First_bit(std::size_t i) {
    return (std::uint64_t{1} << 63) >> (i % word_bits);
}

/// Calls visit(i) for the candidates in a word, ascending.
template <class Visit>
[[gnu::always_inline]] inline void For_each_from_first(std::uint64_t word, Visit const& visit) {
    while (word != 0) {
        auto const i = static_cast<std::size_t>(std::countl_zero(word));
        word &= ~First_bit(i);
        visit(i);
    }
}

struct One_word_problem {
    std::array<std::uint64_t, word_bits> rows{}; ///< with which candidates each one is linked
    Flat_array<std::uint64_t> excluded; ///< first the problem's own, then those of open branches
    Flat_array<std::uint64_t> found;
    std::size_t room = 0; ///< so many bytes of sets may still be kept
    bool all_kept = true;
};

/// Appends to `found` the maximal cliques of the candidates in `all`, not empty, that no excluded
/// node extends. Rows of excluded nodes lie within `all`. False when the pace ended the search.
bool Search_words(One_word_problem& problem, std::uint64_t all, Pace* pace);

} // namespace cpm::Bron_kerbosch_sub

#endif
