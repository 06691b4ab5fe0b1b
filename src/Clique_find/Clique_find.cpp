// SPDX-License-Identifier: MIT
#include "Clique_find/Clique_find.h"

#include "Clique_find/Search_driver.h"

#include <cassert>

namespace cpm {

void Clique_find(Set_list& cliques, Graph const& graph, Progress& progress,
                 std::size_t max_cliques) {
    assert(!graph.Directed());
    std::vector<Node> none;
    Search_graph(cliques, graph, std::nullopt, none, progress, max_cliques);
}

void Clique_find_dir(Set_list& cliques, Graph const& graph, Progress& progress,
                     std::size_t max_cliques) {
    assert(graph.Directed());
    std::vector<Node> none;
    Search_graph(cliques, graph, std::nullopt, none, progress, max_cliques);
}

void Clique_find_part_time(Set_list& cliques, Graph const& graph, std::vector<Node>& core,
                           double max_time, Clock& clock, Progress& progress,
                           std::size_t max_cliques) {
    assert(!graph.Directed());
    Search_graph(cliques, graph, Time_limit{max_time, clock}, core, progress, max_cliques);
}

void Clique_find_dir_time(Set_list& cliques, Graph const& graph, std::vector<Node>& core,
                          double max_time, Clock& clock, Progress& progress,
                          std::size_t max_cliques) {
    assert(graph.Directed());
    Search_graph(cliques, graph, Time_limit{max_time, clock}, core, progress, max_cliques);
}

} // namespace cpm
