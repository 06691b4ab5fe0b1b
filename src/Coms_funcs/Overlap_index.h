// SPDX-License-Identifier: MIT
// Overlap_index: answers, for one clique at a time, which cliques not yet claimed share enough
// nodes with it. It is what percolation uses of the clique overlap matrix, which is never stored:
// that grows with the square of the cliques of a node.
//
// The nodes of each clique are ranked, rarest first (a node is rare when few cliques hold it). Two
// cliques A and B that share t nodes or more share one among the first |A|-t+1 of A and the first
// |B|-t+1 of B: the rarest shared node has t-1 others behind it in both. So it is enough to keep,
// for each node, the cliques that hold it that early, and hubs drop out of the work. Going to a
// smaller t each clique's part grows by the next node: lists only grow from level to level.
//
// A list is walked glance by glance (see Glances.h) or, when it is long and asked often, in slices
// (see Sliced_lists.h).
#ifndef PLEXOR_OVERLAP_INDEX_H
#define PLEXOR_OVERLAP_INDEX_H

#include "Coms_funcs/Glances.h"
#include "Coms_funcs/Sliced_lists.h"
#include "graph/Types.h"

#include <array>
#include <vector>

namespace cpm {

/// A clique that another one has led to.
struct Partner {
    Clique_number clique = 0;
    /// Which nodes of the clique the other one does not hold: bit i stands for the i-th rarest.
    /// All bits set when the clique has more nodes than bits, or nothing is known; no bit set when
    /// it is that clique itself.
    std::uint64_t new_nodes = 0;
};

namespace Overlap_index_sub {

/// A bit for each node of a set; several nodes may share one.
using Signature = std::array<std::uint64_t, 3>;

/// What is known of a clique without its nodes; half a cache line.
struct Card {
    Signature signature{};
    std::uint64_t begin = 0; ///< its first node among those of all cliques, one after the other
};

/// An unclaimed clique worth a close look.
struct Candidate {
    Clique_number clique = 0;
    std::uint32_t n = 0; ///< met in the list of the n-th rarest node of the clique that asks
};

} // namespace Overlap_index_sub

class Overlap_index {
public:
    static constexpr std::uint64_t all_new = ~std::uint64_t{0};

    /// The cliques must outlive the index.
    Overlap_index(Set_list const& cliques, Node n_nodes);

    /// Starts a level: no clique is claimed, cliques of fewer than `least_size` nodes are out of
    /// play, and the others are partners when they share at least `least_shared` nodes (1 or more,
    /// and at most `least_size`). Both going down from level to level is what the index is made
    /// for; any other order costs a new index.
    void Start_level(std::uint32_t least_shared, std::uint32_t least_size);

    /// Cliques out of play count as claimed.
    bool Is_claimed(Clique_number clique) const {
        return (claimed_[clique / 64] >> (clique % 64) & 1) != 0;
    }
    /// The first clique from this one on that is not claimed, or the number of cliques.
    std::size_t Next_unclaimed(std::size_t from) const;
    /// Claims every unclaimed partner of `from` and appends it to `partners`, in ascending order.
    /// A clique in play shares its own nodes with itself: when unclaimed it is its own partner.
    /// `from.new_nodes` must hold a node of each unclaimed partner (all_new always does).
    void Claim_partners(Partner const& from, Flat_array<Partner>& partners);

    /// Fetches the memory that asking for this clique's partners begins with; in two steps, the
    /// first for a clique that is asked for later than that of the second.
    void Prefetch_card(Clique_number clique) const { __builtin_prefetch(&cards_[clique]); }
    void Prefetch_nodes(Clique_number clique) const { __builtin_prefetch(Ranked(clique).data()); }

    Node Number_of_nodes() const { return static_cast<Node>(mark_.size() - 1); }
    /// The clique's nodes, rarest first.
    std::span<Node const> Ranked(Clique_number clique) const {
        return {ranked_.data() + cards_[clique].begin, ranked_.data() + cards_[clique + 1].begin};
    }

private:
    // What one clique asks of the lists of its nodes.
    struct Question {
        std::span<Node const> nodes;    ///< its own, rarest first
        std::size_t n_lists = 0;        ///< a partner is in the list of one of so many
        std::vector<Node> needed_nodes; ///< a partner has one of these
        Glance_question of_glances;
        std::vector<Node_class> classes; ///< of its nodes; empty as long as no sliced list is asked
        std::vector<Node_class> needed;  ///< of the needed nodes, likewise
    };

    void Rank_nodes();
    void Sort_by_size();
    void Class_nodes();
    void Translate(std::span<Node const> nodes, std::vector<Node_class>& classes) const;
    void Bring_into_play(Clique_number clique);
    void List_clique(Clique_number clique, std::uint32_t from, std::uint32_t to);
    void Ask_list(std::size_t n);
    void Ask_glances(std::size_t n);
    void Ask_sliced(Sliced_list& list, std::size_t n);
    Sliced_list* Slice(Node node);
    bool Ask(Partner const& from);
    void Claim(Clique_number clique);
    void Claim_if_partner(Overlap_index_sub::Candidate const& candidate,
                          Flat_array<Partner>& partners);
    void Drop(Node node, std::uint32_t place);
    void Drop_claimed(Node node);

    // What is known of a node at this level, in one place: where the next count is, the
    // one before has brought its cache line.
    struct Node_state {
        std::uint64_t begin = 0;        ///< of its list in glances_ and listed_
        std::uint32_t active = 0;       ///< length of its list
        std::uint32_t live = 0;         ///< length without claimed ones moved back
        std::uint32_t unclaimed = 0;    ///< how many of these are not claimed
        std::uint32_t holding = 0;      ///< cliques in play that hold it
        std::uint32_t holding_live = 0; ///< ... that are not claimed
        std::uint8_t asked = 0;         ///< how often its list was walked, up to a limit
    };

    Set_list const& cliques_;
    Glance_walk walk_ = Fastest_glance_walk();
    Flat_array<Node> ranked_;
    Flat_array<Overlap_index_sub::Card> cards_; ///< one more than cliques
    Flat_array<Node_state> states_;             ///< by node
    Flat_array<Node> in_play_;                  ///< nodes of the cliques in play
    Flat_array<Glance> glances_;
    Flat_array<Clique_number> listed_;
    Flat_array<Node_class> class_; ///< node -> its class in sliced lists; empty before the first
    Sliced_lists sliced_;
    Flat_array<Clique_number> by_size_;     ///< the largest first, ascending among equals
    std::size_t n_in_play_ = 0;             ///< so many of these
    Flat_array<std::uint64_t> out_of_play_; ///< a bit a clique; set behind the last one
    Flat_array<std::uint64_t> claimed_;     ///< likewise
    Flat_array<std::uint8_t>
        mark_;          ///< node -> 1 + its place in the clique that asks, at most 255, or 0
    Question question_; ///< what is asked at the moment
    std::vector<std::uint32_t> hits_; ///< places in a list worth a second look
    std::vector<Overlap_index_sub::Candidate> candidates_;
    std::uint32_t least_shared_ = 0; ///< 0: no level started
    std::uint32_t least_size_ = 0;
};

} // namespace cpm

#endif
