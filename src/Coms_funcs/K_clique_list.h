// SPDX-License-Identifier: MIT
// K_clique_list: the k-cliques of one k, sorted in place, so that repeats can be dropped on the
// way.
#ifndef PLEXOR_K_CLIQUE_LIST_H
#define PLEXOR_K_CLIQUE_LIST_H

#include "graph/Types.h"

#include <cstddef>
#include <cstdint>

namespace cpm {

/// Sets of k nodes, one after the other in one array; a set's number is its position.
class K_clique_list {
public:
    K_clique_list() = default;
    /// An empty list of sets of `k` nodes.
    explicit K_clique_list(std::uint32_t k) : k_(k) {}

    std::uint32_t K() const { return k_; }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    Node_set operator[](std::size_t i) const { return {members_.data() + i * k_, k_}; }

    /// Adds a set of k nodes, which may be in the list already. Sets that are there twice are
    /// dropped now and then, so that the list never needs more than twice its room.
    void Add(Node_set k_clique) {
        if (size_ == next_unite_) {
            Sort_and_unite();
        }
        members_.Append(k_clique);
        ++size_;
    }
    /// Puts the sets into lexicographic order, each once, and gives back the room not needed. To be
    /// called when all have been added; until then their numbers mean nothing.
    void Finish();

private:
    void Sort_and_unite();

    static constexpr std::size_t min_worth_uniting = std::size_t{1} << 16;

    std::uint32_t k_ = 0;
    std::size_t size_ = 0;
    std::size_t next_unite_ = min_worth_uniting; ///< the size at which repeats are dropped
    Flat_array<Node> members_;
};

} // namespace cpm

#endif
