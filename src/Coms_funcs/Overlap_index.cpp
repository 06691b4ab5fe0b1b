// SPDX-License-Identifier: MIT
// Takes    the clique list; at each level the least overlap.
// Leaves   the unclaimed partners of one clique after the other, each claimed once a level.
// Order    partners ascending. The order inside the lists is of no account: it changes as claimed
//          cliques are moved behind the live ones.
// Cost     24 bytes a clique member. A level: one entry a clique, then the live entries of the
//          rarest nodes of each clique that is asked for.
// Tested   Overlap_index_test.cpp (against all pairs), the runs against the plain model.
#include "Coms_funcs/Overlap_index.h"

#include "support/Bit_counting.h"

#include <bit>
#include <cassert>

namespace cpm {

namespace {

using Overlap_index_sub::Card;
using Overlap_index_sub::Signature;

constexpr std::uint32_t mask_bits = 64;

// Claimed cliques are cleared out of a list each time it has been walked this often: asking of each
// entry whether it is claimed would cost a cache miss, and most are ruled out at first sight.
constexpr unsigned walks_between_clearings = 8;

Signature Signature_of(Node_set nodes) {
    Signature signature{};
    for (Node const node : nodes) {
        std::uint64_t const bit = std::uint64_t{node * 0x85EBCA77U} * (signature.size() * 64) >> 32;
        signature[bit / 64] |= std::uint64_t{1} << (bit % 64);
    }
    return signature;
}

// Nodes that the bits tell apart are different: a lower bound of the nodes that `in` lacks.
inline std::uint64_t Missing(Signature const& of, Signature const& in) {
    int missing = 0;
    for (std::size_t w = 0; w < of.size(); ++w) {
        missing += std::popcount(of[w] & ~in[w]);
    }
    return static_cast<std::uint64_t>(missing);
}

// Keeps those of the cliques that can share `least_shared` nodes with the one of this signature,
// and fetches the nodes of these; returns how many are kept.
PLEXOR_COUNTS_BITS
std::size_t Keep_possible(Clique_number* cliques, std::size_t count, Card const* cards,
                          Node const* nodes, Signature const& asker, std::uint64_t least_shared) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        Card const* const card = cards + cliques[i];
        std::uint64_t const size = card[1].begin - card->begin;
        if (Missing(card->signature, asker) + least_shared <= size) {
            __builtin_prefetch(nodes + card->begin);
            cliques[kept++] = cliques[i];
        }
    }
    return kept;
}

} // namespace

Overlap_index::Overlap_index(Set_list const& cliques, Node n_nodes)
    : cliques_(cliques), active_(n_nodes + 1, 0), asked_(n_nodes + 1, 0), holding_(n_nodes + 1, 0),
      claimed_(cliques.size() / 64 + 1, 0), mark_(n_nodes + 1, 0) {
    Flat_array<std::uint64_t> count(n_nodes + 2, 0);
    for (Node const node : cliques.Flat()) {
        ++count[node + 1];
    }
    begins_ = count;
    for (std::size_t node = 1; node < begins_.size(); ++node) {
        begins_[node] += begins_[node - 1];
    }
    glances_.Resize_uninitialised(cliques.Total());
    listed_.Resize_uninitialised(cliques.Total());
    Rank_nodes();
}

void Overlap_index::Rank_nodes() {
    auto const n_cliques_of = [&](Node node) { return begins_[node + 1] - begins_[node]; };
    ranked_.Append(cliques_.Flat());
    cards_.Reserve(cliques_.size() + 1);
    std::uint64_t begin = 0;
    for (std::size_t c = 0; c < cliques_.size(); ++c) {
        Card const card{Signature_of(cliques_[c]), begin};
        cards_.push_back(card);
        begin += cliques_[c].size();
        std::sort(ranked_.begin() + card.begin, ranked_.begin() + begin, [&](Node a, Node b) {
            auto const of_a = n_cliques_of(a);
            auto const of_b = n_cliques_of(b);
            return of_a != of_b ? of_a < of_b : a < b;
        });
    }
    cards_.push_back({{}, begin});
}

void Overlap_index::Start_level(std::uint32_t least_shared, std::uint32_t least_size) {
    assert(0 < least_shared && least_shared <= least_size);
    constexpr std::uint32_t beyond_all = 0xFFFFFFFF;
    bool const afresh =
        least_shared_ == 0 || least_shared > least_shared_ || least_size > least_size_;
    if (afresh) {
        std::fill(active_.begin(), active_.end(), 0);
        std::fill(holding_.begin(), holding_.end(), 0);
    }
    std::uint32_t const sizes_listed = afresh ? beyond_all : least_size_;
    std::uint32_t const shares_listed = afresh ? beyond_all : least_shared_;
    for (std::size_t c = 0; c < cliques_.size(); ++c) {
        auto const size = static_cast<std::uint32_t>(cliques_[c].size());
        if (size >= sizes_listed) {
            List_clique(static_cast<Clique_number>(c), least_shared, shares_listed);
        } else if (size >= least_size) {
            List_clique(static_cast<Clique_number>(c), least_shared, beyond_all);
            for (Node const node : cliques_[c]) {
                ++holding_[node];
            }
        }
    }
    least_shared_ = least_shared;
    least_size_ = least_size;
    live_ = active_;
    holding_live_ = holding_;
    std::fill(claimed_.begin(), claimed_.end(), 0);
}

