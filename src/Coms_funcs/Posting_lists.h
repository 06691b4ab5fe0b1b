// SPDX-License-Identifier: MIT
// Posting_lists: for each node the cliques that hold it among their rarest nodes, as far as a level
// needs them. This is prefix filtering, as in set similarity joins: two cliques A and B that share
// t nodes or more share one among the first |A|-t+1 of A and the first |B|-t+1 of B, since their
// rarest shared node has t-1 others after it in both. So hubs drop out of the work. Going to a
// smaller t each clique's prefix grows by the next node: lists only grow from level to level.
//
// A list is scanned signature by signature (see Signatures.h) or, when it is long and scanned
// often, in bit slices (see Bit_slices.h). Very long lists are sliced so soon that signatures of
// their own, twice the memory of all else that is listed, would hardly be read: until then they are
// scanned by the headers of their cliques.
#ifndef PLEXOR_POSTING_LISTS_H
#define PLEXOR_POSTING_LISTS_H

#include "Coms_funcs/Bit_slices.h"
#include "Coms_funcs/Ranked_cliques.h"
#include "Coms_funcs/Signatures.h"
#include "Coms_funcs/Visited_cliques.h"

#include <vector>

namespace cpm {

/// What one clique asks of the lists of its nodes.
struct Adjacency_query {
    std::span<Node const> nodes;    ///< its own, rarest first
    std::size_t n_lists = 0;        ///< an adjacent clique is in the list of one of so many
    std::vector<Node> needed_nodes; ///< an adjacent clique has one of these
    Signature_query signature;
    std::vector<Node_bucket> buckets; ///< of its nodes; empty as long as no slices are scanned
    std::vector<Node_bucket> needed;  ///< of the needed nodes, likewise
};

/// An unvisited clique worth a close look.
struct Candidate {
    Clique_number clique = 0;
    std::uint32_t n = 0; ///< met in the list of the n-th rarest node of the clique that asks
};

class Posting_lists {
public:
    /// Lists of nodes in so many cliques do without signatures.
    static constexpr std::uint32_t very_long = std::uint32_t{1} << 15;

    /// Both must outlive this. All lists are empty.
    Posting_lists(Ranked_cliques const& cliques, Visited_cliques const& visited,
                  std::uint32_t min_very_long = very_long);

    /// Empties all lists; no clique is active.
    void Clear();
    /// Counts the clique for its nodes from the next level on.
    void Activate(Clique_number clique);
    /// Lists a clique under those of its nodes that its prefix gains when the least overlap falls
    /// from `to` to `from`.
    void List(Clique_number clique, std::uint32_t from, std::uint32_t to);

    /// Starts a level: nothing that is listed is visited.
    void Start_level(std::uint32_t min_shared);
    /// A clique not visited before is visited now.
    void Visit(Clique_number clique);
    /// Whether an active clique that is not visited holds the node, listed or not.
    bool In_unvisited(Node node) const { return states_[node].n_unvisited_cliques > 0; }
    /// Appends to `candidates` the unvisited cliques in the list of the query's n-th rarest node
    /// that the signatures or slices do not rule out, in no order.
    void Scan(std::size_t n, Adjacency_query& query, std::vector<Candidate>& candidates) {
        if (states_[query.nodes[n]].n_unvisited > 0) {
            Scan_list(n, query, candidates);
        }
    }

private:
    // What is known of a node at this level, in one place: the cache line of the next count
    // has come with the one before.
    //
    // Invariant: of a list the entries from unvisited_end to list_size are visited; among those
    //            before n_unvisited are not.
    struct Node_state {
        std::uint64_t begin = 0;               ///< of its list in listed_ and in signatures_
        std::uint32_t list_size = 0;           ///< entries of its list
        std::uint32_t unvisited_end = 0;       ///< entries without visited ones moved back
        std::uint32_t n_unvisited = 0;         ///< how many of these are not visited
        std::uint32_t n_active_cliques = 0;    ///< active cliques that hold it
        std::uint32_t n_unvisited_cliques = 0; ///< ... that are not visited
        std::uint8_t n_scans = 0;              ///< of its list, up to a limit
    };

    void Scan_list(std::size_t n, Adjacency_query& query, std::vector<Candidate>& candidates);
    std::uint64_t Lay_out(std::uint32_t min_very_long);
    bool Has_signatures(Node_state const& state) const { return state.begin < signatures_.size(); }
    void Scan_signatures(std::size_t n, Adjacency_query const& query,
                         std::vector<Candidate>& candidates);
    void Scan_headers(std::size_t n, Adjacency_query const& query,
                      std::vector<Candidate>& candidates);
    void Scan_slices(Bit_slices& slices, std::size_t n, Adjacency_query& query,
                     std::vector<Candidate>& candidates);
    void Bucket_nodes();
    void Translate(std::span<Node const> nodes, std::vector<Node_bucket>& buckets) const;
    Bit_slices* Slice(Node node);
    void Move_back(Node_state& state, std::uint32_t place);
    void Move_visited_back(Node_state& state);

    Ranked_cliques const& cliques_;
    Visited_cliques const& visited_;
    Signature_scan scan_ = Fastest_scan();
    std::uint32_t min_shared_ = 0;
    Flat_array<Node_state> states_;    ///< by node
    Flat_array<Node> active_nodes_;    ///< nodes of the active cliques
    Flat_array<Signature> signatures_; ///< of the lists that have some, which come first
    Flat_array<Clique_number> listed_;
    Flat_array<Node_bucket> bucket_; ///< node -> its bucket in slices; empty before the first
    Bit_slice_cache slices_;
    std::vector<std::uint32_t> hits_; ///< places in a list worth a second look
};

} // namespace cpm

#endif
