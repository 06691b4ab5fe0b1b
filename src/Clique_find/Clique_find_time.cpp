// SPDX-License-Identifier: MIT
// Takes    the network, a time for each node, a clock.
// Leaves   cliques of the nodes that were done in time, and the beginning of those of the others;
//          the nodes that were not done.
// Order    nodes as in the exact search, those that overran again at the end; at a node
//          lexicographic.
// Cost     as the exact search, within the time; a done neighbour of high degree costs no more than
//          a binary search for each candidate. A node whose time is up at the first look at the
//          clock costs what First_check does, and an attempt never more than twice its time.
// Tested   Clique_find_time_test.cpp with clocks that count, the runs against the plain model.
#include "Clique_find/Clique_find_time.h"

#include <algorithm>
#include <cassert>

namespace cpm {

namespace {

constexpr std::size_t least_others = 2; // a clique has three nodes or more

} // namespace

void Clique_find_part_time(Set_list& cliques, Graph const& graph, std::vector<Node>& core,
                           double max_time, Clock& clock, Progress& progress,
                           std::size_t max_cliques) {
    assert(!graph.Directed());
    using namespace Clique_find_time_sub_routines;
    cliques.clear();
    Timed_node_search search(graph, cliques, progress);
    progress.Search_began({.directed = false, .max_time = max_time});
    Search_in_time(cliques, graph.Nodes(), search, max_time, clock, core, progress, max_cliques);
}

namespace Clique_find_time_sub_routines {

Timed_node_search::Timed_node_search(Graph const& graph, Set_list const& cliques,
                                     Progress& progress)
    : graph_(graph), pace_(progress), done_(graph.size() + 1, false), known_(cliques, graph.size()),
      candidates_(graph), excluded_(graph), walk_(graph) {}

// A node whose cliques show after two steps needs no time: the clock is first read when a third
// step is due. What was found by then counts even when the time is up at this reading. The rows of
// bits come only after it: a hub whose time is up has no need of them, and they are large.
void Timed_node_search::Clique_find_main_time_part(Node node, Time_budget& budget,
                                                   Set_list& found) {
    pace_.Go_on();
    Look_around(node);
    if (known_.One_holds_all(node, candidates_.Nodes())) {
        return;
    }
    bool const third_step = first_check_.Reached(node, candidates_, excluded_, pace_, found);
    if (!third_step || budget.Overrun()) {
        return;
    }
    // The cliques found so far are among all of them, in their places.
    std::swap(found, before_first_look_);
    found.clear();
    pace_.Go_on_within(budget);
    if (Find_all(node, found)) {
        return;
    }
    budget.Overrun();
    std::swap(found, before_first_look_);
    before_first_look_ = {}; // may be large
    local_.Forget();
    pace_.List_within(budget);
    walk_.List({node, candidates_, excluded_}, first_check_.Reached_at(),
               found.size() + budget.Most_listed(), pace_, found);
}

// The cliques of a node that takes too long would fill the memory, only to be thrown away. When
// they need so much, the search goes on without keeping them; when there is time for that, it is
// done once more.
bool Timed_node_search::Find_all(Node node, Set_list& found) {
    if (!Gather()) {
        return false;
    }
    if (!local_.Find(&pace_, most_bytes_of_an_attempt)) {
        bool const once_more = !pace_.Is_over() && !local_.All_kept();
        if (!once_more || !local_.Find(&pace_)) {
            return false;
        }
    }
    return local_.Append_cliques(node, candidates_.Nodes(), least_others, found, &pace_);
}

// Tells the candidates and the excluded nodes among the neighbours. A done neighbour can only
// extend a clique that has two candidates when it is linked with these as well.
void Timed_node_search::Look_around(Node node) {
    candidates_.clear();
    excluded_.clear();
    graph_.For_each_neighbour_above(node, 0, [&](Node other) {
        if (!done_[other]) {
            candidates_.Add(other);
        } else if (graph_.Degree(other) > least_others) {
            excluded_.Add(other);
        }
    });
}

// Sets up the node's problem.
bool Timed_node_search::Gather() {
    std::size_t const n = candidates_.size();
    bool in_time = local_.Start(n, &pace_);
    for (std::size_t i = 0; i < n && in_time; ++i) {
        std::size_t links = 0;
        candidates_.For_each_neighbour_of(candidates_[i], i + 1, [&](std::size_t j) {
            local_.Link(i, j);
            ++links;
        });
        in_time = !pace_.Spend(Steps_to_look_around(candidates_[i]) + links);
    }
    for (std::size_t e = 0; e < excluded_.size() && in_time; ++e) {
        local_.Start_excluded();
        candidates_.For_each_neighbour_of(excluded_[e], 0,
                                          [&](std::size_t j) { local_.Link_excluded(j); });
        local_.End_excluded(least_others);
        in_time = !pace_.Spend(Steps_to_look_around(excluded_[e]));
    }
    return in_time;
}

std::size_t Timed_node_search::Steps_to_look_around(Node node) const {
    return std::min(graph_.Degree(node), 16 * candidates_.size()) + candidates_.size() / 64 + 8;
}

} // namespace Clique_find_time_sub_routines

} // namespace cpm
