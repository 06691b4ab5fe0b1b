// SPDX-License-Identifier: MIT
// Ranked_cliques: the clique list with the nodes of each clique ranked rarest first (a node is rare
// when few cliques hold it), and what is known of a clique without its nodes. Const once built: all
// levels and all threads share one. It holds a copy of the list, which a run gives back as soon as
// it is ranked: of a large network's cliques there is no room for two beside the index.
#ifndef PLEXOR_RANKED_CLIQUES_H
#define PLEXOR_RANKED_CLIQUES_H

#include "graph/Types.h"
#include "support/Grouping.h"

#include <array>
#include <cstdint>
#include <span>

namespace cpm {

/// A clique that another one has led to.
struct Adjacent_clique {
    Clique_number clique = 0;
    /// Which nodes of the clique the other one does not hold: bit i stands for the i-th rarest.
    /// All bits set when the clique has more nodes than bits, or nothing is known; no bit set when
    /// it is that clique itself.
    std::uint64_t new_nodes = 0;
};
inline constexpr std::uint64_t all_new = ~std::uint64_t{0};

/// A bit for each node of a set; several nodes may share one.
using Wide_signature = std::array<std::uint64_t, 3>;

Wide_signature Wide_signature_of(std::span<Node const> nodes);

/// Whether the two sets may have a node in common.
inline bool Meet(Wide_signature const& a, Wide_signature const& b) {
    std::uint64_t common = 0;
    for (std::size_t w = 0; w < a.size(); ++w) {
        common |= a[w] & b[w];
    }
    return common != 0;
}

/// Half a cache line.
struct Clique_header {
    Wide_signature signature{};
    std::uint64_t begin = 0; ///< its first node among those of all cliques, one after the other
};

class Ranked_cliques {
public:
    Ranked_cliques(Set_list const& cliques, Node n_nodes);

    std::size_t size() const { return headers_.size() - 1; }
    Node Number_of_nodes() const { return static_cast<Node>(n_cliques_.size() - 1); }
    /// How many cliques hold each node.
    std::span<Clique_number const> N_cliques() const {
        return {n_cliques_.data(), n_cliques_.size()};
    }
    /// The nodes of all cliques together.
    std::uint64_t Total() const { return ranked_.size(); }

    /// The clique's nodes, rarest first.
    std::span<Node const> operator[](Clique_number clique) const {
        return {ranked_.data() + headers_[clique].begin,
                ranked_.data() + headers_[clique + 1].begin};
    }
    /// That of each clique, and one more, which tells where the nodes of the last one end.
    Clique_header const* Headers() const { return headers_.data(); }
    /// The ranked nodes of all cliques, one clique after the other.
    std::span<Node const> Flat() const { return {ranked_.data(), ranked_.size()}; }

    std::size_t Largest_size() const { return by_size_.size() - 1; }
    /// The cliques of so many nodes, ascending.
    std::span<Clique_number const> Of_size(std::size_t size) const { return by_size_[size]; }

    /// Fetches the memory that a query from this clique begins with; in two steps, the first for a
    /// clique whose turn comes later than that of the second.
    void Prefetch_header(Clique_number clique) const { __builtin_prefetch(&headers_[clique]); }
    void Prefetch_nodes(Clique_number clique) const { __builtin_prefetch((*this)[clique].data()); }

private:
    Flat_array<Clique_number> n_cliques_; ///< by node, 0 to the number of nodes
    Flat_array<Node> ranked_;
    Flat_array<Clique_header> headers_;
    Groups<Clique_number> by_size_;
};

} // namespace cpm

#endif
