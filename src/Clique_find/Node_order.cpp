// SPDX-License-Identifier: MIT
#include "Clique_find/Node_order.h"

#include "records/Vertex_maps.h"

#include <algorithm>

namespace cpm {

Node_order::Node_order(Index_links const& links) {
    Node n_nodes = 0;
    for (Node_pair const& link : links.pairs) {
        n_nodes = std::max(n_nodes, link.second);
    }
    Flat_array<Node> counts(n_nodes, 0);
    for (Node_pair const& link : links.pairs) {
        ++counts[link.first - 1];
        ++counts[link.second - 1];
    }
    Sort_by_counts(nodes_, counts);
    Flat_array<Node> places(std::size_t{n_nodes} + 1, 0);
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
        places[nodes_[i]] = static_cast<Node>(i);
    }
    Split(links, counts, places);
}

// Splits the neighbours of each node; it has so many (`counts`), and so many nodes precede it
// (`places`). Each part is filled from its end: then its cursor arrives at its begin. Taken from
// the last link on, a node meets its larger neighbours first and both kinds in descending order.
void Node_order::Split(Index_links const& links, Flat_array<Node> const& counts,
                       Flat_array<Node> const& places) {
    auto const in_order = [&](Node_pair const& link) {
        bool const as_it_is = places[link.first] < places[link.second];
        return as_it_is ? link : Node_pair{link.second, link.first};
    };
    middles_.Resize(places.size(), 0);
    for (Node_pair const& link : links.pairs) {
        ++middles_[in_order(link).first];
    }
    begins_.Resize(places.size() + 1, 0);
    std::uint64_t end = 0;
    for (std::size_t node = 1; node < places.size(); ++node) {
        begins_[node] = end + middles_[node];
        end += counts[node - 1];
        middles_[node] = end;
    }
    begins_[places.size()] = end;
    neighbours_.Resize_uninitialised(end);
    for (std::size_t i = links.size(); i-- > 0;) {
        auto const [earlier, later] = in_order(links.pairs[i]);
        neighbours_[--begins_[earlier]] = later;
        neighbours_[--middles_[later]] = earlier;
    }
}

} // namespace cpm
