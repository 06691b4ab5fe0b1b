// SPDX-License-Identifier: MIT
// Clique_holders: which cliques hold some nodes. A row of bits per node, one bit per clique.
#ifndef PLEXOR_INVARIANTS_CLIQUE_HOLDERS_H
#define PLEXOR_INVARIANTS_CLIQUE_HOLDERS_H

#include "Result_files.h"

#include <bit>
#include <cstdint>
#include <vector>

namespace cpm::invariants {

class Clique_holders {
public:
    /// The cliques must outlive this.
    Clique_holders(std::vector<Node_record> const& cliques, Node n_nodes)
        : n_cliques_(cliques.size()), n_words_(cliques.size() / 64 + 1),
          bits_((n_nodes + std::size_t{1}) * n_words_), of_node_(n_nodes + std::size_t{1}),
          cliques_(cliques) {
        for (std::size_t clique = 0; clique < cliques.size(); ++clique) {
            for (Node const node : cliques[clique].nodes) {
                bits_[node * n_words_ + clique / 64] |= std::uint64_t{1} << (clique % 64);
                of_node_[node].push_back(static_cast<std::uint32_t>(clique));
            }
        }
    }

    Nodes const& Nodes_of(std::size_t clique) const { return cliques_[clique].nodes; }
    /// Ascending.
    std::vector<std::uint32_t> const& Of(Node node) const { return of_node_[node]; }

    /// Hands out the cliques that hold all the nodes, ascending, as long as `take` gives true.
    template <class Take> void For_each_of_all(Nodes const& nodes, Take const& take) const {
        for (std::size_t w = 0; w < n_words_; ++w) {
            std::uint64_t word = ~std::uint64_t{0};
            for (std::size_t n = 0; n < nodes.size() && word != 0; ++n) {
                word &= bits_[nodes[n] * n_words_ + w];
            }
            for (; word != 0; word &= word - 1) {
                std::size_t const clique =
                    w * 64 + static_cast<std::size_t>(std::countr_zero(word));
                if (clique >= n_cliques_ || !take(clique)) { // bits after the last: no nodes given
                    return;
                }
            }
        }
    }

    /// Whether one of the first `end` cliques holds all the nodes.
    bool Any_of_first(std::size_t end, Nodes const& nodes) const {
        bool found = false;
        For_each_of_all(nodes, [&](std::size_t clique) {
            found = clique < end;
            return false;
        });
        return found;
    }

private:
    std::size_t n_cliques_;
    std::size_t n_words_;
    std::vector<std::uint64_t> bits_;
    std::vector<std::vector<std::uint32_t>> of_node_;
    std::vector<Node_record> const& cliques_;
};

} // namespace cpm::invariants

#endif
