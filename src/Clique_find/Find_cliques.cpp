// SPDX-License-Identifier: MIT
#include "Clique_find/Find_cliques.h"

#include "Clique_find/Appr_core_cliques.h"
#include "Clique_find/Clique_find.h"
#include "Clique_find/Clique_find_dir.h"
#include "Clique_find/Clique_find_time.h"

namespace cpm {

namespace {

void Approximate(Found_cliques& found, Core const& core, Progress& progress) {
    progress.Approximation_began();
    Set_list approx;
    Appr_core_cliques(core, found.cliques, approx);
    Set_list before_merge = found.cliques;
    bool const dropped = Extend_clique_vec(found.cliques, found.n_exact, approx, found.nested);
    if (dropped) {
        found.before_merge = std::move(before_merge);
    }
    progress.Approximation_done(found.n_exact, found.cliques.size() - found.n_exact);
}

} // namespace

Graph Graph_of_links(Index_links const& links, bool directed) {
    Graph graph;
    graph.directed = directed;
    if (directed) {
        Dir_vtx_map_from_link_map(graph.dir_vertices, links);
    } else {
        graph.links = &links;
    }
    return graph;
}

void Find_cliques(Found_cliques& found, Graph const& graph, std::optional<double> max_time_per_node,
                  Clock& clock, Progress& progress) {
    if (!max_time_per_node) {
        if (graph.directed) {
            Clique_find_dir(found.cliques, graph.dir_vertices, progress);
        } else {
            Clique_find(found.cliques, *graph.links, progress);
        }
        found.n_exact = found.cliques.size();
        return;
    }
    std::vector<Node> core;
    if (graph.directed) {
        Clique_find_dir_time(found.cliques, graph.dir_vertices, core, *max_time_per_node, clock,
                             progress);
        found.n_exact = found.cliques.size();
        if (!core.empty()) {
            // A search that was cut short can leave a set that it had yet to find inside another
            // one.
            found.nested = true;
            Approximate(found, Core_of_nodes(core, graph.dir_vertices), progress);
        }
        return;
    }
    Node_order const order(*graph.links);
    Clique_find_part_time(found.cliques, order, core, *max_time_per_node, clock, progress);
    found.n_exact = found.cliques.size();
    if (!core.empty()) {
        Approximate(found, Core_of_nodes(core, order), progress);
    }
}

} // namespace cpm
