// SPDX-License-Identifier: MIT
// The maximal cliques of a graph.
#ifndef PLEXOR_API_CLIQUES_H
#define PLEXOR_API_CLIQUES_H

#include <plexor/Graph.h>
#include <plexor/Progress.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>

namespace plexor {

struct Search_options {
    /// Seconds for each attempt at the cliques of one node. Nodes that take longer are given up in
    /// the end, and their cliques approximated by the nodes' neighbourhoods among those given up.
    std::optional<double> time_limit = std::nullopt;
    /// What measures it; null for the processor time of the calling thread.
    Clock* clock = nullptr;
    /// Whom to tell; null for nobody.
    Progress* progress = nullptr;
    /// How many threads search; 0 for one a processor. The cliques and their order are the same
    /// whatever the number. A search with a time limit has one, the calling thread.
    unsigned threads = 1;
};

namespace detail {
struct Clique_data;
}

/// All maximal cliques of three nodes or more: sets of nodes, two by two linked, that no other node
/// extends; in a directed graph, sets that can be put in a line such that every node has a link to
/// every later one. A value that never changes; copies share it, and several threads may read it.
class PLEXOR_API Cliques {
public:
    std::size_t size() const;
    /// The nodes of a clique. Its position is its number, the one that `plexor` writes.
    Nodes operator[](std::size_t number) const;
    /// The first so many are exact, the others approximated: without a time limit, all of them.
    std::size_t Number_of_exact() const;
    /// The number of nodes of the largest clique; 0 where there is none.
    std::uint32_t Largest() const;

    /// The nodes of all cliques, one after the other, and where each begins among them: one entry
    /// more than there are cliques.
    std::span<Node const> Members() const;
    std::span<std::uint64_t const> Offsets() const;

    /// For the library itself.
    std::shared_ptr<detail::Clique_data const> const& Data() const { return data_; }

private:
    friend PLEXOR_API Cliques Find_cliques(Graph const& graph, Search_options const& options);
    explicit Cliques(std::shared_ptr<detail::Clique_data const> data);

    std::shared_ptr<detail::Clique_data const> data_;
};

/// Searches the whole graph. The cliques come in the order in which `plexor` lists them.
/// Throws Error: bad_argument (a time limit that is not above 0), too_large (2^32 cliques);
/// Cancelled; std::system_error when the system has no thread to give.
PLEXOR_API Cliques Find_cliques(Graph const& graph, Search_options const& options = {});

/// Calls visit(clique), on the calling thread, for each clique that Find_cliques() would list, in
/// the same order, until it returns false. Returns whether it never did. The order is that of the
/// start nodes, fewest neighbours first and at equal numbers by index: at each of them the cliques
/// without a node before it, in an undirected graph lexicographically. The list is never kept, and
/// may have any length: in memory are the cliques of one start node at a time, with several threads
/// also some that were found ahead (64 MB a thread, 1 GB at most, and what was being found when
/// these were full).
/// What the visitor throws ends the search and arrives at the caller.
/// Throws Error: bad_argument (a time limit: which cliques there are in the end depends on what is
/// approximated last, so they cannot be handed out before); Cancelled; std::system_error when the
/// system has no thread to give.
PLEXOR_API bool For_each_clique(Graph const& graph, std::function<bool(Nodes clique)> const& visit,
                                Search_options const& options = {});

} // namespace plexor

#endif
