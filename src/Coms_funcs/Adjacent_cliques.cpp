// SPDX-License-Identifier: MIT
// Takes    the ranked cliques; at each level the least overlap.
// Leaves   the unvisited cliques adjacent to one clique after the other, each visited once.
// Order    adjacent cliques ascending.
// Cost     per level: see Posting_lists; beside these two bits per clique and a byte per node.
// Tested   Adjacent_cliques_test.cpp (against all pairs), the runs against the plain model.
#include "Coms_funcs/Adjacent_cliques.h"

#include "support/Cpu_dispatch.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <limits>

namespace cpm {

namespace {

constexpr std::uint32_t mask_bits = 64;
constexpr std::uint8_t last_mark = 255;
constexpr std::uint64_t nodes_a_line = 64 / sizeof(Node);

// Nodes that the bits tell apart are different: a lower bound of the nodes that `in` lacks.
inline std::uint64_t Missing(Wide_signature const& of, Wide_signature const& in) {
    int missing = 0;
    for (std::size_t w = 0; w < of.size(); ++w) {
        missing += std::popcount(of[w] & ~in[w]);
    }
    return static_cast<std::uint64_t>(missing);
}

// Keeps those of the cliques that can share `min_shared` nodes with the one of this signature, and
// fetches the nodes of these; returns how many are kept.
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

} // namespace

Adjacent_cliques::Adjacent_cliques(Ranked_cliques const& cliques, std::uint32_t min_very_long)
    : cliques_(cliques), visited_(cliques.size()), lists_(cliques, visited_, min_very_long),
      mark_(std::size_t{cliques.Number_of_nodes()} + 1, 0) {}

// Invariant: the active cliques are those of min_size_ nodes or more, each listed under its prefix
//            for an overlap of min_shared_.
void Adjacent_cliques::Start_level(std::uint32_t min_shared, std::uint32_t min_size) {
    assert(0 < min_shared && min_shared <= min_size);
    constexpr std::uint32_t beyond_all = std::numeric_limits<std::uint32_t>::max();
    bool const afresh = min_shared_ == 0 || min_shared > min_shared_ || min_size > min_size_;
    if (afresh) {
        visited_.Deactivate_all();
        lists_.Clear();
    }
    std::size_t const next_size = afresh ? cliques_.Largest_size() + 1 : min_size_;
    // Ascending, as they lie in memory.
    visited_.For_each_active(
        [&](Clique_number clique) { lists_.List(clique, min_shared, min_shared_); });
    for (std::size_t size = std::min(next_size, cliques_.Largest_size() + 1); size-- > min_size;) {
        for (Clique_number const clique : cliques_.Of_size(size)) {
            visited_.Activate(clique);
            lists_.Activate(clique);
            lists_.List(clique, min_shared, beyond_all);
        }
    }
    min_shared_ = min_shared;
    min_size_ = min_size;
    visited_.Start_level();
    lists_.Start_level(min_shared);
}

void Adjacent_cliques::Visit(Clique_number clique) {
    visited_.Visit(clique);
    lists_.Visit(clique);
}

// Sets up what the clique asks. False when nothing is adjacent: no unvisited clique holds one of
// its new nodes, or too few of its nodes are in unvisited cliques at all. This spares most scans.
bool Adjacent_cliques::Prepare_query(Adjacent_clique const& from) {
    query_.nodes = cliques_[from.clique];
    query_.needed_nodes.clear();
    Signature needed = 0;
    auto const consider = [&](Node node) {
        if (lists_.In_unvisited(node)) {
            needed |= Signature_bit(node);
            query_.needed_nodes.push_back(node);
        }
    };
    if (from.new_nodes == all_new) {
        std::ranges::for_each(query_.nodes, consider);
    } else {
        For_each_bit(from.new_nodes, [&](std::size_t n) { consider(query_.nodes[n]); });
    }
    if (needed == 0) {
        return false;
    }
    // From the rarest shared node on, itself included, there are all shared ones.
    std::uint32_t sharable = 0;
    query_.n_lists = query_.nodes.size();
    while (query_.n_lists > 0 && sharable < min_shared_) {
        --query_.n_lists;
        sharable += lists_.In_unvisited(query_.nodes[query_.n_lists]) ? 1U : 0U;
    }
    if (sharable < min_shared_) {
        return false;
    }
    ++query_.n_lists;
    query_.signature = {Signature_bits(query_.nodes), needed, min_shared_};
    query_.buckets.clear();
    return true;
}

void Adjacent_cliques::Visit_if_adjacent(Candidate const& candidate,
                                         Flat_array<Adjacent_clique>& adjacent) {
    Clique_number const clique = candidate.clique;
    if (visited_[clique]) {
        return;
    }
    std::span<Node const> const nodes = cliques_[clique];
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

void Adjacent_cliques::Visit_adjacent(Adjacent_clique const& from,
                                      Flat_array<Adjacent_clique>& adjacent) {
    assert(min_shared_ > 0 && from.clique < cliques_.size());
    std::size_t const before = adjacent.size();
    if (!visited_[from.clique]) {
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
        lists_.Scan(n, query_, candidates_);
    }
    Clique_header const* const headers = cliques_.Headers();
    candidates_.resize(Keep_possible(candidates_.data(), candidates_.size(), headers,
                                     cliques_.Flat().data(), headers[from.clique].signature,
                                     min_shared_));
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
