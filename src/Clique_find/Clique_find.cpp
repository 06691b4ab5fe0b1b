// SPDX-License-Identifier: MIT
// The exact undirected search.
//
// Takes    the graph.
// Leaves   each maximal clique of three nodes or more once, found at its first node in the graph.
//          Its candidates are the node's later neighbours; a clique that a done neighbour extends
//          was found with that one, so done neighbours are excluded nodes.
// Order    nodes ascending by neighbours, then index; at a node lexicographic.
// Cost     a node's candidates and excluded nodes are found by walking the later neighbours of its
//          neighbours, never all neighbours of a hub: no more than sqrt(2 * links) a link, and on
//          real networks a few. Memory: that of one node beside the graph and the clique list.
// Tested   Clique_find_test.cpp, the runs against the plain model.
#include "Clique_find/Clique_find.h"

#include <algorithm>
#include <cassert>

namespace cpm {

namespace {

constexpr std::size_t least_others = 2; // a clique has three nodes or more
constexpr std::size_t ahead = 4;        // neighbours of so many nodes are on their way from memory

} // namespace

void Clique_find(Set_list& cliques, Graph const& graph, Progress& progress,
                 std::size_t max_cliques) {
    assert(!graph.Directed());
    cliques.clear();
    progress.Search_began({});
    progress.Nodes_sorted();
    Clique_find_sub_routines::Node_search search(graph, progress);
    auto const total = static_cast<std::uint32_t>(graph.size());
    std::uint32_t to_do = total;
    for (Node const node : graph.Nodes()) {
        progress.Node_started(to_do--, total);
        search.Clique_find_main_inv(node, cliques);
        Check_n_cliques(cliques.size(), max_cliques);
    }
    cliques.Shrink_to_fit();
    progress.Search_done(static_cast<std::uint32_t>(cliques.size()), true);
}

namespace Clique_find_sub_routines {

Node_search::Node_search(Graph const& graph, Progress& progress)
    : graph_(graph), pace_(progress), place_(graph.size() + 1, 0) {}

void Node_search::Clique_find_main_inv(Node node, Set_list& cliques) {
    Node_set const candidates = graph_.Later(node);
    if (candidates.size() < least_others) {
        return;
    }
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        place_[candidates[i]] = static_cast<std::uint32_t>(i + 1);
        graph_.Prefetch_place(candidates[i]);
    }
    for (Node const done : graph_.Earlier(node)) {
        graph_.Prefetch_place(done);
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
    Node_set const candidates = graph_.Later(node);
    local_.Start(candidates.size());
    return Gather_excluded(graph_.Earlier(node), candidates.size()) && Gather_links(candidates);
}

// All candidates come after the node, so they are later neighbours of a done neighbour.
bool Node_search::Gather_excluded(Node_set excluded, std::size_t n_candidates) {
    for (std::size_t i = 0; i < excluded.size(); ++i) {
        if (i + ahead < excluded.size()) {
            graph_.Prefetch_neighbours(excluded[i + ahead]);
        }
        Node_set const later = graph_.Later(excluded[i]);
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
            graph_.Prefetch_neighbours(candidates[i + ahead]);
        }
        Node_set const later = graph_.Later(candidates[i]);
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
