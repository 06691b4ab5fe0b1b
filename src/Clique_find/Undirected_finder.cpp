// SPDX-License-Identifier: MIT
// Takes    the graph, a node; within a time which nodes are done.
// Leaves   each maximal clique of three nodes or more once, found at the first of its nodes. Its
//          candidates are the node's neighbours that are not done; a clique that a done neighbour
//          extends was found with that one, so done neighbours are excluded nodes.
// Order    lexicographic.
// Cost     a node's candidates and excluded nodes are found by walking the later neighbours of its
//          neighbours, never all neighbours of a hub: no more than sqrt(2 * links) a link, and on
//          real networks a few. Memory: that of one node. A node whose time is up at the first look
//          at the clock costs what Before_first_clock does, and an attempt never more than twice
//          its time.
// Tested   Clique_find_test.cpp, Clique_find_time_test.cpp with clocks that count, the runs against
//          the plain model.
#include "Clique_find/Undirected_finder.h"

#include <algorithm>
#include <cassert>

namespace cpm {

namespace {

constexpr std::size_t min_others = 2; // a clique has three nodes or more
constexpr std::size_t ahead = 4;      // neighbours of so many nodes are on their way from memory

} // namespace

Undirected_finder::Undirected_finder(Graph const& graph, Progress& progress)
    : graph_(graph), pace_(progress), place_(graph.size() + 1, 0) {
    assert(!graph.Directed());
}

void Undirected_finder::Clique_find_main_inv(Node node, Set_list& cliques) {
    Node_set const candidates = graph_.Later(node);
    if (candidates.size() < min_others) {
        return;
    }
    steps_ = 0;
    Outcome const outcome = Gather<true>(candidates, graph_.Earlier(node));
    pace_.Spend(steps_);
    if (outcome == Outcome::gathered) {
        local_.Find(&pace_);
        local_.Append_cliques(node, candidates, min_others, cliques);
    }
    Unmark(candidates);
}

void Undirected_finder::Find_within(Node node, Time_budget& budget, Set_list& found) {
    if (timed_ == nullptr) {
        timed_ = std::make_unique<Within_time>(graph_);
    }
    Clique_find_main_time_part(node, budget, found);
    if (!budget.Too_slow()) {
        timed_->done[node] = true;
        timed_->known.Add(found, 0);
    }
}

// A node whose cliques show after two steps needs no time: the clock is first read when a third
// step is due. What was found by then counts even when the time is up at this reading. The rows of
// bits come only after it: a hub whose time is up has no need of them, and they are large.
void Undirected_finder::Clique_find_main_time_part(Node node, Time_budget& budget,
                                                   Set_list& found) {
    Within_time& timed = *timed_;
    pace_.Go_on();
    Look_around(node);
    if (timed.known.One_holds_all(node, timed.candidates.Nodes())) {
        return;
    }
    bool const third_step =
        timed.before_clock.Reads_clock(node, timed.candidates, timed.excluded, pace_, found);
    if (!third_step || budget.Overrun()) {
        return;
    }
    // The cliques found so far are among all of them, in their places.
    std::swap(found, timed.before_first_look);
    found.clear();
    budget.Bound(pace_);
    bool const all_found = Find_all(node, found);
    Unmark(timed.candidates.Nodes());
    Unmark(timed.excluded.Nodes());
    if (all_found) {
        return;
    }
    budget.Overrun();
    std::swap(found, timed.before_first_look);
    timed.before_first_look = {}; // may be large
    local_.Forget();
    budget.Bound_listing(pace_);
    timed.walk.List({node, timed.candidates, timed.excluded}, timed.before_clock.Reached_at(),
                    found.size() + budget.Most_listed(), pace_, found);
}

// The cliques of a node that takes too long would fill the memory, only to be thrown away. When
// they need so much, the search goes on without keeping them; when there is time for that, it is
// done once more.
bool Undirected_finder::Find_all(Node node, Set_list& found) {
    Node_set const candidates = timed_->candidates.Nodes();
    if (Gather<false>(candidates, timed_->excluded.Nodes()) == Outcome::time_is_up) {
        return false;
    }
    if (!local_.Find(&pace_, max_bytes_of_an_attempt)) {
        bool const once_more = !pace_.Is_over() && !local_.All_kept();
        if (!once_more || !local_.Find(&pace_)) {
            return false;
        }
    }
    return local_.Append_cliques(node, candidates, min_others, found, &pace_);
}

// Tells the candidates and the excluded nodes among the neighbours. A done neighbour can only
// extend a clique that has two candidates when it is linked with these as well.
void Undirected_finder::Look_around(Node node) {
    timed_->candidates.clear();
    timed_->excluded.clear();
    graph_.For_each_neighbour_above(node, 0, [&](Node other) {
        if (!timed_->done[other]) {
            timed_->candidates.Add(other);
        } else if (graph_.Degree(other) > min_others) {
            timed_->excluded.Add(other);
        }
    });
}

void Undirected_finder::Mark(Node_set nodes, std::size_t first_place) {
    for (Node const node : nodes) {
        place_[node] = static_cast<std::uint32_t>(++first_place);
        graph_.Prefetch_place(node);
    }
}

void Undirected_finder::Unmark(Node_set nodes) {
    for (Node const node : nodes) {
        place_[node] = 0;
    }
}

// 1 + the places of those of the nodes that are marked.
std::span<std::uint32_t const> Undirected_finder::Marked(Node_set nodes) {
    marked_.resize(std::max(marked_.size(), nodes.size()));
    std::size_t n_marked = 0;
    for (Node const node : nodes) {
        // Written each time and kept if marked: which nodes are no branch could foresee.
        marked_[n_marked] = place_[node];
        n_marked += place_[node] != 0 ? 1U : 0U;
    }
    return {marked_.data(), n_marked};
}

// Sets up the links between the candidates and with the excluded nodes; leaves them marked. A link
// is found at that of its two ends which comes first in the order of the graph: where the excluded
// nodes are those that come before the candidates (`by_order`), at these alone. Then there is
// nothing to find when one of them is linked with all candidates, or no two candidates are linked.
template <bool by_order>
Undirected_finder::Outcome Undirected_finder::Gather(Node_set candidates, Node_set excluded) {
    std::size_t const n = candidates.size();
    auto const out_of_time = [this](std::size_t steps) {
        steps_ += by_order ? steps : 0; // looked at once for all
        return !by_order && pace_.Spend(steps);
    };
    if (!local_.Start(n, by_order ? nullptr : &pace_)) {
        return Outcome::time_is_up;
    }
    Mark(candidates, 0);
    if constexpr (by_order) {
        for (Node const node : excluded) {
            graph_.Prefetch_place(node);
        }
    }
    for (std::size_t e = 0; e < excluded.size(); ++e) {
        if (e + ahead < excluded.size()) {
            graph_.Prefetch_neighbours(excluded[e + ahead]);
        }
        Node_set const later = graph_.Later(excluded[e]);
        std::span<std::uint32_t const> const places = Marked(later);
        if (by_order && places.size() == n) {
            return Outcome::nothing_to_find;
        }
        if (!by_order || places.size() >= min_others) {
            local_.Add_excluded();
            for (std::uint32_t const place : places) {
                local_.Link_last_excluded(place - 1);
            }
        }
        if (out_of_time(later.size() + n / 64 + 1)) {
            return Outcome::time_is_up;
        }
    }
    if constexpr (!by_order) {
        Mark(excluded, n);
    }
    bool any = false;
    for (std::size_t i = 0; i < n; ++i) {
        if (i + ahead < n) {
            graph_.Prefetch_neighbours(candidates[i + ahead]);
        }
        Node_set const later = graph_.Later(candidates[i]);
        for (std::uint32_t const place : Marked(later)) {
            if (by_order || place <= n) {
                local_.Link(i, place - 1);
                any = true;
            } else {
                local_.Link_excluded(place - 1 - n, i);
            }
        }
        if (out_of_time(2 * later.size() + 1)) {
            return Outcome::time_is_up;
        }
    }
    if (!by_order && !local_.Drop_excluded(min_others, pace_)) {
        return Outcome::time_is_up;
    }
    return any || !by_order ? Outcome::gathered : Outcome::nothing_to_find;
}

} // namespace cpm
