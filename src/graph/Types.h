// SPDX-License-Identifier: MIT
// The values that the stages hand to each other: names, links, sets of nodes, lists of sets.
// All of them are flat arrays; an element is a view. Nothing here computes anything.
#ifndef PLEXOR_TYPES_H
#define PLEXOR_TYPES_H

#include "support/Flat_array.h"

#include <algorithm>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <string_view>

namespace cpm {

/// A node's index: 1, 2, 3, ... without gaps. 0 is no node.
using Node = std::uint32_t;

/// A set of nodes: ascending, no repeats.
using Node_set = std::span<Node const>;

/// Two node indices. In undirected links and in the links of a community the smaller one is first;
/// in directed links the first is the source.
struct Node_pair {
    Node first = 0;
    Node second = 0;
    friend auto operator<=>(Node_pair const&, Node_pair const&) = default;
};

/// A list of lists of numbers, one after the other in one array. Clique lists and community lists
/// hold node sets; a set's number is its position.
template <class T> class List_of_lists {
public:
    List_of_lists() { offsets_.push_back(0); }
    List_of_lists(std::initializer_list<std::initializer_list<T>> lists) : List_of_lists() {
        for (auto const& list : lists) {
            Add(std::span<T const>(list.begin(), list.size()));
        }
    }

    std::size_t size() const { return offsets_.size() - 1; }
    bool empty() const { return size() == 0; }
    /// The number of elements of all lists together.
    std::uint64_t Total() const { return offsets_.back(); }
    std::span<T const> operator[](std::size_t i) const {
        return {members_.data() + offsets_[i],
                static_cast<std::size_t>(offsets_[i + 1] - offsets_[i])};
    }
    /// Appends a list, which must not lie in this list of lists.
    void Add(std::span<T const> list) {
        members_.Append(list);
        offsets_.push_back(members_.size());
    }
    /// Appends to the list under way, which Close_list() ends.
    void Append(T value) { members_.push_back(value); }
    void Append(std::span<T const> values) { members_.Append(values); }
    void Close_list() { offsets_.push_back(members_.size()); }

    /// Appends the lists numbered `first` to `end` - 1 of another list of lists.
    void Append_lists(List_of_lists const& other, std::size_t first, std::size_t end) {
        std::uint64_t const from = other.offsets_[first];
        std::uint64_t const to = members_.size();
        members_.Append(
            {other.members_.data() + from, other.members_.data() + other.offsets_[end]});
        for (std::size_t i = first; i < end; ++i) {
            offsets_.push_back(other.offsets_[i + 1] - from + to);
        }
    }

    /// Keeps the lists of which `keep(number)` is true, in their order; it is asked for each once,
    /// ascending, while the list is still where it was.
    template <class Keep> void Keep_if(Keep const& keep) {
        std::size_t n_kept = 0;
        std::uint64_t end = 0;
        std::uint64_t begin = 0;
        for (std::size_t i = 0; i < size(); ++i) {
            std::uint64_t const next = offsets_[i + 1];
            if (keep(i)) {
                std::copy(members_.data() + begin, members_.data() + next, members_.data() + end);
                end += next - begin;
                offsets_[++n_kept] = end;
            }
            begin = next;
        }
        members_.Resize_uninitialised(end);
        offsets_.Resize_uninitialised(n_kept + 1);
    }
    void clear() {
        members_.clear();
        offsets_.clear();
        offsets_.push_back(0);
    }
    void Shrink_to_fit() {
        members_.Shrink_to_fit();
        offsets_.Shrink_to_fit();
    }
    /// Where each list begins among all elements; one more than there are lists.
    std::uint64_t const* Starts() const { return offsets_.data(); }
    /// All elements, one list after the other.
    std::span<T const> Flat() const { return {members_.data(), members_.size()}; }

    friend bool operator==(List_of_lists const& a, List_of_lists const& b) {
        return std::ranges::equal(a.offsets_, b.offsets_) &&
               std::ranges::equal(a.members_, b.members_);
    }

private:
    Flat_array<T> members_;
    Flat_array<std::uint64_t> offsets_;
};

/// A list of node sets: the clique list, the communities of one k.
using Set_list = List_of_lists<Node>;
/// A clique's number: its position in the clique list.
using Clique_number = std::uint32_t;
/// A link's number: its position among all pairs of nodes that result files can speak of.
using Link_number = std::uint32_t;

/// A sequence of names, each a string of any bytes.
class Name_table {
public:
    Name_table() { offsets_.push_back(0); }

