// SPDX-License-Identifier: MIT
// Node_order: the order in which the undirected searches take the nodes, and each node's neighbours
// split into those that come later and those that are done by then. "Cut out of the graph" is a
// comparison of places in this order; nothing is ever copied or removed.
#ifndef PLEXOR_NODE_ORDER_H
#define PLEXOR_NODE_ORDER_H

#include "graph/Types.h"

#include <vector>

namespace cpm {

class Node_order {
public:
    /// Of undirected links, ascending: lowest number of neighbours first, then lowest index. Every
    /// node up to the largest has a link.
    explicit Node_order(Index_links const& links);

    std::vector<Node> const& Nodes() const { return nodes_; }
    std::size_t size() const { return nodes_.size(); }
    /// The neighbours that come later in the order, ascending by index.
    Node_set Later(Node node) const {
        return {neighbours_.data() + begins_[node], neighbours_.data() + middles_[node]};
    }
    /// The neighbours that come earlier in the order, ascending by index.
    Node_set Earlier(Node node) const {
        return {neighbours_.data() + middles_[node], neighbours_.data() + begins_[node + 1]};
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
    void Split(Index_links const& links, Flat_array<Node> const& counts,
               Flat_array<Node> const& places);

    std::vector<Node> nodes_;
    Flat_array<Node> neighbours_;
    Flat_array<std::uint64_t> begins_;
    Flat_array<std::uint64_t> middles_;
};

} // namespace cpm

#endif
