// SPDX-License-Identifier: MIT
// Takes    the vertex map, a time for each node, a clock.
// Leaves   cliques of the nodes that were done in time, and what was found of the others; the nodes
//          that were not done.
// Order    nodes as in the exact search, those that overran again at the end; at a node
//          lexicographic.
// Cost     as the exact search, within the time; a done neighbour of high degree costs no more than
//          a binary search for each candidate. A node whose time is up at the first look at the
//          clock costs what First_check does.
// Tested   Clique_find_time_test.cpp with clocks that count, the runs against the plain model.
#include "Clique_find/Clique_find_time.h"

namespace cpm {

namespace {

constexpr std::size_t least_others = 2; // a clique has three nodes or more

} // namespace

void Clique_find_part_time(Set_list& cliques, Vtx_map const& vertices, std::vector<Node>& core,
                           double max_time, Clock& clock, Progress& progress) {
    using namespace Clique_find_time_sub_routines;
    std::vector<Node> order;
    Sort_Vtx_map(order, vertices);
    Timed_node_search search(vertices);
    progress.Search_began({.directed = false, .max_time = max_time});
    Search_in_time(cliques, order, search, max_time, clock, core, progress);
}

namespace Clique_find_time_sub_routines {

Timed_node_search::Timed_node_search(Vtx_map const& vertices)
    : vertices_(vertices), done_(vertices.size() + 1, false), candidates_(vertices),
      excluded_(vertices) {}

// A node whose cliques show after two steps needs no time: the clock is first read when a third
// step is due. What was found by then counts even when the time is up at this reading. The rows of
// bits come only after it: a hub whose time is up has no need of them, and they are large.
void Timed_node_search::Clique_find_main_time_part(Node node, Time_budget& budget,
                                                   Set_list& found) {
    Look_around(node);
    bool const third_step = first_check_.Reached(node, candidates_, excluded_, found);
    if (!third_step || budget.Overrun()) {
        return;
    }
    Gather();
    Local_cliques::Stop_check const time_is_up = [&] { return budget.Overrun(); };
    if (local_.Find(&time_is_up)) {
        found.clear(); // the cliques found so far are among all of them, in their places
    }
    local_.Append_cliques(node, candidates_.Nodes(), least_others, found);
}

// Tells the candidates and the excluded nodes among the neighbours. A done neighbour can only
// extend a clique that has two candidates when it is linked with these as well.
void Timed_node_search::Look_around(Node node) {
    candidates_.clear();
    excluded_.clear();
    for (Node const other : vertices_[node - 1].Neighs_c()) {
        if (!done_[other]) {
            candidates_.Add(other);
        } else if (vertices_[other - 1].Neighs_c().size() > least_others) {
            excluded_.Add(other);
        }
    }
}

// Sets up the node's problem.
void Timed_node_search::Gather() {
    local_.Start(candidates_.size());
    for (std::size_t i = 0; i < candidates_.size(); ++i) {
        candidates_.For_each_neighbour_of(candidates_[i], i + 1,
                                          [&](std::size_t j) { local_.Link(i, j); });
    }
    for (Node const other : excluded_.Nodes()) {
        local_.Start_excluded();
        candidates_.For_each_neighbour_of(other, 0,
                                          [&](std::size_t j) { local_.Link_excluded(j); });
        local_.End_excluded(least_others);
    }
}

} // namespace Clique_find_time_sub_routines

} // namespace cpm
