// SPDX-License-Identifier: MIT
// Takes    the graph, a node, which nodes are done.
// Leaves   the node's surroundings.
// Order    places of candidates ascend with their indices.
// Cost     the later neighbours of each neighbour are walked, never all neighbours of a hub: over
//          all nodes no more than sqrt(2 * links) a link, and on real networks a few.
// Tested   Clique_find_dir_test.cpp
#include "Clique_find/Dir_surroundings.h"

#include "Clique_find/Cycles.h"

#include <algorithm>
#include <cassert>

namespace cpm {

Dir_surroundings::Dir_surroundings(Graph const& graph, Known_cliques const& known)
    : graph_(graph), known_(known), place_(graph.size() + 1, 0) {
    assert(graph.Directed());
}

void Dir_surroundings::Done(Node node) {
    done_.resize(graph_.size() + 1, false);
    done_[node] = true;
}

void Dir_surroundings::Forget() {
    if (marked_) {
        for (Node const name : names_) {
            place_[name] = 0;
        }
        marked_ = false;
    }
    names_.clear();
    arcs_.clear();
    excluded_names_.clear();
    excluded_arcs_.clear();
}

bool Dir_surroundings::Look_around(Node node) {
    Forget();
    graph_.For_each_arc(node, [this](Node neighbour, Arcs arcs) {
        bool const is_done = !done_.empty() && done_[neighbour];
        (is_done ? excluded_names_ : names_).push_back(neighbour);
        (is_done ? excluded_arcs_ : arcs_).push_back(arcs);
    });
    return Look_at(node);
}

bool Dir_surroundings::Look_around_by_order(Node node) {
    Forget();
    names_.Append(graph_.Later(node));
    arcs_.Append(graph_.Later_arcs(node));
    excluded_names_.Append(graph_.Earlier(node));
    excluded_arcs_.Append(graph_.Earlier_arcs(node));
    return Look_at(node);
}

bool Dir_surroundings::Look_at(Node node) {
    centre_ = N_places();
    if (centre_ < 2 || known_.One_holds_all(node, {names_.data(), centre_})) {
        return false;
    }
    names_.push_back(node);
    arcs_.push_back(0);
    names_.Append(excluded_names_);
    arcs_.Append(excluded_arcs_);
    for (Place i = 0; i < N_places(); ++i) {
        place_[names_[i]] = i == centre_ ? 0 : i + 1;
    }
    marked_ = true;
    return true;
}

// Walks the shorter side: the node's neighbours, or those of the centre.
std::size_t Dir_surroundings::List_neighbours(Place candidate,
                                              std::vector<Local_neighbour>& neighbours) {
    assert(marked_ && candidate < centre_);
    constexpr std::size_t steps_of_a_search = 16;
    neighbours.clear();
    Node const node = names_[candidate];
    std::size_t const degree = graph_.Degree(node);
    if (degree / steps_of_a_search > names_.size()) {
        for (Place other = 0; other < names_.size(); ++other) {
            Arcs const arcs = other == centre_ ? Arcs{0} : graph_.Arcs_between(node, names_[other]);
            if (arcs != 0) {
                neighbours.push_back({other, arcs});
            }
        }
        return steps_of_a_search * names_.size();
    }
    excluded_neighbours_.clear();
    graph_.For_each_arc(node, [&](Node neighbour, Arcs arcs) {
        if (place_[neighbour] != 0) {
            Place const place = place_[neighbour] - 1;
            (place < centre_ ? neighbours : excluded_neighbours_).push_back({place, arcs});
        }
    });
    neighbours.insert(neighbours.end(), excluded_neighbours_.begin(), excluded_neighbours_.end());
    return 2 * degree;
}

bool Dir_surroundings::Gather_links(Pace& pace) {
    bool const in_time = Walk_links(pace);
    for (Node const name : names_) {
        place_[name] = 0;
    }
    marked_ = false;
    if (!in_time) {
        return false;
    }
    Leave_out_idle_nodes();
    one_way_ =
        std::any_of(arcs_.begin(), arcs_.begin() + centre_,
                    [](Arcs arcs) { return arcs != Arc_both; }) ||
        std::ranges::any_of(links_, [](Local_link const& link) { return link.arcs != Arc_both; });
    return centre_ > 0;
}

// A link stands with that of its two ends which comes first in the order of the nodes. Nodes are
// not done in just this order when there is a time limit, so either end may be the candidate.
bool Dir_surroundings::Walk_links(Pace& pace) {
    links_.clear();
    excluded_links_.clear();
    for (Place i = 0; i < N_places(); ++i) {
        if (i == centre_) {
            continue;
        }
        Node_set const later = graph_.Later(names_[i]);
        std::span<Arcs const> const arcs = graph_.Later_arcs(names_[i]);
        for (std::size_t k = 0; k < later.size(); ++k) {
            if (place_[later[k]] == 0) {
                continue;
            }
            Place const other = place_[later[k]] - 1;
            if (i < centre_ && other < centre_) {
                links_.push_back({i, other, arcs[k]});
            } else if (i < centre_) {
                excluded_links_.push_back({i, other, arcs[k]});
            } else if (other < centre_) {
                excluded_links_.push_back({other, i, Reversed(arcs[k])});
            }
        }
        if (pace.Spend(2 * later.size() + 1)) {
            return false;
        }
    }
    auto const excluded_first = [](Local_link const& a, Local_link const& b) {
        return a.other < b.other;
    };
    return std::ranges::is_sorted(excluded_links_, excluded_first) ||
           Sort_within(excluded_links_.begin(), excluded_links_.end(), excluded_first, &pace);
}

void Dir_surroundings::Leave_out_idle_nodes() {
    kept_.clear();
    kept_.Resize(names_.size(), 0); // first how many links count for a node
    kept_[centre_] = 1;
    for (Local_link const& link : links_) {
        ++kept_[link.candidate];
        ++kept_[link.other];
    }
    for (Local_link const& link : excluded_links_) {
        if (kept_[link.candidate] > 0) {
            ++kept_[link.other];
        }
    }
    Place n_kept = 0;
    Place new_centre = 0;
    for (Place i = 0; i < N_places(); ++i) {
        if (i == centre_) {
            new_centre = n_kept;
        }
        if (kept_[i] < (i <= centre_ ? 1U : 2U)) {
            kept_[i] = 0;
            continue;
        }
        names_[n_kept] = names_[i];
        arcs_[n_kept] = arcs_[i];
        kept_[i] = ++n_kept;
    }
    centre_ = new_centre;
    if (n_kept < names_.size()) {
        names_.Resize_uninitialised(n_kept);
        arcs_.Resize_uninitialised(n_kept);
        Renumber(links_);
        Renumber(excluded_links_);
    }
}

void Dir_surroundings::Renumber(Flat_array<Local_link>& links) const {
    std::size_t n_kept = 0;
    for (Local_link const& link : links) {
        if (kept_[link.candidate] != 0 && kept_[link.other] != 0) {
            links[n_kept++] = {kept_[link.candidate] - 1, kept_[link.other] - 1, link.arcs};
        }
    }
    links.Resize_uninitialised(n_kept);
}

// A cycle here may run through several excluded nodes.
bool Dir_surroundings::May_have_cycles() const {
    if (!one_way_) {
        return false; // a cycle with one excluded node has a link within the others
    }
    std::vector<One_way_link> one_way;
    auto const add = [&one_way](Place a, Place b, Arcs seen_from_a) {
        if (seen_from_a == Arc_to) {
            one_way.push_back({a, b});
        } else if (seen_from_a == Arc_from) {
            one_way.push_back({b, a});
        }
    };
    for (Place i = 0; i < N_places(); ++i) {
        add(centre_, i, arcs_[i]);
    }
    for (auto const links : {Links(), Excluded_links()}) {
        for (Local_link const& link : links) {
            add(link.candidate, link.other, link.arcs);
        }
    }
    return Has_cycle(one_way, N_places());
}

} // namespace cpm
