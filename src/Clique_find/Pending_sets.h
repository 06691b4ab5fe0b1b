// SPDX-License-Identifier: MIT
// Pending_sets: what is kept of the attempts that have overrun, until it is known which nodes are
// given up.
#ifndef PLEXOR_PENDING_SETS_H
#define PLEXOR_PENDING_SETS_H

#include "graph/Types.h"
#include "support/Hash_slots.h"
#include "support/Progress.h"

#include <cstdint>
#include <vector>

namespace cpm {

/// What the sets kept of all attempts that have overrun may take: their members, and what tells
/// them apart. When it is full, attempts end as if their time had been up. Only sets of three nodes
/// are always kept: up to the first look at the clock nothing else is found.
constexpr std::size_t max_bytes_pending = std::size_t{1} << 29;

/// The sets found at nodes that took too long, each once.
class Pending_sets {
public:
    explicit Pending_sets(std::size_t n_nodes, std::size_t max_bytes = max_bytes_pending)
        : done_(n_nodes + 1, false), max_bytes_(max_bytes) {}

    /// Takes the sets from the first on, as many as there is room for.
    void Add(Set_list const& found);
    /// All cliques with the node are known: sets with it need not be kept.
    void Done(Node node) {
        done_[node] = true;
        ++n_done_;
    }
    /// Appends the sets without a done node that lie in no clique before them, ascending. The
    /// cliques are those of the done nodes.
    void Register(Set_list& cliques, Progress& progress);

    /// What is kept; sets with nodes done later may still be there.
    Set_list const& Sets() const { return sets_; }
    std::size_t Bytes() const { return sets_.Total() * sizeof(Node) + sets_.size() * bytes_a_set; }

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t number = 0; ///< 1 + that of a set, or 0
        bool Used() const { return number != 0; }
    };
    // Its end, and up to four slots.
    static constexpr std::size_t bytes_a_set = sizeof(std::uint64_t) + 4 * sizeof(Slot);

    bool Has_room(Node_set set);
    bool Is_new(Node_set set, std::size_t number);
    void Drop_done();

    Set_list sets_;
    Hash_slots<Slot> slots_;
    std::vector<bool> done_;
    std::size_t n_done_ = 0;
    std::size_t n_dropped_for_room_ = 0; ///< n_done_ when sets were dropped to make room
    std::size_t max_bytes_;
    std::size_t bytes_to_drop_at_ = std::size_t{1}
                                    << 24; ///< when sets of done nodes are looked for
};

} // namespace cpm

#endif
