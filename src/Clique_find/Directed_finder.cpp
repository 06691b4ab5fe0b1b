// SPDX-License-Identifier: MIT
// Takes    the graph, a node; within a time which nodes are done.
// Leaves   each maximal acyclic set of three nodes or more once, found at the first of its nodes.
// Order    see Dir_order.
// Cost     where all links have their reverse, or one-way links close no cycle, that of the
//          undirected search, and the sorting. Memory: that of one node, and Known_cliques.
// Tested   Clique_find_dir_test.cpp
#include "Clique_find/Directed_finder.h"

#include "Clique_find/Clique_limit.h"

#include <algorithm>
#include <cassert>

namespace cpm {

namespace {

constexpr std::size_t min_others = 2; // a clique has three nodes or more

} // namespace

void Directed_finder::Main_inc_dir_investigator(Node node, Set_list& cliques) {
    if (around_.Look_around_by_order(node) && around_.Gather_links(pace_)) {
        std::size_t const n_before = cliques.size();
        Find_around(no_bound, cliques);
        known_.Add(cliques, n_before);
    }
}

void Directed_finder::Find_within(Node node, Time_budget& budget, Set_list& found) {
    Main_inc_dir_inv_time(node, budget, found);
    if (!budget.Too_slow()) {
        around_.Done(node);
        known_.Add(found, 0);
    }
}

// The clock is not read for a node whose search by gaps would not read it, and is read where that
// would read it first: what it had found by then counts when the time is up. From there on the fast
// search takes over, which finds everything anew.
void Directed_finder::Main_inc_dir_inv_time(Node node, Time_budget& budget, Set_list& found) {
    pace_.Go_on();
    if (!around_.Look_around(node)) {
        return;
    }
    bool const reads_clock = before_clock_.Reads_clock(around_, pace_, found);
    if (reads_clock && budget.Overrun()) {
        return;
    }
    std::swap(found, before_first_look_);
    found.clear();
    if (reads_clock) {
        budget.Bound(pace_);
    }
    acyclic_ = false;
    if (around_.Gather_links(pace_)) {
        bool all_found = Find_around(reads_clock ? max_bytes_of_an_attempt : no_bound, found);
        if (!all_found && !pace_.Is_over()) { // there is time, but the sets need more than that
            all_found = Find_around(no_bound, found);
        }
        if (all_found) {
            return;
        }
    } else if (!pace_.Is_over()) {
        return;
    }
    found = {}; // may be large
    local_.Forget();
    kernel_.Forget();
    budget.Bound_listing(pace_);
    around_.Look_around(node); // the places as they were for the check
    if (walk_.List(around_, before_clock_, acyclic_,
                   before_first_look_.size() + budget.Most_listed(), pace_)) {
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
bool Directed_finder::Find_around(std::size_t max_bytes, Set_list& cliques) {
    acyclic_ = !around_.May_have_cycles();
    bool const all_found =
        acyclic_ ? Find_acyclic(max_bytes) : kernel_.Find(around_, &pace_, max_bytes);
    if (!all_found) {
        return false;
    }
    Set_list const& sets = acyclic_ ? sets_ : kernel_.Found();
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

// Where one-way links close no cycle, all sets of nodes two by two linked are acyclic.
bool Directed_finder::Find_acyclic(std::size_t max_bytes) {
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
        local_.Add_excluded();
        for (; !rest.empty() && rest.front().other == excluded; rest = rest.subspan(1)) {
            local_.Link_last_excluded(rest.front().candidate);
        }
        if (pace_.Spend(steps_a_link * (n_rest - rest.size()) + around_.Centre() / 64)) {
            return false;
        }
    }
    if (!local_.Drop_excluded(min_others, pace_) || !local_.Find(&pace_, max_bytes)) {
        return false;
    }
    while (places_.size() < around_.Centre()) {
        places_.push_back(static_cast<Node>(places_.size()));
    }
    sets_.clear();
    return local_.Append_cliques(around_.Centre(), Node_set(places_).first(around_.Centre()),
                                 min_others, sets_, &pace_);
}

void Directed_finder::Append_clique(Node_set places, Set_list& cliques) {
    clique_.clear();
    for (Place const place : places) {
        clique_.push_back(around_.Name(place));
    }
    // The centre's place is the last one, whatever its index.
    auto const centre = clique_.end() - 1;
    std::rotate(std::upper_bound(clique_.begin(), centre, *centre), centre, clique_.end());
    cliques.Add(clique_);
}

} // namespace cpm
