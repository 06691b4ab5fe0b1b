// SPDX-License-Identifier: MIT
// Sliced_lists: long lists of node sets, turned by a quarter: for each class of nodes there is a
// row of bits, one for each set of the list, that says whether the set has a node of the class. A
// walk that looks for sets which lack few of some nodes deals with 512 sets in one stroke, and
// after a handful of rows it mostly knows that none of them is what it looks for.
#ifndef PLEXOR_SLICED_LISTS_H
#define PLEXOR_SLICED_LISTS_H

#include "graph/Types.h"

#include <array>
#include <vector>

namespace cpm {

/// A class of nodes, numbered from 0 on.
using Node_class = std::uint16_t;

/// What is asked of a list: the sets that lack at most `most_lacking` of some nodes and, unless
/// `needed` is empty, have a node of one of the classes in it.
struct Sliced_question {
    std::span<Node_class const> nodes; ///< their classes, best those first that few sets have
    std::span<Node_class const> needed;
    std::uint32_t most_lacking = 0;
};

class Sliced_list {
public:
    static constexpr std::size_t strip_length = 512;
    /// The bits of a row that belong to one strip of the list: 512 sets.
    using Bits = std::array<std::uint64_t, strip_length / 64>;

    Sliced_list() = default;
    /// Sets without nodes, all of which can be found.
    Sliced_list(std::uint32_t n_sets, std::size_t n_classes);

    /// What a list of so many sets takes.
    static std::uint64_t Bytes(std::uint64_t n_sets, std::size_t n_classes) {
        return (n_classes + 1) * N_strips(n_sets) * sizeof(Bits);
    }
    std::uint64_t Bytes() const { return bits_.size() * sizeof(Bits); }
    /// The set has a node of the class.
    void Add(std::uint32_t set, Node_class node_class) { Word(node_class, set) |= Bit(set); }
    /// The set is not to be found any more.
    void Close(std::uint32_t set) { Word(n_classes_, set) &= ~Bit(set); }
    /// Appends to `found` the numbers of all sets that are asked for, ascending, and of some others
    /// (a class is not a node).
    void Walk(Sliced_question const& question, std::vector<std::uint32_t>& found) const;

private:
    static std::uint64_t N_strips(std::uint64_t n_sets) {
        return (n_sets + strip_length - 1) / strip_length;
    }
    static std::uint64_t Bit(std::uint32_t set) { return std::uint64_t{1} << (set % 64); }
    std::uint64_t& Word(std::size_t row, std::uint32_t set) {
        return bits_[row * n_strips_ + set / strip_length][set % strip_length / 64];
    }

    std::size_t n_strips_ = 0;
    std::size_t n_classes_ = 0;
    /// Row by row: what a walk reads of a row lies side by side. Behind those of the classes there
    /// is one that says which sets can be found.
    std::vector<Bits> bits_;
};

/// As many lists as there is room for.
class Sliced_lists {
public:
    /// The numbers of lists are below `n_lists`.
    Sliced_lists(std::uint64_t most_bytes, std::size_t n_lists, std::size_t n_classes)
        : most_bytes_(most_bytes), n_lists_(n_lists), n_classes_(n_classes) {}

    std::size_t N_classes() const { return n_classes_; }

    /// Null when there is no list of this number.
    Sliced_list* Find(std::size_t number) {
        return place_.empty() || place_[number] == 0 ? nullptr : &lists_[place_[number] - 1];
    }
    /// A new list in place of an old one of this number, until the next call; null when there is no
    /// room for it beside the others.
    Sliced_list* Begin(std::size_t number, std::uint32_t n_sets);
    void Give_up_all();

private:
    std::uint64_t most_bytes_;
    std::uint64_t bytes_ = 0;
    std::size_t n_lists_;
    std::size_t n_classes_;
    std::vector<std::uint32_t> place_; ///< number -> 1 + place in lists_, or 0; empty before any
    std::vector<Sliced_list> lists_;
};

} // namespace cpm

#endif
