// SPDX-License-Identifier: MIT
// Takes    the vertex map, a time for each node, a clock.
// Leaves   cliques of the nodes that were done in time, and what was found of the others; the nodes
//          that were not done.
// Order    nodes as in the exact search, those that overran again at the end; at a node
//          lexicographic.
// Cost     as the exact search, within the time; a done neighbour of high degree costs no more than
//          a binary search for each candidate.
// Tested   Clique_find_time_test.cpp with clocks that count, the runs against the plain model.
#include "Clique_find/Clique_find_time.h"

#include <algorithm>
#include <array>

namespace cpm {

namespace {

constexpr std::size_t least_others = 2; // a clique has three nodes or more

} // namespace

void Clique_find_part_time(Set_list& cliques, Vtx_map const& vertices, std::vector<Node>& core,
                           double max_time, Clock const& clock, Console& console) {
    using namespace Clique_find_time_sub_routines;
    std::vector<Node> order;
    Sort_Vtx_map(order, vertices);
    Timed_node_search search(vertices);
    Search_words const words{" Locating cliques, max. allowed time/node=", "cliques",
                             "exact cliques", " no approximation was needed"};
    Search_in_time(cliques, order, search, max_time, clock, words, core, console);
}

namespace Clique_find_time_sub_routines {

Timed_node_search::Timed_node_search(Vtx_map const& vertices)
    : vertices_(vertices), done_(vertices.size() + 1, false), place_(vertices.size() + 1, 0) {}

// A node whose cliques show after two steps needs no time: the clock is first read when a third
// step is due. What was found by then counts even when the time is up at this reading.
void Timed_node_search::Clique_find_main_time_part(Node node, Time_budget& budget,
                                                   Set_list& found) {
    if (!Gather(node)) {
        return;
    }
    bool const no_third_step = local_.Only_pairs([&](std::size_t i, std::size_t j) {
        std::array<Node, 3> clique{node, candidates_[i], candidates_[j]};
        std::sort(clique.begin(), clique.end());
        found.Add(clique);
    });
    if (no_third_step || budget.Overrun()) {
        return;
    }
    Local_cliques::Stop_check const time_is_up = [&] { return budget.Overrun(); };
    if (local_.Find(&time_is_up)) {
        found.clear(); // the cliques found so far are among all of them, in their places
    }
    local_.Append_cliques(node, candidates_, least_others, found);
}

// Sets up the node's problem. False when no two candidates are linked.
bool Timed_node_search::Gather(Node node) {
    candidates_.clear();
    Node_set const neighbours = vertices_[node - 1].Neighs_c();
    for (Node const other : neighbours) {
        if (!done_[other]) {
            candidates_.push_back(other);
            place_[other] = static_cast<std::uint32_t>(candidates_.size());
        }
    }
    local_.Start(candidates_.size());
    bool any = false;
    for (std::size_t i = 0; i < candidates_.size(); ++i) {
        For_each_candidate_of(candidates_[i], [&](std::size_t j) {
            local_.Link(i, j);
            any = true;
        });
    }
    if (any) {
        for (Node const other : neighbours) {
            if (done_[other]) {
                local_.Start_excluded();
                For_each_candidate_of(other, [&](std::size_t j) { local_.Link_excluded(j); });
                local_.End_excluded(least_others);
            }
        }
    }
    for (Node const candidate : candidates_) {
        place_[candidate] = 0;
    }
    return any;
}

// Takes the places of the candidates that are neighbours of the node: from the shorter side.
template <class Take>
void Timed_node_search::For_each_candidate_of(Node other, Take const& take) const {
    constexpr std::size_t steps_of_a_search = 16;
    Node_set const neighbours = vertices_[other - 1].Neighs_c();
    if (neighbours.size() / steps_of_a_search > candidates_.size()) {
        for (std::size_t j = 0; j < candidates_.size(); ++j) {
            if (std::ranges::binary_search(neighbours, candidates_[j])) {
                take(j);
            }
        }
        return;
    }
    for (Node const neighbour : neighbours) {
        if (place_[neighbour] != 0) {
            take(place_[neighbour] - 1);
        }
    }
}

} // namespace Clique_find_time_sub_routines

} // namespace cpm
