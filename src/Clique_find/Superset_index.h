// SPDX-License-Identifier: MIT
// Superset_index: finds in a list of sets those that hold a given set, by way of the lists of the
// sets at each node. What a question costs depends on the rarest node asked for, not on how many
// sets there are.
#ifndef PLEXOR_SUPERSET_INDEX_H
#define PLEXOR_SUPERSET_INDEX_H

#include "graph/Types.h"
#include "support/Grouping.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace cpm {

class Superset_index {
public:
    /// Of the list, which must outlive the index and stay as it is. With `asked`, a flag a node,
    /// only sets of nodes with a true flag can be asked for, and memory is spent on these alone.
    explicit Superset_index(Set_list const& sets, std::vector<bool> const* asked = nullptr);

    /// Calls `visit(i)` for the sets i that hold all of `part`, ascending, until it returns true.
    /// Returns whether it did.
    template <class Visit> bool Any_superset(Node_set part, Visit visit) const {
        if (part.empty()) {
            for (std::uint32_t i = 0; i < sets_.size(); ++i) {
                if (visit(i)) {
                    return true;
                }
            }
            return false;
        }
        Signature const signature = Signature_of(part);
        for (std::uint32_t const i : Sets_of_rarest(part)) {
            if ((signature & ~signatures_[i]) == 0 && Holds(sets_[i], part) && visit(i)) {
                return true;
            }
        }
        return false;
    }
    /// Whether some set i of which `counts(i)` is true holds all of `part`, which has nodes. It is
    /// asked for before a set is looked at: it should be quick.
    template <class Counts> bool Any_superset_among(Node_set part, Counts const& counts) const {
        Signature const signature = Signature_of(part);
        std::span<std::uint32_t const> const sets = Sets_of_rarest(part);
        return std::any_of(sets.begin(), sets.end(), [&](std::uint32_t i) {
            return (signature & ~signatures_[i]) == 0 && counts(i) && Holds(sets_[i], part);
        });
    }
    /// Whether some set holds all of `part`.
    bool Any_superset(Node_set part) const {
        return Any_superset(part, [](std::uint32_t) { return true; });
    }

private:
    // One bit of 64 for each node: a set without one of the bits of a part cannot hold the part.
    using Signature = std::uint64_t;

    static Signature Signature_of(Node_set set);
    static bool Holds(Node_set set, Node_set part);
    std::span<std::uint32_t const> Sets_of_rarest(Node_set part) const;

    Set_list const& sets_;
    Flat_array<Signature> signatures_;
    Groups<std::uint32_t> sets_at_; ///< node -> the sets with it
};

} // namespace cpm

#endif
