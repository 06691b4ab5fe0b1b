// SPDX-License-Identifier: MIT
// Edge_numbering: numbers every pair of nodes that can be a link of a community, so that sets of
// links are sets of numbers: ascending numbers are ascending pairs, and no map of pairs is ever
// needed.
#ifndef PLEXOR_EDGE_NUMBERING_H
#define PLEXOR_EDGE_NUMBERING_H

#include "graph/Types.h"

#include <cassert>
#include <vector>

namespace cpm {

class Edge_numbering {
public:
    Edge_numbering() = default;
    /// The pairs of the links, without their direction, and the pairs inside the cliques from
    /// position `n_exact` on: an approximated clique may hold nodes that are not linked.
    /// Throws Xerror_msg when there are more pairs than Link_number can tell apart.
    Edge_numbering(Index_links const& links, Node n_nodes, Set_list const& cliques,
                   std::size_t n_exact);

    std::size_t size() const { return larger_.size(); }
    /// The larger ends of the pairs whose smaller end is `first`, ascending.
    Node_set Larger_neighbours(Node first) const {
        return {larger_.data() + offsets_[first],
                static_cast<std::size_t>(offsets_[first + 1] - offsets_[first])};
    }
    /// The larger end of the pair of this number.
    Node Larger_end(Link_number number) const { return larger_[number]; }
    /// The number of the first pair whose smaller end is `first`; the others follow.
    Link_number First_number(Node first) const { return offsets_[first]; }
    /// The number of a pair that the table holds, given in either order.
    Link_number Number(Node a, Node b) const {
        // A binary search without branches to mispredict: the pair is there.
        assert(a != b);
        Node const first = std::min(a, b);
        Node const second = std::max(a, b);
        Node const* row = larger_.data() + offsets_[first];
        std::size_t size = offsets_[first + 1] - offsets_[first];
        while (size > 1) {
            std::size_t const half = size / 2;
            row += row[half] <= second ? half : 0;
            size -= half;
        }
        assert(*row == second);
        return static_cast<Link_number>(row - larger_.data());
    }
    /// Appends the numbers of the pairs of the node with each of the others, which are larger and
    /// ascending, to `numbers`. The table holds these pairs.
    void Append_numbers(Node first, Node_set others, std::vector<Link_number>& numbers) const;
    /// Every smaller end is below this node.
    Node Smaller_ends_end() const {
        return static_cast<Node>(offsets_.empty() ? 0 : offsets_.size() - 1);
    }

private:
    Flat_array<Node> larger_;
    Flat_array<Link_number> offsets_; ///< by smaller end, 0 to n_nodes + 1
};

} // namespace cpm

#endif
