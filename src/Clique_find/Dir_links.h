// SPDX-License-Identifier: MIT
// Dir_links: the links of a directed network as its clique searches walk them: the order in which
// the nodes are taken, and with each node those neighbours that come later in this order.
#ifndef PLEXOR_DIR_LINKS_H
#define PLEXOR_DIR_LINKS_H

#include "graph/Types.h"
#include "records/Vertex_maps.h"

#include <cstdint>
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

/// Calls visit(neighbour, arcs) for each neighbour of a node, ascending.
template <class Visit> void For_each_neighbour(Vtxd const& vertex, Visit visit) {
    Node_set const to = vertex.Oneighs_c();
    Node_set const from = vertex.Ineighs_c();
    auto a = to.begin();
    auto b = from.begin();
    while (a != to.end() || b != from.end()) {
        if (b == from.end() || (a != to.end() && *a < *b)) {
            visit(*a++, Arc_to);
        } else if (a == to.end() || *b < *a) {
            visit(*b++, Arc_from);
        } else {
            visit(*a++, Arc_both);
            ++b;
        }
    }
}

class Dir_links {
public:
    /// The vertices must outlive the links.
    explicit Dir_links(Vtxd_map const& vertices);

    Vtxd_map const& Vertices() const { return vertices_; }
    /// Lowest number of neighbours first, then lowest index.
    std::vector<Node> const& Order() const { return order_; }
    /// The neighbours that come later in the order, ascending by index.
    Node_set Later(Node node) const { return Part(later_, node); }
    /// Entry i says how the node is linked with Later(node)[i].
    std::span<Arcs const> Later_arcs(Node node) const { return Part(later_arcs_, node); }

private:
    template <class T> std::span<T const> Part(Flat_array<T> const& all, Node node) const {
        return {all.data() + begins_[node],
                static_cast<std::size_t>(begins_[node + 1] - begins_[node])};
    }

    Vtxd_map const& vertices_;
    std::vector<Node> order_;
    Flat_array<Node> later_;
    Flat_array<Arcs> later_arcs_;
    Flat_array<std::uint64_t> begins_;
};

} // namespace cpm

#endif
