// SPDX-License-Identifier: MIT
// Known_cliques: tells soon that a node has nothing new, where one clique holds all around it.
#ifndef PLEXOR_KNOWN_CLIQUES_H
#define PLEXOR_KNOWN_CLIQUES_H

#include "graph/Types.h"

#include <algorithm>

namespace cpm {

class Known_cliques {
public:
    /// The list must outlive this. Nodes have indices up to `n_nodes`.
    Known_cliques(Set_list const& cliques, std::size_t n_nodes)
        : cliques_(cliques), largest_(n_nodes + 1, 0) {}

    /// Cliques may have been appended to the list.
    void Update() {
        for (; n_seen_ < cliques_.size(); ++n_seen_) {
            for (Node const member : cliques_[n_seen_]) {
                std::uint32_t& largest = largest_[member];
                if (largest == 0 || cliques_[largest - 1].size() < cliques_[n_seen_].size()) {
                    largest = static_cast<std::uint32_t>(n_seen_ + 1);
                }
            }
        }
    }

    /// Whether the largest listed clique with the node holds all of `others`. Then every clique of
    /// the node and some of these lies in it: comparing them with each other, which takes the
    /// square of their number, would find nothing else.
    bool One_holds_all(Node node, Node_set others) const {
        if (largest_[node] == 0) {
            return false;
        }
        Node_set const clique = cliques_[largest_[node] - 1];
        return clique.size() > others.size() && std::ranges::includes(clique, others);
    }

private:
    Set_list const& cliques_;
    Flat_array<std::uint32_t> largest_; ///< node -> 1 + the number of its largest clique, or 0
    std::size_t n_seen_ = 0;            ///< so many cliques are in largest_
};

} // namespace cpm

#endif
