// SPDX-License-Identifier: MIT
// Takes    the clique list; at each level the least overlap.
// Leaves   the unclaimed partners of one clique after the other, each claimed once a level.
// Order    partners ascending. The order inside the lists is of no account: it changes as claimed
//          cliques are moved behind the live ones.
// Cost     16 bytes a clique member (its rank, and 12 for a place in a list), up to 8 more for
//          sliced lists, 36 bytes a clique, 37 bytes a node. A level: one entry a clique, then the
//          lists of the rarest nodes of each clique that is asked for: a glance an entry, or a few
//          bits where a list is long.
// Tested   Overlap_index_test.cpp (against all pairs), Overlap_index_room_test.cpp, the runs
//          against the plain model.
#include "Coms_funcs/Overlap_index.h"

#include "support/Bit_counting.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <utility>

namespace cpm {

namespace {

using Overlap_index_sub::Candidate;
using Overlap_index_sub::Card;
using Overlap_index_sub::Signature;

constexpr std::uint32_t mask_bits = 64;
constexpr std::uint8_t last_mark = 255;
constexpr std::uint64_t nodes_a_line = 64 / sizeof(Node);

// Slicing a list costs as much as a few dozen walks, and pays for long lists.
constexpr std::uint32_t worth_slicing = 512;
constexpr std::uint8_t walks_before_slicing = 32;
constexpr std::uint64_t sliced_bytes_a_member = 8;
constexpr std::uint64_t sliced_bytes_at_least = std::uint64_t{1} << 20;

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
std::size_t Keep_possible(Candidate* candidates, std::size_t count, Card const* cards,
                          Node const* nodes, Signature const& asker, std::uint64_t least_shared) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        Card const* const card = cards + candidates[i].clique;
        std::uint64_t const size = card[1].begin - card->begin;
        if (Missing(card->signature, asker) + least_shared <= size) {
            for (std::uint64_t n = card->begin; n < card[1].begin; n += nodes_a_line) {
                __builtin_prefetch(nodes + n);
            }
            candidates[kept++] = candidates[i];
        }
    }
    return kept;
}

std::size_t Lowest_bit(std::uint64_t bits) {
    return static_cast<std::size_t>(std::countr_zero(bits));
}

// How many classes of nodes sliced lists tell apart. With few classes a large clique seems to have
// many a node that it lacks.
std::size_t N_classes(Set_list const& cliques) {
    constexpr std::uint64_t fewest = 128;
    constexpr std::uint64_t most = 1024;
    constexpr std::uint64_t classes_a_member = 16;
    std::uint64_t const mean_size = cliques.Total() / std::max<std::size_t>(cliques.size(), 1);
    return std::bit_ceil(std::clamp(mean_size * classes_a_member, fewest, most));
}

} // namespace

Overlap_index::Overlap_index(Set_list const& cliques, Node n_nodes)
    : cliques_(cliques), states_(n_nodes + 1, Node_state()),
      sliced_(cliques.Total() * sliced_bytes_a_member + sliced_bytes_at_least, n_nodes + 1,
              N_classes(cliques)),
      mark_(n_nodes + 1, 0) {
    for (Node const node : cliques.Flat()) {
        ++states_[node].begin;
    }
    Rank_nodes();
    Sort_by_size();
    std::uint64_t begin = 0;
    for (Node_state& state : states_) {
        begin += std::exchange(state.begin, begin);
    }
    glances_.Resize_uninitialised(cliques.Total());
    listed_.Resize_uninitialised(cliques.Total());
    in_play_.Reserve(n_nodes);
}

// Nodes that occur together should be of different classes. The last cliques are those of the nodes
// with most neighbours, where the most cliques overlap: numbered as they occur from there, the
// nodes of one dense region get numbers in a row.
void Overlap_index::Class_nodes() {
    class_.Resize(mark_.size());
    Flat_array<std::uint8_t> numbered(class_.size(), 0);
    std::size_t next = 0;
    for (std::size_t c = cliques_.size(); c-- > 0;) {
        for (Node const node : cliques_[c]) {
            if (numbered[node] == 0) {
                numbered[node] = 1;
                class_[node] = static_cast<Node_class>(next++ % sliced_.N_classes());
            }
        }
    }
}

