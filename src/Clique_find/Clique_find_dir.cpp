// SPDX-License-Identifier: MIT
// The directed searches, exact and within a time.
//
// Takes    the vertex map; a time for each node and a clock.
// Leaves   each maximal set of three nodes or more that can be lined up once, found at its first
//          node; within a time also what was found at the nodes given up, and these nodes.
// Order    nodes ascending by neighbours, then index; at a node see Dir_order. Within a time nodes
//          that overran come again at the end.
// Cost     where all links have their reverse, or one-way links close no circle, that of the
//          undirected search, and the sorting. Memory: 5 bytes a link beside the clique list.
// Tested   Clique_find_dir_test.cpp
#include "Clique_find/Clique_find_dir.h"

#include <algorithm>

namespace cpm {

namespace {

constexpr std::size_t least_others = 2; // a clique has three nodes or more

} // namespace

void Clique_find_dir(Set_list& cliques, Vtxd_map const& vertices, Progress& progress) {
    cliques.clear();
    progress.Search_began({.directed = true, .max_time = std::nullopt});
    Dir_links const links(vertices);
    Clique_find_dir_sub_routines::Dir_node_search search(links);
    auto const total = static_cast<std::uint32_t>(vertices.size());
    std::uint32_t to_do = total;
    for (Node const node : links.Order()) {
        progress.Node_started(to_do--, total);
        search.Main_inc_dir_investigator(node, cliques);
        search.Done(node);
    }
    cliques.Shrink_to_fit();
    progress.Search_done(static_cast<std::uint32_t>(cliques.size()), true);
}

void Clique_find_dir_time(Set_list& cliques, Vtxd_map const& vertices, std::vector<Node>& core,
                          double max_time, Clock& clock, Progress& progress) {
    using namespace Clique_find_time_sub_routines;
    Dir_links const links(vertices);
    Clique_find_dir_sub_routines::Dir_node_search search(links);
    progress.Search_began({.directed = true, .max_time = max_time});
    Search_in_time(cliques, links.Order(), search, max_time, clock, core, progress);
}

namespace Clique_find_dir_sub_routines {

void Dir_node_search::Main_inc_dir_investigator(Node node, Set_list& cliques) {
    if (around_.Gather(node)) {
        Find_around(nullptr, cliques);
    }
}

// The clock is not read for a node whose search by gaps would not read it, and is read where that
// would read it first: what it had found by then counts when the time is up. From there on the fast
// search takes over, which finds everything anew.
void Dir_node_search::Main_inc_dir_inv_time(Node node,
                                            Clique_find_time_sub_routines::Time_budget& budget,
                                            Set_list& found) {
    if (!around_.Gather(node)) {
        return;
    }
    Local_cliques::Stop_check const time_is_up = [&budget] { return budget.Overrun(); };
    bool const reads_clock = first_check_.Reached(around_, found);
    if (reads_clock && budget.Overrun()) {
        return;
    }
    found.clear();
    Find_around(reads_clock ? &time_is_up : nullptr, found);
}

// Appends the cliques around the node, or some of them when it is stopped.
void Dir_node_search::Find_around(Local_cliques::Stop_check const* stop, Set_list& cliques) {
    bool const circles = around_.May_have_circles();
    bool const all_found = circles ? kernel_.Find(around_, stop) : Find_without_circles(stop);
    Set_list const& sets = circles ? kernel_.Found() : sets_;
    if (!around_.One_way() || !all_found) {
        // Every gap is open to every node: sets are met in lexicographic order, as they stand. And
        // nobody asks for the order of some of the sets, which would take longer than to find them.
        for (std::size_t i = 0; i < sets.size(); ++i) {
            Append_clique(sets[i], cliques);
        }
        return;
    }
    for (std::uint32_t const i : order_.Sort(around_, sets)) {
        Append_clique(sets[i], cliques);
    }
}

// Where one-way links close no circle, nodes two by two linked can always be lined up.
bool Dir_node_search::Find_without_circles(Local_cliques::Stop_check const* stop) {
    local_.Start(around_.Centre());
    for (Local_link const& link : around_.Links()) {
        local_.Link(link.candidate, link.other);
    }
    std::span<Local_link const> rest = around_.Excluded_links();
    while (!rest.empty()) {
        Place const excluded = rest.front().other;
        local_.Start_excluded();
        for (; !rest.empty() && rest.front().other == excluded; rest = rest.subspan(1)) {
            local_.Link_excluded(rest.front().candidate);
        }
        local_.End_excluded(least_others);
    }
    bool const all_found = local_.Find(stop);
    while (places_.size() < around_.Centre()) {
        places_.push_back(static_cast<Node>(places_.size()));
    }
    sets_.clear();
    local_.Append_cliques(around_.Centre(), Node_set(places_).first(around_.Centre()), least_others,
                          sets_);
    return all_found;
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
