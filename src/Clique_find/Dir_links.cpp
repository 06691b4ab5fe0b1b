// SPDX-License-Identifier: MIT
#include "Clique_find/Dir_links.h"

namespace cpm {

Dir_links::Dir_links(Vtxd_map const& vertices) : vertices_(vertices) {
    Sort_dir_vtx_map(order_, vertices, "Neighs");
    std::vector<Node> place(vertices.size() + 1);
    std::size_t n_neighbours = 0;
    for (std::size_t i = 0; i < order_.size(); ++i) {
        place[order_[i]] = static_cast<Node>(i);
        n_neighbours += vertices[i].Neighs_c().size();
    }
    later_.Reserve(n_neighbours / 2);
    later_arcs_.Reserve(n_neighbours / 2);
    begins_.Reserve(vertices.size() + 2);
    begins_.push_back(0); // of node 0, which does not exist
    begins_.push_back(0);
    for (Vtxd const& vertex : vertices) {
        Node const here = place[vertex.Index()];
        For_each_neighbour(vertex, [&](Node neighbour, Arcs arcs) {
            if (place[neighbour] > here) {
                later_.push_back(neighbour);
                later_arcs_.push_back(arcs);
            }
        });
        begins_.push_back(later_.size());
    }
}

} // namespace cpm