    std::size_t size() const { return offsets_.size() - 1; }
    std::string_view operator[](std::size_t i) const {
        return Spaced(i).substr(0, Spaced(i).size() - 1);
    }
    /// The name with the blank that follows it in most files.
    std::string_view Spaced(std::size_t i) const {
        return {bytes_.data() + offsets_[i],
                static_cast<std::size_t>(offsets_[i + 1] - offsets_[i])};
    }
    void Add(std::string_view name) {
        bytes_.Append(name);
        bytes_.push_back(' ');
        offsets_.push_back(bytes_.size());
    }
    /// What the names and the blanks after them need.
    std::size_t Bytes() const { return bytes_.size(); }
    void Reserve(std::size_t names, std::size_t bytes) {
        offsets_.Reserve(names + 1);
        bytes_.Reserve(bytes);
    }
    void clear() {
        bytes_.clear();
        offsets_.clear();
        offsets_.push_back(0);
    }

private:
    Flat_array<char> bytes_;
    Flat_array<std::uint64_t> offsets_;
};

/// Node index -> name. Entry 0, which no node has, is an empty name.
using Names_map = Name_table;

/// The links as read. A name stands for its place among all names in byte order (from 0), so that
/// the order of the links by (source place, target place) is their order by names.
struct Link_map {
    Name_table names;
    Flat_array<Node_pair> links; ///< (source place, target place), ascending, no repeats
    Flat_array<double> weights;  ///< one a link; empty when the links were read without weights
    double Weight(std::size_t i) const { return weights.empty() ? 0.0 : weights[i]; }
};

/// The links by node indices, ascending, no repeats. Undirected: smaller index first.
struct Index_links {
    Flat_array<Node_pair> pairs;
    Flat_array<double> weights; ///< one a pair; empty when all of them are 0
    std::size_t size() const { return pairs.size(); }
    double Weight(std::size_t i) const { return weights.empty() ? 0.0 : weights[i]; }
    /// The position of a pair, or size() when there is no such link.
    std::size_t Find(Node_pair pair) const {
        Node_pair const* const place = std::ranges::lower_bound(pairs, pair);
        bool const found = place != pairs.end() && *place == pair;
        return found ? static_cast<std::size_t>(place - pairs.begin()) : size();
    }
};

/// Takes the links of one community, in the order in which they are written, in as many pieces as
/// suit: the links of all communities together are often much more than the cliques they come from,
/// so nobody holds them.
class Link_visitor {
public:
    virtual ~Link_visitor() = default;
    virtual void Numbers(std::span<Link_number const> numbers) = 0; ///< of the Edge_numbering
    virtual void All_pairs(Node_set nodes) = 0;                     ///< the pairs of these nodes
};

/// What the links of the communities of one k are made from.
class Community_links {
public:
    virtual ~Community_links() = default;
    /// Hands out the links of a community of these nodes.
    virtual void Visit(std::size_t community, Node_set nodes, Link_visitor& visitor) const = 0;
};

/// The communities found at one k. Position i everywhere belongs to community i; the exact
/// communities come first. A value that owns what it holds: it stays as it is when the next k is
/// worked on.
struct Communities {
    Set_list nodes;
    List_of_lists<Clique_number> cliques; ///< in the order they joined; empty in intensity runs
    std::shared_ptr<Community_links const> links; ///< copies share it, as it never changes
    std::uint32_t n_exact = 0;                    ///< how many of them hold no approximated clique
    std::size_t size() const { return nodes.size(); }
    void Visit_links(std::size_t community, Link_visitor& visitor) const {
        links->Visit(community, nodes[community], visitor);
    }
};

} // namespace cpm

#endif