// Relies on: states_[node].begin is how many cliques hold the node, as yet.
void Overlap_index::Rank_nodes() {
    ranked_.Append(cliques_.Flat());
    cards_.Reserve(cliques_.size() + 1);
    std::uint64_t begin = 0;
    for (std::size_t c = 0; c < cliques_.size(); ++c) {
        Card const card{Signature_of(cliques_[c]), begin};
        cards_.push_back(card);
        begin += cliques_[c].size();
        std::sort(ranked_.begin() + card.begin, ranked_.begin() + begin, [&](Node a, Node b) {
            auto const of_a = states_[a].begin;
            auto const of_b = states_[b].begin;
            return of_a != of_b ? of_a < of_b : a < b;
        });
    }
    cards_.push_back({{}, begin});
}

// A counting sort.
void Overlap_index::Sort_by_size() {
    Flat_array<std::size_t> place; // size -> first the cliques of this size, then where they go
    for (std::size_t c = 0; c < cliques_.size(); ++c) {
        std::size_t const size = cliques_[c].size();
        place.Resize(std::max(place.size(), size + 1), 0);
        ++place[size];
    }
    std::size_t before = 0;
    for (std::size_t size = place.size(); size-- > 0;) {
        before += std::exchange(place[size], before);
    }
    by_size_.Resize_uninitialised(cliques_.size());
    for (std::size_t c = 0; c < cliques_.size(); ++c) {
        by_size_[place[cliques_[c].size()]++] = static_cast<Clique_number>(c);
    }
}

void Overlap_index::Start_level(std::uint32_t least_shared, std::uint32_t least_size) {
    assert(0 < least_shared && least_shared <= least_size);
    constexpr std::uint32_t beyond_all = 0xFFFFFFFF;
    bool const afresh =
        least_shared_ == 0 || least_shared > least_shared_ || least_size > least_size_;
    if (afresh) {
        for (Node_state& state : states_) {
            state = {.begin = state.begin};
        }
        in_play_.clear();
        n_in_play_ = 0;
        out_of_play_.clear();
        out_of_play_.Resize(cliques_.size() / 64 + 1, ~std::uint64_t{0});
    }
    // Ascending, as they lie in memory.
    for (std::size_t w = 0; w < out_of_play_.size(); ++w) {
        for (std::uint64_t rest = ~out_of_play_[w]; rest != 0; rest &= rest - 1) {
            List_clique(static_cast<Clique_number>(w * 64 + Lowest_bit(rest)), least_shared,
                        least_shared_);
        }
    }
    for (; n_in_play_ < by_size_.size(); ++n_in_play_) {
        Clique_number const clique = by_size_[n_in_play_];
        if (cliques_[clique].size() < least_size) {
            break;
        }
        Bring_into_play(clique);
        List_clique(clique, least_shared, beyond_all);
    }
    least_shared_ = least_shared;
    least_size_ = least_size;
    for (Node const node : in_play_) {
        Node_state& state = states_[node];
        state.live = state.active;
        state.unclaimed = state.active;
        state.holding_live = state.holding;
        state.asked = 0;
    }
    sliced_.Give_up_all();
    claimed_ = out_of_play_;
}

std::size_t Overlap_index::Next_unclaimed(std::size_t from) const {
    if (from >= cliques_.size()) {
        return cliques_.size();
    }
    std::size_t w = from / 64;
    std::uint64_t rest = ~claimed_[w] & (~std::uint64_t{0} << (from % 64));
    while (rest == 0 && ++w < claimed_.size()) {
        rest = ~claimed_[w];
    }
    return rest == 0 ? cliques_.size() : w * 64 + Lowest_bit(rest);
}

void Overlap_index::Bring_into_play(Clique_number clique) {
    out_of_play_[clique / 64] &= ~(std::uint64_t{1} << (clique % 64));
    for (Node const node : cliques_[clique]) {
        if (states_[node].holding++ == 0) {
            in_play_.push_back(node);
        }
    }
}

// Lists a clique under those of its nodes that come into play when the least overlap falls from
// `to` to `from`. The node that `act` nodes follow (itself included) comes into play at `act`.
void Overlap_index::List_clique(Clique_number clique, std::uint32_t from, std::uint32_t to) {
    std::span<Node const> const nodes = Ranked(clique);
    auto const size = static_cast<std::uint32_t>(nodes.size());
    Glance const glance = First_sight(nodes);
    for (std::uint32_t act = std::min(size, to - 1); act >= from; --act) {
        Node const node = nodes[size - act];
        std::uint64_t const place = states_[node].begin + states_[node].active++;
        glances_[place] = glance;
        listed_[place] = clique;
    }
}

