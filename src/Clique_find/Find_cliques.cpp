// SPDX-License-Identifier: MIT
#include "Clique_find/Find_cliques.h"

#include "Clique_find/Appr_core_cliques.h"
#include "Clique_find/Clique_find.h"
#include "Clique_find/Clique_find_dir.h"
#include "Clique_find/Clique_find_time.h"

namespace cpm {

namespace {

void Approximate(Found_cliques& found, Core const& core, Console& console) {
    console.Put_line("_____________________________________________");
    console.Put_line(" Approximating cliques in the remaing core...");
    Set_list approx;
    Appr_core_cliques(core, found.cliques, approx);
    Set_list before_merge = found.cliques;
    bool const dropped = Extend_clique_vec(found.cliques, found.n_exact, approx);
    if (dropped) {
        found.before_merge = std::move(before_merge);
    }
    console.Put_line(" Clique approximation finished,");
    console.Put(" number of   exact cliques=");
    console.Put_number(found.n_exact);
    console.Put(",\n number of approx. cliques=");
    console.Put_number(found.cliques.size() - found.n_exact);
    console.Put_line("");
}

} // namespace

void Find_cliques(Found_cliques& found, Graph const& graph, std::optional<double> max_time_per_node,
                  Clock const& clock, Console& console) {
    if (!max_time_per_node) {
        if (graph.directed) {
            Clique_find_dir(found.cliques, graph.dir_vertices, console);
        } else {
            Clique_find(found.cliques, *graph.links, console);
        }
        found.n_exact = found.cliques.size();
        return;
    }
    std::vector<Node> core;
    if (graph.directed) {
        Clique_find_dir_time(found.cliques, graph.dir_vertices, core, *max_time_per_node, clock,
                             console);
    } else {
        Clique_find_part_time(found.cliques, graph.vertices, core, *max_time_per_node, clock,
                              console);
    }
    found.n_exact = found.cliques.size();
    if (!core.empty()) {
        // A directed search that was cut short can leave a set that it had yet to find inside
        // another one.
        found.nested = graph.directed;
        Approximate(found,
                    graph.directed ? Core_of_nodes(core, graph.dir_vertices)
                                   : Core_of_nodes(core, graph.vertices),
                    console);
    }
}

} // namespace cpm
