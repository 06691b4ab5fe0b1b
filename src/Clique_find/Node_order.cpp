// SPDX-License-Identifier: MIT
#include "Clique_find/Node_order.h"

namespace cpm {

Node_order::Node_order(Vtx_map const& vertices) {
    Sort_Vtx_map(nodes_, vertices);
    Flat_array<Node> place(vertices.size() + 1, 0);
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
        place[nodes_[i]] = static_cast<Node>(i);
    }
    begins_.Resize(vertices.size() + 2, 0);
    middles_.Resize(vertices.size() + 1, 0);
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        begins_[i + 2] = begins_[i + 1] + vertices[i].Neighs_c().size();
    }
    neighbours_.Resize_uninitialised(begins_[vertices.size() + 1]);
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        Node const node = static_cast<Node>(i + 1);
        Node_set const neighbours = vertices[i].Neighs_c();
        std::uint64_t to = begins_[node];
        for (bool const later : {true, false}) {
            for (Node const other : neighbours) {
                if ((place[other] > place[node]) == later) {
                    neighbours_[to++] = other;
                }
            }
            if (later) {
                middles_[node] = to;
            }
        }
    }
}

} // namespace cpm
