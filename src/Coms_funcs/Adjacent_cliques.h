// SPDX-License-Identifier: MIT
// Adjacent_cliques: answers, for one clique at a time, which cliques not yet visited share enough
// nodes with it. It is what percolation uses of the clique overlap matrix, which is never stored:
// that grows with the square of the cliques of a node.
//
// The nodes of each clique are ranked, rarest first (a node is rare when few cliques hold it). Two
// cliques A and B that share t nodes or more share one among the first |A|-t+1 of A and the first
// |B|-t+1 of B: the rarest shared node has t-1 others behind it in both. So it is enough to keep,
// for each node, the cliques that hold it that early, and hubs drop out of the work. Going to a
// smaller t each clique's part grows by the next node: lists only grow from level to level.
//
// A list is walked signature by signature (see Signatures.h) or, when it is long and asked often,
// in slices (see Bit_slice_cache.h).
#ifndef PLEXOR_ADJACENT_CLIQUES_H
#define PLEXOR_ADJACENT_CLIQUES_H

#include "Coms_funcs/Bit_slices.h"
#include "Coms_funcs/Signatures.h"
#include "graph/Types.h"

#include <array>
#include <vector>

namespace cpm {

/// A clique that another one has led to.
struct Adjacent_clique {
    Clique_number clique = 0;
    /// Which nodes of the clique the other one does not hold: bit i stands for the i-th rarest.
    /// All bits set when the clique has more nodes than bits, or nothing is known; no bit set when
    /// it is that clique itself.
    std::uint64_t new_nodes = 0;
};

namespace Adjacent_cliques_sub {

/// A bit for each node of a set; several nodes may share one.
using Wide_signature = std::array<std::uint64_t, 3>;

/// What is known of a clique without its nodes; half a cache line.
struct Clique_header {
    Wide_signature signature{};
    std::uint64_t begin = 0; ///< its first node among those of all cliques, one after the other
};

/// An unvisited clique worth a close look.
struct Candidate {
    Clique_number clique = 0;
    std::uint32_t n = 0; ///< met in the list of the n-th rarest node of the clique that asks
};

} // namespace Adjacent_cliques_sub

class Adjacent_cliques {
public:
    static constexpr std::uint64_t all_new = ~std::uint64_t{0};

    /// The cliques must outlive the index.
    Adjacent_cliques(Set_list const& cliques, Node n_nodes);

    /// Starts a level: no clique is visited, cliques of fewer than `min_size` nodes are out of
    /// play, and the others are adjacent when they share at least `min_shared` nodes (1 or more,
    /// and at most `min_size`). Both going down from level to level is what the index is made
    /// for; any other order costs a new index.
    void Start_level(std::uint32_t min_shared, std::uint32_t min_size);

    /// Cliques out of play count as visited.
    bool Is_visited(Clique_number clique) const {
        return (visited_[clique / 64] >> (clique % 64) & 1) != 0;
    }
    /// The first clique from this one on that is not visited, or the number of cliques.
    std::size_t Next_unvisited(std::size_t from) const;
    /// Visits every unvisited adjacent clique of `from` and appends it to `adjacent`, in ascending
    /// order. A clique in play shares its own nodes with itself: when unvisited it is its own
    /// adjacent clique. `from.new_nodes` must hold a node of each unvisited adjacent clique
    /// (all_new always does).
    void Visit_adjacent(Adjacent_clique const& from, Flat_array<Adjacent_clique>& adjacent);

    /// Fetches the memory that asking for this clique's adjacent begins with; in two steps, the
    /// first for a clique that is asked for later than that of the second.
    void Prefetch_header(Clique_number clique) const { __builtin_prefetch(&headers_[clique]); }
    void Prefetch_nodes(Clique_number clique) const { __builtin_prefetch(Ranked(clique).data()); }

    Node Number_of_nodes() const { return static_cast<Node>(mark_.size() - 1); }
    /// The clique's nodes, rarest first.
    std::span<Node const> Ranked(Clique_number clique) const {
        return {ranked_.data() + headers_[clique].begin,
                ranked_.data() + headers_[clique + 1].begin};
    }

private:
    // What one clique asks of the lists of its nodes.
    struct Query {
        std::span<Node const> nodes;    ///< its own, rarest first
        std::size_t n_lists = 0;        ///< a adjacent clique is in the list of one of so many
        std::vector<Node> needed_nodes; ///< a adjacent clique has one of these
        Signature_query signature;
        std::vector<Node_bucket>
            classes;                     ///< of its nodes; empty as long as no sliced list is asked
        std::vector<Node_bucket> needed; ///< of the needed nodes, likewise
    };

    void Rank_nodes();
    void Sort_by_size();
    void Bucket_nodes();
    void Translate(std::span<Node const> nodes, std::vector<Node_bucket>& classes) const;
    void Activate(Clique_number clique);
    void List_clique(Clique_number clique, std::uint32_t from, std::uint32_t to);
    void Scan_list(std::size_t n);
    void Scan_signatures(std::size_t n);
    void Scan_slices(Bit_slices& list, std::size_t n);
    Bit_slices* Slice(Node node);
    bool Prepare_query(Adjacent_clique const& from);
    void Visit(Clique_number clique);
    void Visit_if_adjacent(Adjacent_cliques_sub::Candidate const& candidate,
                           Flat_array<Adjacent_clique>& adjacent);
    void Drop(Node node, std::uint32_t place);
    void Drop_visited(Node node);

    // What is known of a node at this level, in one place: where the next count is, the
    // one before has brought its cache line.
    struct Node_state {
        std::uint64_t begin = 0;        ///< of its list in signatures_ and listed_
        std::uint32_t active = 0;       ///< length of its list
        std::uint32_t live = 0;         ///< length without visited ones moved back
        std::uint32_t unvisited = 0;    ///< how many of these are not visited
        std::uint32_t holding = 0;      ///< cliques in play that hold it
        std::uint32_t holding_live = 0; ///< ... that are not visited
        std::uint8_t asked = 0;         ///< how often its list was walked, up to a limit
    };

    Set_list const& cliques_;
    Signature_scan scan_ = Fastest_scan();
    Flat_array<Node> ranked_;
    Flat_array<Adjacent_cliques_sub::Clique_header> headers_; ///< one more than cliques
    Flat_array<Node_state> states_;                           ///< by node
    Flat_array<Node> active_nodes_;                           ///< nodes of the cliques in play
    Flat_array<Signature> signatures_;
    Flat_array<Clique_number> listed_;
    Flat_array<Node_bucket> bucket_; ///< node -> its class in sliced lists; empty before the first
    Bit_slice_cache sliced_;
    Flat_array<Clique_number> by_size_;  ///< the largest first, ascending among equals
    std::size_t n_active_ = 0;           ///< so many of these
    Flat_array<std::uint64_t> inactive_; ///< a bit a clique; set behind the last one
    Flat_array<std::uint64_t> visited_;  ///< likewise
    Flat_array<std::uint8_t>
        mark_;    ///< node -> 1 + its place in the clique that asks, at most 255, or 0
    Query query_; ///< what is asked at the moment
    std::vector<std::uint32_t> hits_; ///< places in a list worth a second look
    std::vector<Adjacent_cliques_sub::Candidate> candidates_;
    std::uint32_t min_shared_ = 0; ///< 0: no level started
    std::uint32_t min_size_ = 0;
};

} // namespace cpm

#endif