// Asks the list of the n-th rarest node of the clique that asks.
void Overlap_index::Ask_list(std::size_t n) {
    Node const node = question_.nodes[n];
    Node_state& state = states_[node];
    if (state.unclaimed == 0) {
        return;
    }
    Sliced_list* sliced = sliced_.Find(node);
    // Rarely enough that looking at each clique of the list does not weigh.
    if (state.unclaimed <= state.live / 4 * (sliced != nullptr ? 2 : 3)) {
        Drop_claimed(node);
        sliced = sliced != nullptr ? Slice(node) : nullptr;
    }
    if (sliced == nullptr && state.live >= worth_slicing) {
        if (state.asked < walks_before_slicing) {
            ++state.asked;
        } else {
            sliced = Slice(node);
        }
    }
    if (sliced != nullptr) {
        Ask_sliced(*sliced, n);
    } else {
        Ask_glances(n);
    }
}

void Overlap_index::Ask_glances(std::size_t n) {
    Node const node = question_.nodes[n];
    Node_state const& state = states_[node];
    hits_.resize(std::max<std::size_t>(hits_.size(), state.live + glance_walk_slack));
    std::size_t const hits =
        walk_(glances_.data() + state.begin, state.live, question_.of_glances, hits_.data());
    // From the back, as dropping an entry puts the last one into its place.
    for (std::size_t i = hits; i > 0; --i) {
        Clique_number const clique = listed_[state.begin + hits_[i - 1]];
        if (Is_claimed(clique)) {
            Drop(node, hits_[i - 1]);
        } else {
            __builtin_prefetch(&cards_[clique]);
            candidates_.push_back({clique, static_cast<std::uint32_t>(n)});
        }
    }
}

void Overlap_index::Translate(std::span<Node const> nodes, std::vector<Node_class>& classes) const {
    classes.clear();
    for (Node const node : nodes) {
        classes.push_back(class_[node]);
    }
}

// A partner is looked for at the rarest node that it shares alone: here those that lack the n nodes
// before this one.
void Overlap_index::Ask_sliced(Sliced_list& list, std::size_t n) {
    if (question_.classes.empty()) {
        Translate(question_.nodes, question_.classes);
        Translate(question_.needed_nodes, question_.needed);
    }
    std::span<Node_class const> const classes = question_.classes;
    Node const node = question_.nodes[n];
    auto const most_lacking =
        static_cast<std::uint32_t>(question_.nodes.size() - least_shared_ - n);
    hits_.clear();
    list.Walk({classes.subspan(n + 1), question_.needed, most_lacking}, hits_);
    for (std::uint32_t const hit : hits_) {
        Clique_number const clique = listed_[states_[node].begin + hit];
        if (Is_claimed(clique)) {
            list.Close(hit);
        } else {
            __builtin_prefetch(&cards_[clique]);
            candidates_.push_back({clique, static_cast<std::uint32_t>(n)});
        }
    }
}

// Null when there is no room: then all lists make room, and those asked often come back.
Sliced_list* Overlap_index::Slice(Node node) {
    if (class_.empty()) {
        Class_nodes(); // most networks never come here
    }
    std::uint32_t const live = states_[node].live;
    Sliced_list* const list = sliced_.Begin(node, live);
    if (list == nullptr) {
        sliced_.Give_up_all();
        for (Node const other : in_play_) {
            states_[other].asked = 0;
        }
        return nullptr;
    }
    Clique_number const* const cliques = listed_.data() + states_[node].begin;
    constexpr std::uint32_t ahead = 8;
    for (std::uint32_t i = 0; i < live; ++i) {
        if (i + 2 * ahead < live) {
            Prefetch_card(cliques[i + 2 * ahead]);
            Prefetch_nodes(cliques[i + ahead]);
        }
        for (Node const member : Ranked(cliques[i])) {
            list->Add(i, class_[member]);
        }
    }
    return list;
}

