// SPDX-License-Identifier: MIT
// Takes    the clique list; at each level the least overlap.
// Leaves   the unvisited adjacent of one clique after the other, each visited once a level.
// Order    adjacent ascending. The order inside the lists is of no account: it changes as visited
//          cliques are moved behind the live ones.
// Cost     16 bytes a clique member (its rank, and 12 for a place in a list), up to 8 more for
//          sliced lists, 36 bytes a clique, 37 bytes a node. A level: one entry a clique, then the
//          lists of the rarest nodes of each clique that is asked for: a signature an entry, or a
//          few bits where a list is long.
// Tested   Adjacent_cliques_test.cpp (against all pairs), Adjacent_cliques_room_test.cpp, the runs
//          against the plain model.
#include "Coms_funcs/Adjacent_cliques.h"

#include "support/Cpu_dispatch.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <utility>

namespace cpm {

namespace {

using Adjacent_cliques_sub::Candidate;
using Adjacent_cliques_sub::Clique_header;
using Adjacent_cliques_sub::Wide_signature;

constexpr std::uint32_t mask_bits = 64;
constexpr std::uint8_t last_mark = 255;
constexpr std::uint64_t nodes_a_line = 64 / sizeof(Node);

// Slicing a list costs as much as a few dozen walks, and pays for long lists.
constexpr std::uint32_t worth_slicing = 512;
constexpr std::uint8_t walks_before_slicing = 32;
constexpr std::uint64_t sliced_bytes_a_member = 8;
constexpr std::uint64_t sliced_bytes_at_least = std::uint64_t{1} << 20;

Wide_signature Wide_signature_of(Node_set nodes) {
    Wide_signature signature{};
    for (Node const node : nodes) {
        std::uint64_t const bit = std::uint64_t{node * 0x85EBCA77U} * (signature.size() * 64) >> 32;
        signature[bit / 64] |= std::uint64_t{1} << (bit % 64);
    }
    return signature;
}

// Nodes that the bits tell apart are different: a lower bound of the nodes that `in` lacks.
inline std::uint64_t Missing(Wide_signature const& of, Wide_signature const& in) {
    int missing = 0;
    for (std::size_t w = 0; w < of.size(); ++w) {
        missing += std::popcount(of[w] & ~in[w]);
    }
    return static_cast<std::uint64_t>(missing);
}

// Keeps those of the cliques that can share `min_shared` nodes with the one of this signature,
// and fetches the nodes of these; returns how many are kept.
PLEXOR_COUNTS_BITS
std::size_t Keep_possible(Candidate* candidates, std::size_t count, Clique_header const* headers,
                          Node const* nodes, Wide_signature const& asker,
                          std::uint64_t min_shared) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        Clique_header const* const header = headers + candidates[i].clique;
        std::uint64_t const size = header[1].begin - header->begin;
        if (Missing(header->signature, asker) + min_shared <= size) {
            for (std::uint64_t n = header->begin; n < header[1].begin; n += nodes_a_line) {
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
std::size_t N_buckets(Set_list const& cliques) {
    constexpr std::uint64_t fewest = 128;
    constexpr std::uint64_t most = 1024;
    constexpr std::uint64_t buckets_a_member = 16;
    std::uint64_t const mean_size = cliques.Total() / std::max<std::size_t>(cliques.size(), 1);
    return std::bit_ceil(std::clamp(mean_size * buckets_a_member, fewest, most));
}

} // namespace

Adjacent_cliques::Adjacent_cliques(Set_list const& cliques, Node n_nodes)
    : cliques_(cliques), states_(n_nodes + 1, Node_state()),
      sliced_(cliques.Total() * sliced_bytes_a_member + sliced_bytes_at_least, n_nodes + 1,
              N_buckets(cliques)),
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
    signatures_.Resize_uninitialised(cliques.Total());
    listed_.Resize_uninitialised(cliques.Total());
    active_nodes_.Reserve(n_nodes);
}

// Nodes that occur together should be of different classes. The last cliques are those of the nodes
// with most neighbours, where the most cliques overlap: numbered as they occur from there, the
// nodes of one dense region get numbers in a row.
void Adjacent_cliques::Bucket_nodes() {
    bucket_.Resize(mark_.size());
    Flat_array<std::uint8_t> numbered(bucket_.size(), 0);
    std::size_t next = 0;
    for (std::size_t c = cliques_.size(); c-- > 0;) {
        for (Node const node : cliques_[c]) {
            if (numbered[node] == 0) {
                numbered[node] = 1;
                bucket_[node] = static_cast<Node_bucket>(next++ % sliced_.N_buckets());
            }
        }
    }
}

// Relies on: states_[node].begin is how many cliques hold the node, as yet.
void Adjacent_cliques::Rank_nodes() {
    ranked_.Append(cliques_.Flat());
    headers_.Reserve(cliques_.size() + 1);
    std::uint64_t begin = 0;
    for (std::size_t c = 0; c < cliques_.size(); ++c) {
        Clique_header const header{Wide_signature_of(cliques_[c]), begin};
        headers_.push_back(header);
        begin += cliques_[c].size();
        std::sort(ranked_.begin() + header.begin, ranked_.begin() + begin, [&](Node a, Node b) {
            auto const of_a = states_[a].begin;
            auto const of_b = states_[b].begin;
            return of_a != of_b ? of_a < of_b : a < b;
        });
    }
    headers_.push_back({{}, begin});
}

// A counting sort.
void Adjacent_cliques::Sort_by_size() {
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

void Adjacent_cliques::Start_level(std::uint32_t min_shared, std::uint32_t min_size) {
    assert(0 < min_shared && min_shared <= min_size);
    constexpr std::uint32_t beyond_all = 0xFFFFFFFF;
    bool const afresh = min_shared_ == 0 || min_shared > min_shared_ || min_size > min_size_;
    if (afresh) {
        for (Node_state& state : states_) {
            state = {.begin = state.begin};
        }
        active_nodes_.clear();
        n_active_ = 0;
        inactive_.clear();
        inactive_.Resize(cliques_.size() / 64 + 1, ~std::uint64_t{0});
    }
    // Ascending, as they lie in memory.
    for (std::size_t w = 0; w < inactive_.size(); ++w) {
        for (std::uint64_t rest = ~inactive_[w]; rest != 0; rest &= rest - 1) {
            List_clique(static_cast<Clique_number>(w * 64 + Lowest_bit(rest)), min_shared,
                        min_shared_);
        }
    }
    for (; n_active_ < by_size_.size(); ++n_active_) {
        Clique_number const clique = by_size_[n_active_];
        if (cliques_[clique].size() < min_size) {
            break;
        }
        Activate(clique);
        List_clique(clique, min_shared, beyond_all);
    }
    min_shared_ = min_shared;
    min_size_ = min_size;
    for (Node const node : active_nodes_) {
        Node_state& state = states_[node];
        state.live = state.active;
        state.unvisited = state.active;
        state.holding_live = state.holding;
        state.asked = 0;
    }
    sliced_.Give_up_all();
    visited_ = inactive_;
}

std::size_t Adjacent_cliques::Next_unvisited(std::size_t from) const {
    if (from >= cliques_.size()) {
        return cliques_.size();
    }
    std::size_t w = from / 64;
    std::uint64_t rest = ~visited_[w] & (~std::uint64_t{0} << (from % 64));
    while (rest == 0 && ++w < visited_.size()) {
        rest = ~visited_[w];
    }
    return rest == 0 ? cliques_.size() : w * 64 + Lowest_bit(rest);
}

void Adjacent_cliques::Activate(Clique_number clique) {
    inactive_[clique / 64] &= ~(std::uint64_t{1} << (clique % 64));
    for (Node const node : cliques_[clique]) {
        if (states_[node].holding++ == 0) {
            active_nodes_.push_back(node);
        }
    }
}

// Lists a clique under those of its nodes that come into play when the least overlap falls from
// `to` to `from`. The node that `act` nodes follow (itself included) comes into play at `act`.
void Adjacent_cliques::List_clique(Clique_number clique, std::uint32_t from, std::uint32_t to) {
    std::span<Node const> const nodes = Ranked(clique);
    auto const size = static_cast<std::uint32_t>(nodes.size());
    Signature const signature = Signature_of(nodes);
    for (std::uint32_t act = std::min(size, to - 1); act >= from; --act) {
        Node const node = nodes[size - act];
        std::uint64_t const place = states_[node].begin + states_[node].active++;
        signatures_[place] = signature;
        listed_[place] = clique;
    }
}

// Asks the list of the n-th rarest node of the clique that asks.
void Adjacent_cliques::Scan_list(std::size_t n) {
    Node const node = query_.nodes[n];
    Node_state& state = states_[node];
    if (state.unvisited == 0) {
        return;
    }
    Bit_slices* sliced = sliced_.Find(node);
    // Rarely enough that looking at each clique of the list does not weigh.
    if (state.unvisited <= state.live / 4 * (sliced != nullptr ? 2 : 3)) {
        Drop_visited(node);
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
        Scan_slices(*sliced, n);
    } else {
        Scan_signatures(n);
    }
}

void Adjacent_cliques::Scan_signatures(std::size_t n) {
    Node const node = query_.nodes[n];
    Node_state const& state = states_[node];
    hits_.resize(std::max<std::size_t>(hits_.size(), state.live + scan_slack));
    std::size_t const hits =
        scan_(signatures_.data() + state.begin, state.live, query_.signature, hits_.data());
    // From the back, as dropping an entry puts the last one into its place.
    for (std::size_t i = hits; i > 0; --i) {
        Clique_number const clique = listed_[state.begin + hits_[i - 1]];
        if (Is_visited(clique)) {
            Drop(node, hits_[i - 1]);
        } else {
            __builtin_prefetch(&headers_[clique]);
            candidates_.push_back({clique, static_cast<std::uint32_t>(n)});
        }
    }
}

void Adjacent_cliques::Translate(std::span<Node const> nodes,
                                 std::vector<Node_bucket>& classes) const {
    classes.clear();
    for (Node const node : nodes) {
        classes.push_back(bucket_[node]);
    }
}

// A adjacent clique is looked for at the rarest node that it shares alone: here those that lack the
// n nodes before this one.
void Adjacent_cliques::Scan_slices(Bit_slices& list, std::size_t n) {
    if (query_.classes.empty()) {
        Translate(query_.nodes, query_.classes);
        Translate(query_.needed_nodes, query_.needed);
    }
    std::span<Node_bucket const> const classes = query_.classes;
    Node const node = query_.nodes[n];
    auto const max_missing = static_cast<std::uint32_t>(query_.nodes.size() - min_shared_ - n);
    hits_.clear();
    list.Walk({classes.subspan(n + 1), query_.needed, max_missing}, hits_);
    for (std::uint32_t const hit : hits_) {
        Clique_number const clique = listed_[states_[node].begin + hit];
        if (Is_visited(clique)) {
            list.Close(hit);
        } else {
            __builtin_prefetch(&headers_[clique]);
            candidates_.push_back({clique, static_cast<std::uint32_t>(n)});
        }
    }
}

// Null when there is no room: then all lists make room, and those asked often come back.
Bit_slices* Adjacent_cliques::Slice(Node node) {
    if (bucket_.empty()) {
        Bucket_nodes(); // most networks never come here
    }
    std::uint32_t const live = states_[node].live;
    Bit_slices* const list = sliced_.Begin(node, live);
    if (list == nullptr) {
        sliced_.Give_up_all();
        for (Node const other : active_nodes_) {
            states_[other].asked = 0;
        }
        return nullptr;
    }
    Clique_number const* const cliques = listed_.data() + states_[node].begin;
    constexpr std::uint32_t ahead = 8;
    for (std::uint32_t i = 0; i < live; ++i) {
        if (i + 2 * ahead < live) {
            Prefetch_header(cliques[i + 2 * ahead]);
            Prefetch_nodes(cliques[i + ahead]);
        }
        for (Node const member : Ranked(cliques[i])) {
            list->Add(i, bucket_[member]);
        }
    }
    return list;
}

void Adjacent_cliques::Visit_if_adjacent(Candidate const& candidate,
                                         Flat_array<Adjacent_clique>& adjacent) {
    Clique_number const clique = candidate.clique;
    if (Is_visited(clique)) {
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
    if (shared < min_shared_) {
        return;
    }
    Visit(clique);
    adjacent.push_back({clique, new_nodes});
}

void Adjacent_cliques::Visit(Clique_number clique) {
    visited_[clique / 64] |= std::uint64_t{1} << (clique % 64);
    std::span<Node const> const nodes = Ranked(clique);
    for (std::size_t n = 0; n < nodes.size(); ++n) {
        Node_state& state = states_[nodes[n]];
        --state.holding_live;
        state.unvisited -= n + min_shared_ <= nodes.size() ? 1U : 0U;
    }
}

void Adjacent_cliques::Drop(Node node, std::uint32_t place) {
    Node_state& state = states_[node];
    std::uint64_t const here = state.begin + place;
    std::uint64_t const last = state.begin + --state.live;
    std::swap(signatures_[here], signatures_[last]);
    std::swap(listed_[here], listed_[last]);
}

void Adjacent_cliques::Drop_visited(Node node) {
    Node_state const& state = states_[node];
    for (std::uint32_t place = state.live; place > 0; --place) {
        if (Is_visited(listed_[state.begin + place - 1])) {
            Drop(node, place - 1);
        }
    }
}

// Sets up what the clique asks. False when it has no adjacent clique: no unvisited clique holds one
// of its new nodes, or too few of its nodes are in unvisited cliques at all. This spares most of
// the walks.
bool Adjacent_cliques::Prepare_query(Adjacent_clique const& from) {
    query_.nodes = Ranked(from.clique);
    Signature needed = 0;
    query_.needed_nodes.clear();
    auto const consider = [&](Node node) {
        if (states_[node].holding_live > 0) {
            needed |= Signature_bit(node);
            query_.needed_nodes.push_back(node);
        }
    };
    if (from.new_nodes == all_new) {
        std::ranges::for_each(query_.nodes, consider);
    } else {
        for (std::uint64_t rest = from.new_nodes; rest != 0; rest &= rest - 1) {
            consider(query_.nodes[Lowest_bit(rest)]);
        }
    }
    if (needed == 0) {
        return false;
    }
    // Behind the rarest shared node, itself included, there are all shared ones.
    std::uint32_t sharable = 0;
    query_.n_lists = query_.nodes.size();
    while (query_.n_lists > 0 && sharable < min_shared_) {
        --query_.n_lists;
        sharable += states_[query_.nodes[query_.n_lists]].holding_live > 0 ? 1U : 0U;
    }
    if (sharable < min_shared_) {
        return false;
    }
    ++query_.n_lists;
    query_.signature = {Signature_bits(query_.nodes), needed, min_shared_};
    query_.classes.clear();
    return true;
}

void Adjacent_cliques::Visit_adjacent(Adjacent_clique const& from,
                                      Flat_array<Adjacent_clique>& adjacent) {
    std::size_t const before = adjacent.size();
    if (!Is_visited(from.clique)) {
        Visit(from.clique);
        adjacent.push_back({from.clique, 0});
    }
    if (!Prepare_query(from)) {
        return;
    }
    std::span<Node const> const nodes = query_.nodes;
    for (std::size_t n = 0; n < nodes.size(); ++n) {
        mark_[nodes[n]] = static_cast<std::uint8_t>(std::min<std::size_t>(n + 1, last_mark));
    }
    // Everything that is looked at closely is asked for first: the cache misses overlap.
    candidates_.clear();
    for (std::size_t n = 0; n < query_.n_lists; ++n) {
        Scan_list(n);
    }
    candidates_.resize(Keep_possible(candidates_.data(), candidates_.size(), headers_.data(),
                                     ranked_.data(), headers_[from.clique].signature, min_shared_));
    for (Candidate const& candidate : candidates_) {
        Visit_if_adjacent(candidate, adjacent);
    }
    for (Node const node : nodes) {
        mark_[node] = 0;
    }
    std::sort(
        adjacent.begin() + before, adjacent.end(),
        [](Adjacent_clique const& a, Adjacent_clique const& b) { return a.clique < b.clique; });
}

} // namespace cpm
