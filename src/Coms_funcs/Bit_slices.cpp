// SPDX-License-Identifier: MIT
// Takes    sets by the buckets of their nodes; queries.
// Leaves   the sets that do not lack too many of the nodes asked for.
// Cost     a bit per bucket and set. A scan: a row of bits for every 512 sets and node looked at;
//          these are few where most sets lack more than allowed of the first nodes already.
// Tested   Bit_slices_test.cpp (against counting).
#include "Coms_funcs/Bit_slices.h"

#include "support/Cpu_dispatch.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace cpm {

namespace {

using Bits = Bit_slices::Bits;

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

// For each set of a block the number of nodes that it lacks, in binary digits, one row per digit,
// so that one operation counts for all sets. The counters begin so high that they overflow when a
// set lacks one node too many; that rules it out for this scan.
template <unsigned digits>
[[gnu::always_inline]] inline void Rule_out_missing(Bits const* rows, std::size_t row_length,
                                                    Slice_query const& query, Wide& open) {
    constexpr std::size_t nodes_between_looks = 4;
    std::array<Wide, digits> counters;
    std::uint32_t const start = (std::uint32_t{1} << digits) - 1 - query.max_missing;
    for (unsigned digit = 0; digit < digits; ++digit) {
        counters[digit] = Wide{} - (start >> digit & 1);
    }
    for (std::size_t n = 0; n < query.nodes.size(); ++n) {
        Wide carry;
        Load(carry, rows[query.nodes[n] * row_length]);
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

// The sets of a block that are asked for. `rows` begins with the block's bits of the first row, and
// the next row is `row_length` farther on.
PLEXOR_WIDE_WORDS
void Scan_block(Bits const* rows, std::size_t row_length, std::size_t open_row,
                Slice_query const& query, Bits& found) {
    Wide open{};
    for (Node_bucket const needed : query.needed) {
        Wide has;
        Load(has, rows[needed * row_length]);
        open |= has;
    }
    if (query.needed.empty()) {
        open = ~open;
    }
    Wide can_be_found;
    Load(can_be_found, rows[open_row * row_length]);
    open &= can_be_found;
    if (!None(open)) {
        switch (std::bit_width(query.max_missing)) {
        case 0:
        case 1:
            Rule_out_missing<1>(rows, row_length, query, open);
            break;
        case 2:
            Rule_out_missing<2>(rows, row_length, query, open);
            break;
        case 3:
            Rule_out_missing<3>(rows, row_length, query, open);
            break;
        case 4:
            Rule_out_missing<4>(rows, row_length, query, open);
            break;
        case 5:
        case 6:
        case 7:
        case 8:
            Rule_out_missing<8>(rows, row_length, query, open);
            break;
        default: // no set is ruled out
            break;
        }
    }
    std::memcpy(found.data(), &open, sizeof open);
}

} // namespace

Bit_slices::Bit_slices(std::uint32_t n_sets, std::size_t n_buckets)
    : n_blocks_(N_blocks(n_sets)), n_buckets_(n_buckets), bits_((n_buckets + 1) * n_blocks_) {
    for (std::uint32_t set = 0; set < n_sets; ++set) {
        Word(n_buckets_, set) |= Bit(set);
    }
}

void Bit_slices::Scan(Slice_query const& query, std::vector<std::uint32_t>& found) const {
    Bits open;
    for (std::size_t block = 0; block < n_blocks_; ++block) {
        Scan_block(bits_.data() + block, n_blocks_, n_buckets_, query, open);
        for (std::size_t w = 0; w < open.size(); ++w) {
            For_each_bit(open[w], [&](std::size_t bit) {
                found.push_back(
                    static_cast<std::uint32_t>(block * block_length + w * word_bits + bit));
            });
        }
    }
}

Bit_slices* Bit_slice_cache::Begin(std::size_t number, std::uint32_t n_sets) {
    if (place_.empty()) {
        place_.resize(n_lists_, 0);
    }
    if (place_[number] == 0) {
        lists_.emplace_back();
        place_[number] = static_cast<std::uint32_t>(lists_.size());
    }
    Bit_slices& list = lists_[place_[number] - 1];
    bytes_ -= list.Bytes();
    list = Bit_slices();
    if (bytes_ + Bit_slices::Bytes(n_sets, n_buckets_) > max_bytes_) {
        place_[number] = 0;
        return nullptr;
    }
    list = Bit_slices(n_sets, n_buckets_);
    bytes_ += list.Bytes();
    return &list;
}

void Bit_slice_cache::Give_up_all() {
    std::fill(place_.begin(), place_.end(), 0);
    lists_.clear();
    bytes_ = 0;
}

} // namespace cpm
