// SPDX-License-Identifier: MIT
// Known_cliques: tells soon that a node has nothing new, where one clique holds all around it.
#ifndef PLEXOR_KNOWN_CLIQUES_H
#define PLEXOR_KNOWN_CLIQUES_H

#include "graph/Types.h"

#include <algorithm>

namespace cpm {

class Known_cliques {
public:
    /// Nodes have indices up to `n_nodes`.
    explicit Known_cliques(std::size_t n_nodes) : last_(n_nodes + 1, 0) {}

    /// Remembers those of the cliques from number `first` on that are at least twice as large as
    /// what is remembered with some member: no more than four members for each link of the network
    /// are kept in all.
    void Add(Set_list const& cliques, std::size_t first) {
        for (std::size_t i = first; i < cliques.size(); ++i) {
            Node_set const clique = cliques[i];
            if (std::ranges::any_of(
                    clique, [&](Node member) { return 2 * Size_at(member) <= clique.size(); })) {
                kept_.Add(clique);
                for (Node const member : clique) {
                    if (Size_at(member) < clique.size()) {
                        last_[member] = static_cast<std::uint32_t>(kept_.size());
                    }
                }
            }
        }
    }

    /// Whether the clique remembered with the node holds all of `others`. Then every clique of the
    /// node and some of these lies in it: comparing them with each other, which takes the square of
    /// their number, would find nothing else.
    bool One_holds_all(Node node, Node_set others) const {
        return Size_at(node) > others.size() &&
               std::ranges::includes(kept_[last_[node] - 1], others);
    }

private:
    std::size_t Size_at(Node node) const {
        return last_[node] == 0 ? 0 : kept_[last_[node] - 1].size();
    }

    Set_list kept_;
    Flat_array<std::uint32_t> last_; ///< node -> 1 + the number of a large clique with it, or 0
};

} // namespace cpm

#endif
