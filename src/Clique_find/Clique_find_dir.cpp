// SPDX-License-Identifier: MIT
// The directed searches, exact and within a time.
//
// Takes    the graph; a time for each node and a clock.
// Leaves   each maximal set of three nodes or more that can be lined up once, found at its first
//          node; within a time also what was found at the nodes given up, and these nodes.
// Order    nodes ascending by neighbours, then index; at a node see Dir_order. Within a time nodes
//          that overran come again at the end.
// Cost     where all links have their reverse, or one-way links close no circle, that of the
//          undirected search, and the sorting. Memory: that of one node beside the graph and the
//          clique list.
// Tested   Clique_find_dir_test.cpp
#include "Clique_find/Clique_find_dir.h"

#include <algorithm>
#include <cassert>
#include <limits>

namespace cpm {

namespace {

constexpr std::size_t least_others = 2; // a clique has three nodes or more
constexpr std::size_t no_bound = std::numeric_limits<std::size_t>::max();

} // namespace

void Clique_find_dir(Set_list& cliques, Graph const& graph, Progress& progress,
                     std::size_t max_cliques) {
    cliques.clear();
    progress.Search_began({.directed = true, .max_time = std::nullopt});
    Clique_find_dir_sub_routines::Dir_node_search search(graph, cliques, progress);
    auto const total = static_cast<std::uint32_t>(graph.size());
    std::uint32_t to_do = total;
    for (Node const node : graph.Nodes()) {
        progress.Node_started(to_do--, total);
        search.Main_inc_dir_investigator(node, cliques);
        Check_n_cliques(cliques.size(), max_cliques);
        search.Done(node);
    }
    cliques.Shrink_to_fit();
    progress.Search_done(static_cast<std::uint32_t>(cliques.size()), true);
}

void Clique_find_dir_time(Set_list& cliques, Graph const& graph, std::vector<Node>& core,
                          double max_time, Clock& clock, Progress& progress,
                          std::size_t max_cliques) {
    using namespace Clique_find_time_sub_routines;
    cliques.clear();
    Clique_find_dir_sub_routines::Dir_node_search search(graph, cliques, progress);
    progress.Search_began({.directed = true, .max_time = max_time});
    Search_in_time(cliques, graph.Nodes(), search, max_time, clock, core, progress, max_cliques);
}

namespace Clique_find_dir_sub_routines {

void Dir_node_search::Main_inc_dir_investigator(Node node, Set_list& cliques) {
    if (around_.Gather(node)) {
        Find_around(no_bound, cliques);
    }
}

// The clock is not read for a node whose search by gaps would not read it, and is read where that
// would read it first: what it had found by then counts when the time is up. From there on the fast
// search takes over, which finds everything anew.
void Dir_node_search::Main_inc_dir_inv_time(Node node, Time_budget& budget, Set_list& found) {
    pace_.Go_on();
    if (!around_.Gather(node)) {
        return;
    }
    bool const reads_clock = first_check_.Reached(around_, pace_, found);
    if (reads_clock && budget.Overrun()) {
        return;
    }
    std::swap(found, before_first_look_);
    found.clear();
    if (!reads_clock) {
        Find_around(no_bound, found);
        return;
    }
    pace_.Go_on_within(budget);
    bool all_found = Find_around(most_bytes_of_an_attempt, found);
    if (!all_found && !pace_.Is_over()) { // there is time, but the sets need more than the bound
        all_found = Find_around(no_bound, found);
    }
    if (all_found) {
        return;
    }
    found = {}; // may be large
    local_.Forget();
    kernel_.Forget();
    pace_.List_within(budget);
    if (walk_.List(around_, first_check_, before_first_look_.size() + budget.Most_listed(),
                   pace_)) {
        for (std::size_t i = 0; i < walk_.Found().size(); ++i) {
            Append_clique(walk_.Found()[i], found);
        }
    } else {
        std::swap(found, before_first_look_);
    }
    walk_.Forget();
}

// Appends the cliques around the node. False when the time was up before, or when there were more
// than could be kept: then some of them may be there.
bool Dir_node_search::Find_around(std::size_t most_bytes, Set_list& cliques) {
    bool const circles = around_.May_have_circles();
    bool const all_found =
        circles ? kernel_.Find(around_, &pace_, most_bytes) : Find_without_circles(most_bytes);
    if (!all_found) {
        return false;
    }
    Set_list const& sets = circles ? kernel_.Found() : sets_;
    Check_n_cliques(sets.size()); // they are numbered to be sorted
    std::vector<std::uint32_t> const* order = nullptr;
    if (around_.One_way()) { // else every gap is open to every node: the order is lexicographic
        order = order_.Sort(around_, sets, &pace_);
        if (order == nullptr) {
            return false;
        }
    }
    for (std::size_t i = 0; i < sets.size(); ++i) {
        Node_set const set = sets[order == nullptr ? i : (*order)[i]];
        Append_clique(set, cliques);
        if (pace_.Spend(set.size())) {
            return false;
        }
    }
    return true;
}

// Where one-way links close no circle, nodes two by two linked can always be lined up.
bool Dir_node_search::Find_without_circles(std::size_t most_bytes) {
    constexpr std::size_t steps_a_link = 4;
    if (!local_.Start(around_.Centre(), pace_.Is_bounded() ? &pace_ : nullptr)) {
        return false;
    }
    for (Local_link const& link : around_.Links()) {
        local_.Link(link.candidate, link.other);
        if (pace_.Spend(steps_a_link)) {
            return false;
        }
    }
    std::span<Local_link const> rest = around_.Excluded_links();
    assert(std::ranges::is_sorted(rest, {}, &Local_link::other));
    while (!rest.empty()) {
        std::size_t const n_rest = rest.size();
        Place const excluded = rest.front().other;
        local_.Start_excluded();
        for (; !rest.empty() && rest.front().other == excluded; rest = rest.subspan(1)) {
            local_.Link_excluded(rest.front().candidate);
        }
        local_.End_excluded(least_others);
        if (pace_.Spend(steps_a_link * (n_rest - rest.size()) + around_.Centre() / 64)) {
            return false;
        }
    }
    if (!local_.Find(&pace_, most_bytes)) {
        return false;
    }
    while (places_.size() < around_.Centre()) {
        places_.push_back(static_cast<Node>(places_.size()));
    }
    sets_.clear();
    return local_.Append_cliques(around_.Centre(), Node_set(places_).first(around_.Centre()),
                                 least_others, sets_, &pace_);
}

void Dir_node_search::Append_clique(Node_set places, Set_list& cliques) {
    clique_.clear();
    for (Place const place : places) {
        clique_.push_back(around_.Name(place));
    }
    // The centre's place is the last one, whatever its index.
    auto const centre = clique_.end() - 1;
    std::rotate(std::upper_bound(clique_.begin(), centre, *centre), centre, clique_.end());
    cliques.Add(clique_);
}

} // namespace Clique_find_dir_sub_routines

} // namespace cpm
