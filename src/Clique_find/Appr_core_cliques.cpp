// SPDX-License-Identifier: MIT
// Approximated cliques.
//
// Takes    the core, the exact cliques.
// Leaves   the clique list with the approximated cliques after the exact ones.
// Order    that of the core's nodes; exact cliques stay in theirs.
// Cost     each set is compared with the sets at its rarest node; a neighbourhood not with those of
//          its own members, of which there are many where a core is dense. Memory: one number a
//          clique member for the time of the comparison.
// Tested   Appr_core_cliques_test.cpp
#include "Clique_find/Appr_core_cliques.h"

#include "Clique_find/Superset_index.h"

#include <algorithm>

namespace cpm {

namespace {

// A flag for each node: whether it is in some set of the list.
std::vector<bool> Nodes_in(Set_list const& sets) {
    std::vector<bool> in(1, false);
    for (Node const node : sets.Flat()) {
        if (node >= in.size()) {
            in.resize(std::size_t{node} + 1, false);
        }
        in[node] = true;
    }
    return in;
}

} // namespace

Core Core_of_nodes(std::vector<Node> const& nodes, Graph const& graph) {
    Core core;
    core.nodes = nodes;
    std::vector<bool> inside(graph.size() + 1, false);
    for (Node const node : nodes) {
        inside[node] = true;
    }
    for (Node const node : nodes) {
        graph.For_each_neighbour_above(node, 0, [&](Node neighbour) {
            if (inside[neighbour]) {
                core.neighs.Append(neighbour);
            }
        });
        core.neighs.Close_list();
    }
    return core;
}

// The rule speaks of candidates accepted one by one: a neighbourhood is refused when an accepted
// one or an exact clique holds it; accepted ones that a later accepted one holds are removed at the
// end.
//
// Invariant: what stays are the neighbourhoods that lie in no exact clique, in no larger
//            neighbourhood, and in no equal earlier one.
// Relies on: a neighbourhood that was refused lies in an accepted one or in an exact clique, and so
//            does all that lies in it.
// Buys:      every neighbourhood can be judged by itself.   Pinned by: Appr_core_cliques_test
void Appr_core_cliques(Core const& core, Set_list const& exact, Set_list& approx) {
    Set_list const& candidates = core.neighs;
    std::vector<bool> const asked = Nodes_in(candidates);
    Superset_index const in_candidates(candidates);
    Superset_index const in_exact(exact, &asked);
    Set_list kept;
    std::vector<std::uint32_t> near(asked.size(), 0); // node -> 1 + its last neighbour looked at
    for (std::uint32_t i = 0; i < candidates.size(); ++i) {
        Node_set const candidate = candidates[i];
        for (Node const node : candidate) {
            near[node] = i + 1;
        }
        auto const comes_first = [&](std::uint32_t other) {
            return candidates[other].size() > candidate.size() || other < i;
        };
        // A neighbour is in this neighbourhood and not in its own, which so does not hold this one.
        bool const covered =
            candidate.empty()
                ? in_candidates.Any_superset(candidate, comes_first)
                : in_candidates.Any_superset_among(candidate, [&](std::uint32_t other) {
                      Node const node = core.nodes[other];
                      return comes_first(other) && (node >= near.size() || near[node] != i + 1);
                  });
        if (!covered && !in_exact.Any_superset(candidate)) {
            kept.Add(candidate);
        }
    }
    approx = std::move(kept);
}

// Which exact cliques lie in an approximated one need not be asked of many of an undirected search.
//
// Invariant: an undirected clique of four nodes or more lies in no neighbourhood.
// Relies on: a node is not in its own neighbourhood, and linked with all that is. So it would
//            extend the clique; and of the sets listed a node extends only some of three nodes,
//            which the time left unfinished (see Node_finder).
// Buys:      millions of large cliques are not compared with all the neighbourhoods that hold most
//            of a dense core.   Pinned by: Find_cliques_test, the runs against the plain model
bool Extend_clique_vec(Set_list& cliques, std::size_t& n_exact, Set_list& approx, bool directed) {
    Set_list kept;
    if (!approx.empty()) {
        std::vector<bool> const asked = Nodes_in(approx);
        Superset_index const in_cliques(cliques, &asked);
        for (std::size_t i = 0; i < approx.size(); ++i) {
            if (!in_cliques.Any_superset(approx[i])) {
                kept.Add(approx[i]);
            }
        }
    }
    approx = std::move(kept);

    Superset_index const in_approx(approx);
    std::vector<bool> keep(cliques.size());
    for (std::size_t i = 0; i < cliques.size(); ++i) {
        bool const may_lie_inside = directed || cliques[i].size() <= 3;
        keep[i] = !may_lie_inside || !in_approx.Any_superset(cliques[i]);
    }
    bool const dropped = std::ranges::find(keep, false) != keep.end();
    if (dropped) {
        Set_list exact;
        for (std::size_t i = 0; i < cliques.size(); ++i) {
            if (keep[i]) {
                exact.Add(cliques[i]);
            }
        }
        cliques = std::move(exact);
    }
    n_exact = cliques.size();
    for (std::size_t i = 0; i < approx.size(); ++i) {
        cliques.Add(approx[i]);
    }
    return dropped;
}

std::uint32_t Max_clique_size_in_cl_vec(Set_list const& cliques) {
    std::size_t largest = 0;
    for (std::size_t i = 0; i < cliques.size(); ++i) {
        largest = std::max(largest, cliques[i].size());
    }
    return static_cast<std::uint32_t>(largest);
}

} // namespace cpm
