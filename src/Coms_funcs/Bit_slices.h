// SPDX-License-Identifier: MIT
// Bit_slices: a long list of node sets as a bit-sliced signature file, which is the list
// transposed: a bit row per bucket of nodes, a column per set, that says whether the set has a node
// of the bucket. A scan for sets that lack few of some nodes deals with a block of 512 sets at
// once, and after a handful of rows it mostly knows that none of them is what it looks for.
#ifndef PLEXOR_BIT_SLICES_H
#define PLEXOR_BIT_SLICES_H

#include "graph/Types.h"
#include "support/Bits.h"

#include <array>
#include <vector>

namespace cpm {

/// A bucket that nodes are hashed to, numbered from 0 on.
using Node_bucket = std::uint16_t;

/// What is asked of a list: the sets that lack at most `max_missing` of some nodes and, unless
/// `needed` is empty, have a node of one of the buckets in it.
struct Slice_query {
    std::span<Node_bucket const> nodes; ///< their buckets, best those first that few sets have
    std::span<Node_bucket const> needed;
    std::uint32_t max_missing = 0;
};

class Bit_slices {
public:
    static constexpr std::size_t block_length = 512;
    /// The bits of a row that belong to one block of the list: 512 sets.
    using Bits = std::array<std::uint64_t, block_length / word_bits>;

    Bit_slices() = default;
    /// Sets without nodes, all of which can be found.
    Bit_slices(std::uint32_t n_sets, std::size_t n_buckets);

    /// What a list of so many sets takes.
    static std::uint64_t Bytes(std::uint64_t n_sets, std::size_t n_buckets) {
        return (n_buckets + 1) * N_blocks(n_sets) * sizeof(Bits);
    }
    std::uint64_t Bytes() const { return bits_.size() * sizeof(Bits); }
    /// The set has a node of the bucket.
    void Add(std::uint32_t set, Node_bucket bucket) { Word(bucket, set) |= Bit(set); }
    /// The set is not to be found any more.
    void Close(std::uint32_t set) { Word(n_buckets_, set) &= ~Bit(set); }
    /// Appends to `found` the numbers of all sets that are asked for, ascending, and of some others
    /// (a bucket is not a node).
    void Scan(Slice_query const& query, std::vector<std::uint32_t>& found) const;

private:
    static std::uint64_t N_blocks(std::uint64_t n_sets) {
        return (n_sets + block_length - 1) / block_length;
    }
    std::uint64_t& Word(std::size_t row, std::uint32_t set) {
        return bits_[row * n_blocks_ + set / block_length][set % block_length / word_bits];
    }

    std::size_t n_blocks_ = 0;
    std::size_t n_buckets_ = 0;
    /// Row by row: what a scan reads of a row lies side by side. After the rows of the buckets
    /// there is one that says which sets can be found.
    std::vector<Bits> bits_;
};

/// The slices of as many lists as there is room for.
class Bit_slice_cache {
public:
    /// The numbers of lists are below `n_lists`.
    Bit_slice_cache(std::uint64_t max_bytes, std::size_t n_lists, std::size_t n_buckets)
        : max_bytes_(max_bytes), n_lists_(n_lists), n_buckets_(n_buckets) {}

    std::size_t N_buckets() const { return n_buckets_; }

    /// Null when there is no list of this number.
    Bit_slices* Find(std::size_t number) {
        return place_.empty() || place_[number] == 0 ? nullptr : &lists_[place_[number] - 1];
    }
    /// A new list in place of an old one of this number, until the next call; null when there is no
    /// room for it beside the others.
    Bit_slices* Begin(std::size_t number, std::uint32_t n_sets);
    void Give_up_all();

private:
    std::uint64_t max_bytes_;
    std::uint64_t bytes_ = 0;
    std::size_t n_lists_;
    std::size_t n_buckets_;
    std::vector<std::uint32_t> place_; ///< number -> 1 + place in lists_, or 0; empty before any
    std::vector<Bit_slices> lists_;
};

} // namespace cpm

#endif
