// SPDX-License-Identifier: MIT
// Takes    sets by the classes of their nodes; questions.
// Leaves   the sets that do not lack too many of the nodes asked for.
// Cost     a bit a class and set. A walk: a row of bits for every 512 sets and node looked at;
//          these are few where most sets lack more than allowed of the first nodes already.
// Tested   Sliced_lists_test.cpp (against counting).
#include "Coms_funcs/Sliced_lists.h"

#include "support/Bit_counting.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace cpm {

namespace {

using Bits = Sliced_list::Bits;

// The compiler's own vector: of the width that the machine has, or several of these.
using Wide = std::uint64_t __attribute__((vector_size(sizeof(Bits))));

[[gnu::always_inline]] inline void Load(Wide& wide, Bits const& bits) {
    std::memcpy(&wide, bits.data(), sizeof wide);
}

[[gnu::always_inline]] inline bool None(Wide const& wide) {
    std::uint64_t any = 0;
    for (std::size_t w = 0; w < Bits().size(); ++w) {
        any |= wide[w];
    }
    return any == 0;
}

// For each set of a strip the number of nodes that it lacks, in binary digits, one row a digit, so
// that one operation counts for all sets. The counters begin so high that they overflow when a set
// lacks one node too many; that closes it for this walk.
template <unsigned digits>
[[gnu::always_inline]] inline void Close_lacking(Bits const* rows, std::size_t row_length,
                                                 Sliced_question const& question, Wide& open) {
    constexpr std::size_t nodes_between_looks = 4;
    std::array<Wide, digits> counters;
    std::uint32_t const start = (std::uint32_t{1} << digits) - 1 - question.most_lacking;
    for (unsigned digit = 0; digit < digits; ++digit) {
        counters[digit] = Wide{} - (start >> digit & 1);
    }
    for (std::size_t n = 0; n < question.nodes.size(); ++n) {
        Wide carry;
        Load(carry, rows[question.nodes[n] * row_length]);
        carry = ~carry;
        for (unsigned digit = 0; digit < digits; ++digit) {
            Wide const both = counters[digit] & carry;
            counters[digit] ^= carry;
            carry = both;
        }
        open &= ~carry;
        if (n % nodes_between_looks == nodes_between_looks - 1 && None(open)) {
            return;
        }
    }
}

// The sets of a strip that are asked for. `rows` begins with the strip's bits of the first row, and
// the next row is `row_length` farther on.
PLEXOR_WIDE_WORDS
void Ask_strip(Bits const* rows, std::size_t row_length, std::size_t open_row,
               Sliced_question const& question, Bits& found) {
    Wide open{};
    for (Node_class const needed : question.needed) {
        Wide has;
        Load(has, rows[needed * row_length]);
        open |= has;
    }
    if (question.needed.empty()) {
        open = ~open;
    }
    Wide can_be_found;
    Load(can_be_found, rows[open_row * row_length]);
    open &= can_be_found;
    if (!None(open)) {
        switch (std::bit_width(question.most_lacking)) {
        case 0:
        case 1:
            Close_lacking<1>(rows, row_length, question, open);
            break;
        case 2:
            Close_lacking<2>(rows, row_length, question, open);
            break;
        case 3:
            Close_lacking<3>(rows, row_length, question, open);
            break;
        case 4:
            Close_lacking<4>(rows, row_length, question, open);
            break;
        case 5:
        case 6:
        case 7:
        case 8:
            Close_lacking<8>(rows, row_length, question, open);
            break;
        default: // no set is ruled out
            break;
        }
    }
    std::memcpy(found.data(), &open, sizeof open);
}

} // namespace

Sliced_list::Sliced_list(std::uint32_t n_sets, std::size_t n_classes)
    : n_strips_(N_strips(n_sets)), n_classes_(n_classes), bits_((n_classes + 1) * n_strips_) {
    for (std::uint32_t set = 0; set < n_sets; ++set) {
        Word(n_classes_, set) |= Bit(set);
    }
}

void Sliced_list::Walk(Sliced_question const& question, std::vector<std::uint32_t>& found) const {
    Bits open;
    for (std::size_t strip = 0; strip < n_strips_; ++strip) {
        Ask_strip(bits_.data() + strip, n_strips_, n_classes_, question, open);
        for (std::size_t w = 0; w < open.size(); ++w) {
            for (std::uint64_t rest = open[w]; rest != 0; rest &= rest - 1) {
                found.push_back(static_cast<std::uint32_t>(strip * strip_length + w * 64) +
                                static_cast<std::uint32_t>(std::countr_zero(rest)));
            }
        }
    }
}

Sliced_list* Sliced_lists::Begin(std::size_t number, std::uint32_t n_sets) {
    if (place_.empty()) {
        place_.resize(n_lists_, 0);
    }
    if (place_[number] == 0) {
        lists_.emplace_back();
        place_[number] = static_cast<std::uint32_t>(lists_.size());
    }
    Sliced_list& list = lists_[place_[number] - 1];
    bytes_ -= list.Bytes();
    list = Sliced_list();
    if (bytes_ + Sliced_list::Bytes(n_sets, n_classes_) > most_bytes_) {
        place_[number] = 0;
        return nullptr;
    }
    list = Sliced_list(n_sets, n_classes_);
    bytes_ += list.Bytes();
    return &list;
}

void Sliced_lists::Give_up_all() {
    std::fill(place_.begin(), place_.end(), 0);
    lists_.clear();
    bytes_ = 0;
}

} // namespace cpm
