// SPDX-License-Identifier: MIT
// Finder: finds the cliques of one node after the other. The undirected and the directed search
// are two of them; which node comes when is not theirs to say.
#ifndef PLEXOR_FINDER_H
#define PLEXOR_FINDER_H

#include "Clique_find/Time_budget.h"
#include "graph/Graph.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <memory>

namespace cpm {

/// Finds all cliques, however long it takes.
class Exact_finder {
public:
    Exact_finder() = default;
    Exact_finder(Exact_finder const&) = delete;
    Exact_finder& operator=(Exact_finder const&) = delete;
    virtual ~Exact_finder() = default;

    /// Appends the cliques of three nodes or more whose first node in the order of the graph is
    /// `node`, in the order in which they are to be listed.
    virtual void Find(Node node, Set_list& cliques) = 0;
};

/// Finds all cliques of a node, or those that it can within a time. What Find() appends depends on
/// the graph and the node alone: nodes can be shared out among finders, and come in any order.
class Finder : public Exact_finder {
public:
    /// Leaves in `found`, which is empty, the cliques of three nodes or more that hold `node` and
    /// no done node and that no node of the network extends, in the order in which they are to be
    /// listed. Then the node is done, unless the budget says that the time is up: in that case
    /// `found` has those that come first in this order; sets of just three nodes may then also be
    /// such that another node extends them. Find() knows nothing of nodes done here.
    virtual void Find_within(Node node, Time_budget& budget, Set_list& found) = 0;
};

/// The finder of the graph's kind. The graph and the progress must outlive it.
std::unique_ptr<Finder> Make_finder(Graph const& graph, Progress& progress);

} // namespace cpm

#endif
