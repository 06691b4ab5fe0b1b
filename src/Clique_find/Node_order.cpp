// SPDX-License-Identifier: MIT
#include "Clique_find/Node_order.h"

#include "Vertex_maps.h"

#include <algorithm>
#include <utility>

namespace cpm {

Node_order::Node_order(Index_links const& links) {
    Node n_nodes = 0;
    for (Node_pair const& link : links.pairs) {
        n_nodes = std::max(n_nodes, link.second);
    }
    Flat_array<Node> neighbours(n_nodes, 0);
    for (Node_pair const& link : links.pairs) {
        ++neighbours[link.first - 1];
        ++neighbours[link.second - 1];
    }
    Sort_by_counts(nodes_, neighbours);
    place_.Resize(std::size_t{n_nodes} + 1, 0);
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
        place_[nodes_[i]] = static_cast<Node>(i);
    }
    Split(links, neighbours);
    place_.Release();
}

// Each part is filled from its end: then its cursor arrives at its begin. Taken from the last link
// on, a node meets its larger neighbours first and both kinds in descending order.
void Node_order::Split(Index_links const& links, Flat_array<Node> const& neighbours) {
    middles_.Resize(place_.size(), 0);
    for (Node_pair const& link : links.pairs) {
        ++middles_[Ordered(link).first];
    }
    begins_.Resize(place_.size() + 1, 0);
    std::uint64_t end = 0;
    for (std::size_t node = 1; node < place_.size(); ++node) {
        begins_[node] = end + middles_[node];
        end += neighbours[node - 1];
        middles_[node] = end;
    }
    begins_[place_.size()] = end;
    neighbours_.Resize_uninitialised(end);
    for (std::size_t i = links.size(); i-- > 0;) {
        auto const [earlier, later] = Ordered(links.pairs[i]);
        neighbours_[--begins_[earlier]] = later;
        neighbours_[--middles_[later]] = earlier;
    }
}

Node_pair Node_order::Ordered(Node_pair const& link) const {
    bool const as_it_is = place_[link.first] < place_[link.second];
    return as_it_is ? link : Node_pair{link.second, link.first};
}

} // namespace cpm
