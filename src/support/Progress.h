// SPDX-License-Identifier: MIT
// Progress: what a long computation tells those who wait for it. Computing code calls it and knows
// nothing of what becomes of the calls; each does nothing unless it is overridden.
#ifndef PLEXOR_PROGRESS_H
#define PLEXOR_PROGRESS_H

#include <cstdint>
#include <optional>

namespace cpm {

/// What Tick() throws to cancel. Not a std::exception, so that no handler on the way to the caller
/// mistakes it for an error.
struct Cancelled {};

class Progress {
public:
    Progress() = default;
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    virtual ~Progress() = default;

    /// Called at least every 20 ms of work from every long loop, on the calling thread. May throw
    /// to cancel: then no result of the computation is complete.
    virtual void Tick() {}

    // --- A clique search: began, for each attempt at a node Node_started(), done. ---

    struct Clique_search {
        bool directed = false;
        std::optional<double> max_time; ///< seconds a node
    };
    virtual void Search_began(Clique_search const&) {}
    /// The order of the nodes is known. Only the undirected search without a limit tells.
    virtual void Nodes_sorted() {}
    /// A node comes next. `to_do` nodes are not done yet, this one included, of `total`.
    virtual void Node_started(std::uint32_t /*to_do*/, std::uint32_t /*total*/) {}
    /// The node started last has overrun. `waiting` nodes are not done yet, this one included.
    virtual void Node_overran(std::uint32_t /*node*/, std::uint32_t /*skipped_in_row*/,
                              std::uint32_t /*waiting*/) {}
    /// All nodes that are left have overrun in a row.
    virtual void Remaining_nodes_too_hard() {}
    /// So many cliques are listed; `complete` unless nodes are left.
    virtual void Search_done(std::uint32_t /*n_cliques*/, bool /*complete*/) {}

    // --- What stands in for the cliques of the nodes left. ---

    virtual void Approximation_began() {}
    virtual void Approximation_done(std::uint64_t /*n_exact*/, std::uint64_t /*n_approximated*/) {}

    // --- The communities of one k, from the cliques. ---

    /// `largest` is the size of the largest clique, where the levels begin.
    virtual void Level_began(std::uint32_t /*k*/, std::uint32_t /*largest*/) {}
    virtual void Level_found() {}

    // --- k-cliques above an intensity: first found in the cliques, then joined to communities. ---

    virtual void K_clique_search_began(std::uint32_t /*k*/, double /*intensity*/) {}
    /// A clique of k nodes or more comes next. `to_do` of `total` cliques are left, this included.
    virtual void K_clique_search_at(std::uint32_t /*to_do*/, std::uint32_t /*total*/) {}
    virtual void K_clique_search_done(std::uint32_t /*n_k_cliques*/) {}
    virtual void K_cliques_joining_began(std::uint32_t /*k*/, double /*intensity*/) {}
    /// A k-clique comes next. `to_do` of `total` k-cliques are left, this included.
    virtual void K_cliques_joining_at(std::uint32_t /*to_do*/, std::uint32_t /*total*/) {}
};

} // namespace cpm

#endif
