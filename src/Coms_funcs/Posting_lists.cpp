// SPDX-License-Identifier: MIT
// Takes    the ranked cliques; at each level the least overlap.
// Leaves   candidates for adjacency: all cliques that are adjacent, and a few that are not.
// Order    none: entries move as visited cliques go to the end of their lists.
// Cost     12 bytes per clique member (4 in very long lists), up to 4 more for slices, 36 bytes per
//          node. Per level: one entry per clique, then the lists of the rarest nodes of each clique
//          that asks: a signature per entry, or a few bits where a list is long.
// Tested   Adjacent_cliques_test.cpp (against all pairs), Adjacent_cliques_room_test.cpp.
#include "Coms_funcs/Posting_lists.h"

#include <algorithm>
#include <bit>

namespace cpm {

namespace {

// Slicing a list costs as much as a few dozen scans, and pays for long lists.
constexpr std::uint32_t min_sliced_length = 512;
constexpr std::uint8_t scans_before_slicing = 32;
constexpr std::uint8_t header_scans_before_slicing = 4; // which cost several times as much
constexpr std::uint64_t slice_bytes_a_member = 4;
constexpr std::uint64_t min_slice_bytes = std::uint64_t{1} << 20;

// How many buckets of nodes the slices tell apart. With few buckets a large clique seems to hold
// many a node that it lacks.
std::size_t N_buckets(Ranked_cliques const& cliques) {
    constexpr std::uint64_t fewest = 128;
    constexpr std::uint64_t most = 1024;
    constexpr std::uint64_t buckets_a_member = 4;
    std::uint64_t const mean_size = cliques.Total() / std::max<std::size_t>(cliques.size(), 1);
    return std::bit_ceil(std::clamp(mean_size * buckets_a_member, fewest, most));
}

} // namespace

Posting_lists::Posting_lists(Ranked_cliques const& cliques, Visited_cliques const& visited,
                             std::uint32_t min_very_long)
    : cliques_(cliques), visited_(visited), states_(std::size_t{cliques.Number_of_nodes()} + 1),
      slices_(cliques.Total() * slice_bytes_a_member + min_slice_bytes, states_.size(),
              N_buckets(cliques)) {
    signatures_.Resize_uninitialised(Lay_out(min_very_long));
    listed_.Resize_uninitialised(cliques.Total());
    active_nodes_.Reserve(cliques.Number_of_nodes());
}

// Gives each list room for all cliques of its node, those without signatures after the others.
// Returns where these begin.
std::uint64_t Posting_lists::Lay_out(std::uint32_t min_very_long) {
    std::span<Clique_number const> const n_cliques = cliques_.N_cliques();
    std::uint64_t begin = 0;
    std::uint64_t begin_of_very_long = 0;
    for (bool const very_long_ones : {false, true}) {
        for (std::size_t node = 0; node < states_.size(); ++node) {
            if ((n_cliques[node] >= min_very_long) == very_long_ones) {
                states_[node].begin = begin;
                begin += n_cliques[node];
            }
        }
        begin_of_very_long = very_long_ones ? begin_of_very_long : begin;
    }
    return begin_of_very_long;
}

void Posting_lists::Clear() {
    for (Node_state& state : states_) {
        state = {.begin = state.begin};
    }
    active_nodes_.clear();
}

void Posting_lists::Activate(Clique_number clique) {
    for (Node const node : cliques_[clique]) {
        if (states_[node].n_active_cliques++ == 0) {
            active_nodes_.push_back(node);
        }
    }
}

// The prefix of a clique of n nodes ends, at an overlap of t, with the node that t - 1 others
// follow: so at t the node that has t nodes from itself on comes in.
void Posting_lists::List(Clique_number clique, std::uint32_t from, std::uint32_t to) {
    std::span<Node const> const nodes = cliques_[clique];
    auto const size = static_cast<std::uint32_t>(nodes.size());
    Signature const signature = Signature_of(nodes);
    for (std::uint32_t t = std::min(size, to - 1); t >= from; --t) {
        Node_state& state = states_[nodes[size - t]];
        std::uint64_t const place = state.begin + state.list_size++;
        if (place < signatures_.size()) {
            signatures_[place] = signature;
        }
        listed_[place] = clique;
    }
}

void Posting_lists::Start_level(std::uint32_t min_shared) {
    min_shared_ = min_shared;
    for (Node const node : active_nodes_) {
        Node_state& state = states_[node];
        state.unvisited_end = state.list_size;
        state.n_unvisited = state.list_size;
        state.n_unvisited_cliques = state.n_active_cliques;
        state.n_scans = 0;
    }
    slices_.Give_up_all();
}

void Posting_lists::Visit(Clique_number clique) {
    std::span<Node const> const nodes = cliques_[clique];
    for (std::size_t n = 0; n < nodes.size(); ++n) {
        Node_state& state = states_[nodes[n]];
        --state.n_unvisited_cliques;
        state.n_unvisited -= n + min_shared_ <= nodes.size() ? 1U : 0U;
    }
}

void Posting_lists::Scan_list(std::size_t n, Adjacency_query& query,
                              std::vector<Candidate>& candidates) {
    Node const node = query.nodes[n];
    Node_state& state = states_[node];
    Bit_slices* slices = slices_.Find(node);
    // Rarely enough that the cost of looking at each clique of the list does not count.
    if (state.n_unvisited <= state.unvisited_end / 4 * (slices != nullptr ? 2 : 3)) {
        Move_visited_back(state);
        slices = slices != nullptr ? Slice(node) : nullptr;
    }
    if (slices == nullptr && state.unvisited_end >= min_sliced_length) {
        if (state.n_scans <
            (Has_signatures(state) ? scans_before_slicing : header_scans_before_slicing)) {
            ++state.n_scans;
        } else {
            slices = Slice(node);
        }
    }
    if (slices != nullptr) {
        Scan_slices(*slices, n, query, candidates);
    } else if (Has_signatures(state)) {
        Scan_signatures(n, query, candidates);
    } else {
        Scan_headers(n, query, candidates);
    }
}

void Posting_lists::Scan_signatures(std::size_t n, Adjacency_query const& query,
                                    std::vector<Candidate>& candidates) {
    Node_state& state = states_[query.nodes[n]];
    hits_.resize(std::max<std::size_t>(hits_.size(), state.unvisited_end + scan_slack));
    std::size_t const n_hits =
        scan_(signatures_.data() + state.begin, state.unvisited_end, query.signature, hits_.data());
    // From the back, as moving an entry back puts the last one into its place.
    for (std::size_t i = n_hits; i > 0; --i) {
        Clique_number const clique = listed_[state.begin + hits_[i - 1]];
        if (visited_[clique]) {
            Move_back(state, hits_[i - 1]);
        } else {
            cliques_.Prefetch_header(clique);
            candidates.push_back({clique, static_cast<std::uint32_t>(n)});
        }
    }
}

void Posting_lists::Scan_headers(std::size_t n, Adjacency_query const& query,
                                 std::vector<Candidate>& candidates) {
    constexpr std::uint32_t ahead = 16;
    Node_state& state = states_[query.nodes[n]];
    Clique_number const* const listed = listed_.data() + state.begin;
    Clique_header const* const headers = cliques_.Headers();
    Wide_signature const needed = Wide_signature_of(query.needed_nodes);
    // From the back, as moving an entry back puts the last one into its place.
    for (std::uint32_t place = state.unvisited_end; place > 0; --place) {
        if (place > ahead) {
            cliques_.Prefetch_header(listed[place - 1 - ahead]);
        }
        Clique_number const clique = listed[place - 1];
        if (visited_[clique]) {
            Move_back(state, place - 1);
        } else if (Meet(headers[clique].signature, needed)) {
            candidates.push_back({clique, static_cast<std::uint32_t>(n)});
        }
    }
}

// An adjacent clique is looked for at the rarest node that it shares alone: here those that lack
// the n nodes before this one.
void Posting_lists::Scan_slices(Bit_slices& slices, std::size_t n, Adjacency_query& query,
                                std::vector<Candidate>& candidates) {
    if (query.buckets.empty()) {
        Translate(query.nodes, query.buckets);
        Translate(query.needed_nodes, query.needed);
    }
    std::span<Node_bucket const> const buckets = query.buckets;
    std::uint64_t const begin = states_[query.nodes[n]].begin;
    auto const max_missing = static_cast<std::uint32_t>(query.nodes.size() - min_shared_ - n);
    hits_.clear();
    slices.Scan({buckets.subspan(n + 1), query.needed, max_missing}, hits_);
    for (std::uint32_t const hit : hits_) {
        Clique_number const clique = listed_[begin + hit];
        if (visited_[clique]) {
            slices.Close(hit);
        } else {
            cliques_.Prefetch_header(clique);
            candidates.push_back({clique, static_cast<std::uint32_t>(n)});
        }
    }
}

// Nodes that occur together should be in different buckets. The last cliques are those of the nodes
// with most neighbours, where the most cliques overlap: numbered as they occur from there, the
// nodes of one dense region get numbers in a row.
void Posting_lists::Bucket_nodes() {
    bucket_.Resize(states_.size());
    Flat_array<std::uint8_t> numbered(bucket_.size(), 0);
    std::size_t next = 0;
    for (std::size_t c = cliques_.size(); c-- > 0;) {
        for (Node const node : cliques_[static_cast<Clique_number>(c)]) {
            if (numbered[node] == 0) {
                numbered[node] = 1;
                bucket_[node] = static_cast<Node_bucket>(next++ % slices_.N_buckets());
            }
        }
    }
}

void Posting_lists::Translate(std::span<Node const> nodes,
                              std::vector<Node_bucket>& buckets) const {
    buckets.clear();
    for (Node const node : nodes) {
        buckets.push_back(bucket_[node]);
    }
}

// Null when there is no room: then all slices make room, and lists scanned often get theirs again.
Bit_slices* Posting_lists::Slice(Node node) {
    if (bucket_.empty()) {
        Bucket_nodes(); // most networks never come here
    }
    std::uint32_t const length = states_[node].unvisited_end;
    Bit_slices* const slices = slices_.Begin(node, length);
    if (slices == nullptr) {
        slices_.Give_up_all();
        for (Node const other : active_nodes_) {
            states_[other].n_scans = 0;
        }
        return nullptr;
    }
    Clique_number const* const cliques = listed_.data() + states_[node].begin;
    constexpr std::uint32_t ahead = 8;
    for (std::uint32_t i = 0; i < length; ++i) {
        if (i + 2 * ahead < length) {
            cliques_.Prefetch_header(cliques[i + 2 * ahead]);
            cliques_.Prefetch_nodes(cliques[i + ahead]);
        }
        for (Node const member : cliques_[cliques[i]]) {
            slices->Add(i, bucket_[member]);
        }
    }
    return slices;
}

void Posting_lists::Move_back(Node_state& state, std::uint32_t place) {
    std::uint64_t const here = state.begin + place;
    std::uint64_t const last = state.begin + --state.unvisited_end;
    if (Has_signatures(state)) {
        std::swap(signatures_[here], signatures_[last]);
    }
    std::swap(listed_[here], listed_[last]);
}

void Posting_lists::Move_visited_back(Node_state& state) {
    for (std::uint32_t place = state.unvisited_end; place > 0; --place) {
        if (visited_[listed_[state.begin + place - 1]]) {
            Move_back(state, place - 1);
        }
    }
}

} // namespace cpm
