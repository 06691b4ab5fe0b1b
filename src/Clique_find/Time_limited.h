// SPDX-License-Identifier: MIT
// The queue of the time-limited clique searches, undirected and directed alike: which node is tried
// when, what becomes of the sets found at a node that took too long, and when the search gives up.
// How the cliques of one node are found is the caller's.
#ifndef PLEXOR_TIME_LIMITED_H
#define PLEXOR_TIME_LIMITED_H

#include "Clique_find/Clock.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <vector>

namespace cpm::Clique_find_time_sub_routines {

/// The time that one attempt at a node may take, from the making of the budget on.
class Time_budget {
public:
    /// Reads the clock.
    Time_budget(Clock& clock, double max_time)
        : clock_(clock), max_time_(max_time), t_start_((clock.Start(), clock.Now())) {}
    /// Reads the clock, unless the time is known to be up. True when more than the time is gone.
    bool Overrun() {
        too_slow_ = too_slow_ || clock_.Now() - t_start_ > max_time_;
        return too_slow_;
    }
    /// Whether the time was up at some reading.
    bool Too_slow() const { return too_slow_; }

private:
    Clock& clock_;
    double max_time_;
    double t_start_;
    bool too_slow_ = false;
};

/// Finds the cliques of one node among the nodes that are not done.
class Node_finder {
public:
    Node_finder() = default;
    Node_finder(Node_finder const&) = delete;
    Node_finder& operator=(Node_finder const&) = delete;
    virtual ~Node_finder() = default;

    /// Leaves in `found`, which is empty, the cliques of three nodes or more that hold `node` and
    /// no done node and that no node of the network extends, in the order in which they are to be
    /// listed. When the budget says that the time is up it stops, with some of them found, in any
    /// order; sets of just three nodes may then also be such that another node extends them.
    virtual void Find(Node node, Time_budget& budget, Set_list& found) = 0;
    /// The node was found within its time.
    virtual void Done(Node node) = 0;
};

/// Searches the nodes 1 to order.size(), in this order. A node that takes more than `max_time`
/// seconds goes to the end of the queue; when all nodes in the queue have done so in a row, the
/// search ends. Leaves the cliques found, then the sets found at nodes given up that lie in no
/// clique before them, ascending; and in `core` the nodes not done, ascending. The beginning of
/// the search has been told already.
void Search_in_time(Set_list& cliques, std::vector<Node> const& order, Node_finder& finder,
                    double max_time, Clock& clock, std::vector<Node>& core, Progress& progress);

} // namespace cpm::Clique_find_time_sub_routines

#endif
