// SPDX-License-Identifier: MIT
// The queue of the time-limited clique searches, undirected and directed alike: which node is tried
// when, what becomes of the sets found at a node that took too long, and when the search gives up.
// How the cliques of one node are found is the caller's.
#ifndef PLEXOR_TIME_LIMITED_H
#define PLEXOR_TIME_LIMITED_H

#include "Clique_find/Clique_limit.h"
#include "Clique_find/Clock.h"
#include "Clique_find/Time_budget.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <cstdint>
#include <vector>

namespace cpm::Clique_find_time_sub_routines {

/// What the sets kept of all attempts that have overrun may take: their members, and what tells
/// them apart. When it is full, attempts end as if their time had been up. Only sets of three nodes
/// are always kept: up to the first look at the clock nothing else is found.
constexpr std::size_t most_bytes_pending = std::size_t{1} << 29;

/// The sets found at nodes that took too long, each once.
class Pending_sets {
public:
    explicit Pending_sets(std::size_t n_nodes, std::size_t most_bytes = most_bytes_pending)
        : done_(n_nodes + 1, false), most_bytes_(most_bytes) {}

    /// Takes the sets from the first on, as many as there is room for.
    void Add(Set_list const& found);
    /// All cliques with the node are known: sets with it need not be kept.
    void Done(Node node) {
        done_[node] = true;
        ++n_done_;
    }
    /// Drops the sets that hold a done node, and gives back all but the sets.
    void Finish();

    Set_list const& Sets() const { return sets_; }
    std::size_t Bytes() const { return sets_.Total() * sizeof(Node) + sets_.size() * bytes_a_set; }

private:
    // Its end, its hash, and up to four slots.
    static constexpr std::size_t bytes_a_set =
        2 * sizeof(std::uint64_t) + 4 * sizeof(std::uint32_t);

    bool Has_room(Node_set set);
    void Add(Node_set set);
    void Drop_done();
    void Fill_slots(std::size_t n_slots);
    static std::uint64_t Hash(Node_set set);

    Set_list sets_;
    Flat_array<std::uint64_t> hashes_;   ///< one a set
    Flat_array<std::uint32_t> slots_{2}; ///< 1 + a set's number, or 0; no more than half full
    std::vector<bool> done_;
    std::size_t n_done_ = 0;
    std::size_t n_dropped_for_room_ = 0; ///< n_done_ when sets were dropped to make room
    std::size_t most_bytes_;
    std::size_t bytes_to_drop_at_ = std::size_t{1}
                                    << 24; ///< when sets of done nodes are looked for
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
    /// listed. When the budget says that the time is up, `found` has those that come first in
    /// this order; sets of just three nodes may then also be such that another node extends them.
    virtual void Find(Node node, Time_budget& budget, Set_list& found) = 0;
    /// The node was found within its time, and its cliques are listed.
    virtual void Done(Node node) = 0;
};

/// Searches the nodes 1 to order.size(), in this order. A node that takes more than `max_time`
/// seconds goes to the end of the queue; when all nodes in the queue have done so in a row, the
/// search ends. Leaves the cliques found, then the sets found at nodes given up that lie in no
/// clique before them, ascending; and in `core` the nodes not done, ascending. The beginning of
/// the search has been told already. Throws Too_large at more than `max_cliques` cliques.
void Search_in_time(Set_list& cliques, std::vector<Node> const& order, Node_finder& finder,
                    double max_time, Clock& clock, std::vector<Node>& core, Progress& progress,
                    std::size_t max_cliques = max_n_cliques);

} // namespace cpm::Clique_find_time_sub_routines

#endif