void Overlap_index::Claim_if_partner(Candidate const& candidate, Flat_array<Partner>& partners) {
    Clique_number const clique = candidate.clique;
    if (Is_claimed(clique)) {
        return;
    }
    std::span<Node const> const nodes = Ranked(clique);
    auto const size = static_cast<std::uint32_t>(nodes.size());
    // It was also met, and looked at, in the list of the rarest node shared.
    std::uint8_t const mark =
        mark_[*std::ranges::find_if(nodes, [&](Node n) { return mark_[n] != 0; })];
    if (mark != last_mark && mark <= candidate.n) {
        return;
    }
    std::uint32_t shared = 0;
    std::uint64_t new_nodes = 0;
    if (size <= mask_bits) {
        for (std::uint32_t n = 0; n < size; ++n) {
            std::uint64_t const is_shared = mark_[nodes[n]] != 0 ? 1 : 0;
            shared += static_cast<std::uint32_t>(is_shared);
            new_nodes |= (is_shared ^ 1U) << n;
        }
    } else {
        for (Node const node : nodes) {
            shared += mark_[node] != 0 ? 1U : 0U;
        }
        new_nodes = all_new;
    }
    if (shared < least_shared_) {
        return;
    }
    Claim(clique);
    partners.push_back({clique, new_nodes});
}

void Overlap_index::Claim(Clique_number clique) {
    claimed_[clique / 64] |= std::uint64_t{1} << (clique % 64);
    std::span<Node const> const nodes = Ranked(clique);
    for (std::size_t n = 0; n < nodes.size(); ++n) {
        Node_state& state = states_[nodes[n]];
        --state.holding_live;
        state.unclaimed -= n + least_shared_ <= nodes.size() ? 1U : 0U;
    }
}

void Overlap_index::Drop(Node node, std::uint32_t place) {
    Node_state& state = states_[node];
    std::uint64_t const here = state.begin + place;
    std::uint64_t const last = state.begin + --state.live;
    std::swap(glances_[here], glances_[last]);
    std::swap(listed_[here], listed_[last]);
}

void Overlap_index::Drop_claimed(Node node) {
    Node_state const& state = states_[node];
    for (std::uint32_t place = state.live; place > 0; --place) {
        if (Is_claimed(listed_[state.begin + place - 1])) {
            Drop(node, place - 1);
        }
    }
}

// Sets up what the clique asks. False when it has no partner: no unclaimed clique holds one of its
// new nodes, or too few of its nodes are in unclaimed cliques at all. This spares most of the
// walks.
bool Overlap_index::Ask(Partner const& from) {
    question_.nodes = Ranked(from.clique);
    Glance needed = 0;
    question_.needed_nodes.clear();
    auto const consider = [&](Node node) {
        if (states_[node].holding_live > 0) {
            needed |= Glance_bit(node);
            question_.needed_nodes.push_back(node);
        }
    };
    if (from.new_nodes == all_new) {
        std::ranges::for_each(question_.nodes, consider);
    } else {
        for (std::uint64_t rest = from.new_nodes; rest != 0; rest &= rest - 1) {
            consider(question_.nodes[Lowest_bit(rest)]);
        }
    }
    if (needed == 0) {
        return false;
    }
    // Behind the rarest shared node, itself included, there are all shared ones.
    std::uint32_t sharable = 0;
    question_.n_lists = question_.nodes.size();
    while (question_.n_lists > 0 && sharable < least_shared_) {
        --question_.n_lists;
        sharable += states_[question_.nodes[question_.n_lists]].holding_live > 0 ? 1U : 0U;
    }
    if (sharable < least_shared_) {
        return false;
    }
    ++question_.n_lists;
    question_.of_glances = {Glance_bits(question_.nodes), needed, least_shared_};
    question_.classes.clear();
    return true;
}

void Overlap_index::Claim_partners(Partner const& from, Flat_array<Partner>& partners) {
    std::size_t const before = partners.size();
    if (!Is_claimed(from.clique)) {
        Claim(from.clique);
        partners.push_back({from.clique, 0});
    }
    if (!Ask(from)) {
        return;
    }
    std::span<Node const> const nodes = question_.nodes;
    for (std::size_t n = 0; n < nodes.size(); ++n) {
        mark_[nodes[n]] = static_cast<std::uint8_t>(std::min<std::size_t>(n + 1, last_mark));
    }
    // Everything that is looked at closely is asked for first: the cache misses overlap.
    candidates_.clear();
    for (std::size_t n = 0; n < question_.n_lists; ++n) {
        Ask_list(n);
    }
    candidates_.resize(Keep_possible(candidates_.data(), candidates_.size(), cards_.data(),
                                     ranked_.data(), cards_[from.clique].signature, least_shared_));
    for (Candidate const& candidate : candidates_) {
        Claim_if_partner(candidate, partners);
    }
    for (Node const node : nodes) {
        mark_[node] = 0;
    }
    std::sort(partners.begin() + before, partners.end(),
              [](Partner const& a, Partner const& b) { return a.clique < b.clique; });
}

} // namespace cpm
