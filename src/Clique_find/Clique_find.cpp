// SPDX-License-Identifier: MIT
// The exact undirected search.
//
// Takes    the links.
// Leaves   each maximal clique of three nodes or more once, found at its first node in the order.
//          Its candidates are the node's later neighbours; a clique that a done neighbour extends
//          was found with that one, so done neighbours are excluded nodes.
// Order    nodes ascending by neighbours, then index; at a node lexicographic.
// Cost     a node's candidates and excluded nodes are found by walking the later neighbours of its
//          neighbours, never all neighbours of a hub: no more than sqrt(2 * links) a link, and on
//          real networks a few. Memory: 8 bytes a link beside the clique list.
// Tested   Clique_find_test.cpp, the runs against the plain model.
#include "Clique_find/Clique_find.h"

#include <algorithm>

namespace cpm {

namespace {

constexpr std::size_t least_others = 2; // a clique has three nodes or more
constexpr std::size_t ahead = 4;        // neighbours of so many nodes are on their way from memory

} // namespace

void Clique_find(Set_list& cliques, Index_links const& links, Progress& progress) {
    cliques.clear();
    progress.Search_began({});
    Node_order const order(links);
    progress.Nodes_sorted();
    Clique_find_sub_routines::Node_search search(order, progress);
    auto const total = static_cast<std::uint32_t>(order.size());
    std::uint32_t to_do = total;
    for (Node const node : order.Nodes()) {
        progress.Node_started(to_do--, total);
        search.Clique_find_main_inv(node, cliques);
    }
    cliques.Shrink_to_fit();
    progress.Search_done(static_cast<std::uint32_t>(cliques.size()), true);
}

namespace Clique_find_sub_routines {

Node_search::Node_search(Node_order const& order, Progress& progress)
    : order_(order), pace_(progress), place_(order.size() + 1, 0) {}

void Node_search::Clique_find_main_inv(Node node, Set_list& cliques) {
    Node_set const candidates = order_.Later(node);
    if (candidates.size() < least_others) {
        return;
    }
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        place_[candidates[i]] = static_cast<std::uint32_t>(i + 1);
        order_.Prefetch_place(candidates[i]);
    }
    for (Node const done : order_.Earlier(node)) {
        order_.Prefetch_place(done);
    }
    steps_ = 0;
    bool const anything = Gather(node);
    pace_.Spend(steps_);
    if (anything) {
        local_.Find(&pace_);
        local_.Append_cliques(node, candidates, least_others, cliques);
    }
    for (Node const candidate : candidates) {
        place_[candidate] = 0;
    }
}

// The places of those of the nodes that are marked.
std::span<std::uint32_t const> Node_search::Places_of(Node_set nodes) {
    marked_.resize(std::max(marked_.size(), nodes.size()));
    std::size_t n_marked = 0;
    for (Node const node : nodes) {
        // Written each time and kept if marked: which nodes are no branch could foresee.
        marked_[n_marked] = place_[node];
        n_marked += place_[node] != 0 ? 1U : 0U;
    }
    return {marked_.data(), n_marked};
}

// Sets up the links between the candidates, whose places are marked, and the excluded nodes. False
// when there is nothing to find: an excluded node is linked with all candidates, or no two
// candidates are linked.
bool Node_search::Gather(Node node) {
    Node_set const candidates = order_.Later(node);
    local_.Start(candidates.size());
    return Gather_excluded(order_.Earlier(node), candidates.size()) && Gather_links(candidates);
}

// All candidates come after the node, so they are later neighbours of a done neighbour.
bool Node_search::Gather_excluded(Node_set excluded, std::size_t n_candidates) {
    for (std::size_t i = 0; i < excluded.size(); ++i) {
        if (i + ahead < excluded.size()) {
            order_.Prefetch_neighbours(excluded[i + ahead]);
        }
        Node_set const later = order_.Later(excluded[i]);
        steps_ += later.size();
        std::span<std::uint32_t const> const places = Places_of(later);
        if (places.size() == n_candidates) {
            return false;
        }
        if (places.size() >= least_others) {
            local_.Start_excluded();
            for (std::uint32_t const place : places) {
                local_.Link_excluded(place - 1);
            }
        }
    }
    return true;
}

// Each link between candidates is a later link of one of its two ends.
bool Node_search::Gather_links(Node_set candidates) {
    bool any = false;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        if (i + ahead < candidates.size()) {
            order_.Prefetch_neighbours(candidates[i + ahead]);
        }
        Node_set const later = order_.Later(candidates[i]);
        steps_ += later.size();
        for (std::uint32_t const place : Places_of(later)) {
            local_.Link(i, place - 1);
            any = true;
        }
    }
    return any;
}

} // namespace Clique_find_sub_routines

} // namespace cpm
