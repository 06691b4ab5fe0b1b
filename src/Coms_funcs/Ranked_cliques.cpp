// SPDX-License-Identifier: MIT
// Takes    the clique list.
// Leaves   it ranked: the order of a clique's nodes is by how many cliques hold them, then by node.
// Cost     36 bytes per clique beside the members, 4 bytes per node; a sort of each clique's nodes.
// Tested   Adjacent_cliques_test.cpp.
#include "Coms_funcs/Ranked_cliques.h"

#include <algorithm>

namespace cpm {

namespace {

std::size_t Largest(Set_list const& cliques) {
    std::size_t largest = 0;
    for (std::size_t c = 0; c < cliques.size(); ++c) {
        largest = std::max(largest, cliques[c].size());
    }
    return largest;
}

} // namespace

Wide_signature Wide_signature_of(std::span<Node const> nodes) {
    Wide_signature signature{};
    for (Node const node : nodes) {
        std::uint64_t const bit = std::uint64_t{node * 0x85EBCA77U} * (signature.size() * 64) >> 32;
        signature[bit / 64] |= std::uint64_t{1} << (bit % 64);
    }
    return signature;
}

Ranked_cliques::Ranked_cliques(Set_list const& cliques, Node n_nodes)
    : n_cliques_(std::size_t{n_nodes} + 1, 0) {
    for (Node const node : cliques.Flat()) {
        ++n_cliques_[node];
    }
    by_size_ = Groups<Clique_number>(
        cliques.size(), Largest(cliques) + 1, [&](std::size_t c) { return cliques[c].size(); },
        [](std::size_t c) { return c; });
    headers_.Reserve(cliques.size() + 1);
    for (std::size_t c = 0; c < cliques.size(); ++c) {
        headers_.push_back({Wide_signature_of(cliques[c]), cliques.Starts()[c]});
    }
    headers_.push_back({{}, cliques.Total()});
    // A copy, in large pages: the list of a search grew in small ones, and here its members are
    // looked at in any order. The index over them takes more memory later.
    ranked_.Append(cliques.Flat());
    for (std::size_t c = 0; c < size(); ++c) {
        std::sort(ranked_.begin() + headers_[c].begin, ranked_.begin() + headers_[c + 1].begin,
                  [&](Node a, Node b) {
                      return n_cliques_[a] != n_cliques_[b] ? n_cliques_[a] < n_cliques_[b] : a < b;
                  });
    }
}

} // namespace cpm
