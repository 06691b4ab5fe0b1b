// SPDX-License-Identifier: MIT
// Graph: what the clique searches walk. The order in which they take the nodes, and with each node
// its neighbours, split into those that come later in this order and those that come earlier; in a
// directed network also how the two are linked. A search never copies or removes anything: that a
// node is "cut out of the graph" is a comparison of places in the order.
#ifndef PLEXOR_GRAPH_GRAPH_H
#define PLEXOR_GRAPH_GRAPH_H

#include "graph/Types.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <utility>
#include <vector>

namespace cpm {

/// How two nodes are linked, seen from the first of them: Arc_to, Arc_from, or both.
using Arcs = std::uint8_t;
constexpr Arcs Arc_to = 1;   ///< a link from the first to the second
constexpr Arcs Arc_from = 2; ///< a link from the second to the first
constexpr Arcs Arc_both = Arc_to | Arc_from;

/// The same, seen from the second node.
constexpr Arcs Reversed(Arcs arcs) {
    return static_cast<Arcs>((arcs & Arc_to) << 1 | (arcs & Arc_from) >> 1);
}

/// The nodes by numbers that they have, the number of node i at position i - 1: smallest number
/// first, at equal numbers by index.
void Sort_by_counts(std::vector<Node>& order, Flat_array<Node> const& counts);

class Graph {
public:
    /// Of links that are ascending without repeats, undirected ones with the smaller index first.
    /// Every node up to the largest has a link, and none is linked to itself. The links are not
    /// needed afterwards. O(links + nodes) time; 8 bytes per pair of linked nodes, 10 in
    /// a directed network, and 20 bytes per node.
    explicit Graph(Index_links const& links, bool directed = false);

    bool Directed() const { return directed_; }
    /// The number of nodes.
    std::size_t size() const { return nodes_.size(); }
    /// Lowest number of neighbours first, then lowest index. A neighbour in both directions is one.
    std::vector<Node> const& Nodes() const { return nodes_; }

    /// The neighbours that come later in the order, ascending by index.
    Node_set Later(Node node) const {
        return {neighbours_.data() + begins_[node], neighbours_.data() + middles_[node]};
    }
    /// The neighbours that come earlier in the order, ascending by index.
    Node_set Earlier(Node node) const {
        return {neighbours_.data() + middles_[node], neighbours_.data() + begins_[node + 1]};
    }
    /// Directed: entry i says how the node is linked with Later(node)[i], or Earlier(node)[i].
    std::span<Arcs const> Later_arcs(Node node) const {
        assert(directed_);
        return {arcs_.data() + begins_[node], arcs_.data() + middles_[node]};
    }
    std::span<Arcs const> Earlier_arcs(Node node) const {
        assert(directed_);
        return {arcs_.data() + middles_[node], arcs_.data() + begins_[node + 1]};
    }

    std::size_t Degree(Node node) const {
        return static_cast<std::size_t>(begins_[node + 1] - begins_[node]);
    }
    bool Linked(Node a, Node b) const {
        return std::ranges::binary_search(Later(a), b) || std::ranges::binary_search(Earlier(a), b);
    }
    /// Directed: how a is linked with b, 0 if not at all.
    Arcs Arcs_between(Node a, Node b) const {
        for (auto const& [begin, end] :
             {std::pair(begins_[a], middles_[a]), std::pair(middles_[a], begins_[a + 1])}) {
            Node const* const first = neighbours_.data() + begin;
            Node const* const last = neighbours_.data() + end;
            Node const* const found = std::lower_bound(first, last, b);
            if (found != last && *found == b) {
                return arcs_[static_cast<std::size_t>(found - neighbours_.data())];
            }
        }
        return 0;
    }
    /// Calls visit(neighbour) for each neighbour larger than `least`, ascending by index.
    template <class Visit>
    void For_each_neighbour_above(Node node, Node least, Visit const& visit) const {
        auto const from = [least](Node_set nodes) {
            return std::span(std::ranges::upper_bound(nodes, least), nodes.end());
        };
        Node_set later = from(Later(node));
        Node_set earlier = from(Earlier(node));
        while (!later.empty() || !earlier.empty()) {
            bool const is_later =
                earlier.empty() || (!later.empty() && later.front() < earlier.front());
            Node_set& next = is_later ? later : earlier;
            visit(next.front());
            next = next.subspan(1);
        }
    }
    /// Directed: calls visit(neighbour, arcs) for each neighbour, ascending by index.
    template <class Visit> void For_each_arc(Node node, Visit const& visit) const {
        assert(directed_);
        std::uint64_t later = begins_[node];
        std::uint64_t earlier = middles_[node];
        std::uint64_t const later_end = earlier;
        std::uint64_t const earlier_end = begins_[node + 1];
        while (later < later_end || earlier < earlier_end) {
            bool const is_later = earlier == earlier_end ||
                                  (later < later_end && neighbours_[later] < neighbours_[earlier]);
            std::uint64_t const next = is_later ? later++ : earlier++;
            visit(neighbours_[next], arcs_[next]);
        }
    }

    /// Fetches the memory of where a node's neighbours are, and, when that has come, of the
    /// neighbours.
    void Prefetch_place(Node node) const {
        __builtin_prefetch(&begins_[node]);
        __builtin_prefetch(&middles_[node]);
    }
    void Prefetch_neighbours(Node node) const {
        __builtin_prefetch(neighbours_.data() + begins_[node]);
    }

private:
    void Build(Flat_array<Node_pair> const& pairs, Flat_array<Arcs> const& arcs, Node n_nodes);
    template <bool with_arcs>
    void Split(Flat_array<Node_pair> const& pairs, Flat_array<Arcs> const& arcs,
               Flat_array<Node> const& counts);

    bool directed_ = false;
    std::vector<Node> nodes_;
    Flat_array<Node> neighbours_; ///< of node 1, then of node 2, ...: the later ones, the earlier
    Flat_array<Arcs> arcs_;       ///< directed: one a neighbour, seen from the node
    Flat_array<std::uint64_t> begins_;  ///< node -> its first neighbour; and one more at the end
    Flat_array<std::uint64_t> middles_; ///< node -> its first earlier neighbour
};

} // namespace cpm

#endif
