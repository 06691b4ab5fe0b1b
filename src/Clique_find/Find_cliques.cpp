// SPDX-License-Identifier: MIT
#include "Clique_find/Find_cliques.h"

#include "Clique_find/Appr_core_cliques.h"
#include "Clique_find/Search_driver.h"

namespace cpm {

namespace {

void Approximate(Found_cliques& found, Core const& core, Progress& progress,
                 std::size_t max_cliques) {
    progress.Approximation_began();
    Set_list approx;
    Appr_core_cliques(core, found.cliques, approx);
    Set_list before_merge = found.cliques;
    bool const dropped = Extend_clique_vec(found.cliques, found.n_exact, approx, found.nested);
    Check_n_cliques(found.cliques.size(), max_cliques);
    if (dropped) {
        found.before_merge = std::move(before_merge);
    }
    progress.Approximation_done(found.n_exact, found.cliques.size() - found.n_exact);
}

} // namespace

void Find_cliques(Found_cliques& found, Graph const& graph, std::optional<double> max_time_per_node,
                  Clock& clock, Progress& progress, std::size_t max_cliques) {
    Set_list& cliques = found.cliques;
    std::vector<Node> core;
    std::optional<Time_limit> limit;
    if (max_time_per_node) {
        limit.emplace(Time_limit{*max_time_per_node, clock});
    }
    Search_graph(cliques, graph, limit, core, progress, max_cliques);
    found.n_exact = cliques.size();
    if (!core.empty()) {
        // A directed search that was cut short can leave a set that it had yet to find inside
        // another one.
        found.nested = graph.Directed();
        Approximate(found, Core_of_nodes(core, graph), progress, max_cliques);
    }
}

void Find_cliques(Found_cliques& found, Graph const& graph, Exact_finder& finder,
                  Progress& progress, std::size_t max_cliques) {
    Search_graph(found.cliques, graph, finder, progress, max_cliques);
    found.n_exact = found.cliques.size();
}

} // namespace cpm