// Lists a clique under those of its nodes that come into play when the least overlap falls from
// `to` to `from`. The node that `act` nodes follow (itself included) comes into play at `act`.
void Overlap_index::List_clique(Clique_number clique, std::uint32_t from, std::uint32_t to) {
    std::span<Node const> const nodes = Ranked(clique);
    auto const size = static_cast<std::uint32_t>(nodes.size());
    Glance const glance = First_sight(nodes);
    for (std::uint32_t act = std::min(size, to - 1); act >= from; --act) {
        Node const node = nodes[size - act];
        std::uint64_t const place = begins_[node] + active_[node]++;
        glances_[place] = glance;
        listed_[place] = clique;
    }
}

void Overlap_index::Ask_list(Glance_question const& question, Node node) {
    if (++asked_[node] % walks_between_clearings == 0) {
        Drop_claimed(node);
    }
    hits_.resize(std::max<std::size_t>(hits_.size(), live_[node] + glance_walk_slack));
    std::size_t const hits =
        walk_(glances_.data() + begins_[node], live_[node], question, hits_.data());
    // From the back, as dropping an entry puts the last one into its place.
    for (std::size_t i = hits; i > 0; --i) {
        Clique_number const clique = listed_[begins_[node] + hits_[i - 1]];
        if (Is_claimed(clique)) {
            Drop(node, hits_[i - 1]);
        } else {
            __builtin_prefetch(&cards_[clique]);
            candidates_.push_back(clique);
        }
    }
}

void Overlap_index::Claim_if_partner(Clique_number clique, std::vector<Partner>& partners) {
    if (Is_claimed(clique)) {
        return; // met in several lists
    }
    std::span<Node const> const nodes = Ranked(clique);
    auto const size = static_cast<std::uint32_t>(nodes.size());
    std::uint32_t shared = 0;
    std::uint64_t new_nodes = 0;
    if (size <= mask_bits) {
        for (std::uint32_t n = 0; n < size; ++n) {
            std::uint64_t const is_shared = mark_[nodes[n]];
            shared += static_cast<std::uint32_t>(is_shared);
            new_nodes |= (is_shared ^ 1U) << n;
        }
    } else {
        for (Node const node : nodes) {
            shared += mark_[node];
        }
        new_nodes = all_new;
    }
    if (shared < least_shared_) {
        return;
    }
    claimed_[clique / 64] |= std::uint64_t{1} << (clique % 64);
    for (Node const node : nodes) {
        --holding_live_[node];
    }
    partners.push_back({clique, new_nodes});
}

void Overlap_index::Drop(Node node, std::uint32_t place) {
    std::uint64_t const here = begins_[node] + place;
    std::uint64_t const last = begins_[node] + --live_[node];
    std::swap(glances_[here], glances_[last]);
    std::swap(listed_[here], listed_[last]);
}

void Overlap_index::Drop_claimed(Node node) {
    for (std::uint32_t place = live_[node]; place > 0; --place) {
        if (Is_claimed(listed_[begins_[node] + place - 1])) {
            Drop(node, place - 1);
        }
    }
}

// The bits of the clique's new nodes that an unclaimed clique holds, none if there are no such.
Glance Overlap_index::Needed(Partner const& from) const {
    std::span<Node const> const nodes = Ranked(from.clique);
    Glance needed = 0;
    auto const consider = [&](Node node) {
        if (holding_live_[node] > 0) {
            needed |= Glance_bit(node);
        }
    };
    if (from.new_nodes == all_new) {
        std::for_each(nodes.begin(), nodes.end(), consider);
    } else {
        for (std::uint64_t rest = from.new_nodes; rest != 0; rest &= rest - 1) {
            consider(nodes[static_cast<std::size_t>(std::countr_zero(rest))]);
        }
    }
    return needed;
}

void Overlap_index::Claim_partners(Partner const& from, std::vector<Partner>& partners) {
    std::span<Node const> const nodes = Ranked(from.clique);
    // A partner holds one of the new nodes: if no unclaimed clique does, there is none. This spares
    // most of the scans at small k.
    Glance const needed = Needed(from);
    if (needed == 0) {
        return;
    }
    Glance_question const question{Glance_bits(nodes), needed, least_shared_};
    for (Node const node : nodes) {
        mark_[node] = 1;
    }
    // Everything that is looked at closely is asked for first: the cache misses overlap.
    candidates_.clear();
    for (std::size_t n = 0; n + least_shared_ <= nodes.size(); ++n) {
        Ask_list(question, nodes[n]);
    }
    candidates_.resize(Keep_possible(candidates_.data(), candidates_.size(), cards_.data(),
                                     ranked_.data(), cards_[from.clique].signature, least_shared_));
    std::size_t const before = partners.size();
    for (Clique_number const clique : candidates_) {
        Claim_if_partner(clique, partners);
    }
    for (Node const node : nodes) {
        mark_[node] = 0;
    }
    std::sort(partners.begin() + static_cast<std::ptrdiff_t>(before), partners.end(),
              [](Partner const& a, Partner const& b) { return a.clique < b.clique; });
}

} // namespace cpm
