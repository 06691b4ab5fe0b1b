// SPDX-License-Identifier: MIT
#include "records/Vertex_maps.h"

#include "graph/Graph.h"
#include "support/Errors.h"

namespace cpm {

namespace {

Node Largest_node(Index_links const& links) {
    Node largest = 0;
    for (Node_pair const& pair : links.pairs) {
        largest = std::max({largest, pair.first, pair.second});
    }
    return largest;
}

// The sources of the links to each node, ascending, flat: those to node i begin at starts[i].
struct Sources {
    Flat_array<std::uint64_t> starts;
    Flat_array<Node> nodes;

    Sources(Index_links const& links, Node n_nodes) : starts(std::size_t{n_nodes} + 2, 0) {
        for (Node_pair const& pair : links.pairs) {
            ++starts[pair.second];
        }
        std::uint64_t end = 0;
        for (std::uint64_t& start : starts) {
            end += start;
            start = end;
        }
        // Filled from its end, each part arrives at its start; the links are ascending by source.
        nodes.Resize_uninitialised(links.size());
        for (std::size_t i = links.size(); i-- > 0;) {
            nodes[--starts[links.pairs[i].second]] = links.pairs[i].first;
        }
    }
    Node_set operator[](Node node) const {
        return {nodes.data() + starts[node], nodes.data() + starts[node + 1]};
    }
};

} // namespace

// Smaller neighbours are sources of links to the node, larger ones targets of its own links, so
// each neighbour is appended. Node by node instead of link by link: each record is touched once.
void Vtx_map_from_link_map(Vtx_map& vertices, Index_links const& links) {
    vertices.clear();
    Node const n_nodes = Largest_node(links);
    Sources const sources(links, n_nodes);
    vertices.reserve(n_nodes);
    std::size_t next = 0;
    for (Node node = 1; node <= n_nodes; ++node) {
        std::size_t const first = next;
        while (next < links.size() && links.pairs[next].first == node) {
            ++next;
        }
        Vtx& vertex = vertices.emplace_back(node);
        vertex.Reserve_neighs(sources[node].size() + (next - first));
        for (Node const source : sources[node]) {
            vertex.Add_neigh(source);
        }
        for (std::size_t i = first; i < next; ++i) {
            vertex.Add_neigh(links.pairs[i].second);
        }
    }
}

// Adding link by link would have to insert into the middle of the neighbours, which costs a hub the
// square of its links: each direction is set whole instead.
void Dir_vtx_map_from_link_map(Vtxd_map& vertices, Index_links const& links) {
    vertices.clear();
    Node const n_nodes = Largest_node(links);
    Sources const sources(links, n_nodes);
    vertices.reserve(n_nodes);
    std::vector<Node> targets;
    std::size_t next = 0;
    for (Node node = 1; node <= n_nodes; ++node) {
        targets.clear();
        for (; next < links.size() && links.pairs[next].first == node; ++next) {
            targets.push_back(links.pairs[next].second);
        }
        Vtxd& vertex = vertices.emplace_back(node);
        vertex.Set_oneighs(targets);
        vertex.Set_ineighs(sources[node]);
    }
}

void Sort_Vtx_map(std::vector<Node>& order, Vtx_map const& vertices) {
    Flat_array<Node> counts;
    counts.Reserve(vertices.size());
    for (Vtx const& vertex : vertices) {
        counts.push_back(static_cast<Node>(vertex.Neighs_c().size()));
    }
    Sort_by_counts(order, counts);
}

void Sort_dir_vtx_map(std::vector<Node>& order, Vtxd_map const& vertices, std::string const& flag) {
    Node_set (Vtxd::*neighbours)() const = nullptr;
    if (flag == "Neighs") {
        neighbours = &Vtxd::Neighs_c;
    } else if (flag == "Ineighs") {
        neighbours = &Vtxd::Ineighs_c;
    } else if (flag == "Oneighs") {
        neighbours = &Vtxd::Oneighs_c;
    } else {
        throw Xerror_msg(" Invalid flag '" + flag + "' given in Sort_vtxd_gmap...\n");
    }
    Flat_array<Node> counts;
    counts.Reserve(vertices.size());
    for (Vtxd const& vertex : vertices) {
        counts.push_back(static_cast<Node>((vertex.*neighbours)().size()));
    }
    Sort_by_counts(order, counts);
}

} // namespace cpm
