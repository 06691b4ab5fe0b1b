// SPDX-License-Identifier: MIT
// Between the engine's values and the arrays of Access.h.
#ifndef PLEXOR_PYTHON_ENGINE_VALUES_H
#define PLEXOR_PYTHON_ENGINE_VALUES_H

#include "Access.h"

#include "graph/Types.h"
#include "support/Errors.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace plexor_access {

/// Copies lists, `by` taken from each member. The engine's nodes begin at 1, and its offsets have
/// no sign.
template <class List> Lists Shifted(List const& lists, Number by) {
    std::vector<Number> members(lists.Flat().begin(), lists.Flat().end());
    for (Number& member : members) {
        member -= by;
    }
    std::uint64_t const* const starts = lists.Starts();
    std::vector<Integer> offsets(starts, starts + lists.size() + 1);
    return {Array(std::move(members)), Array(std::move(offsets))};
}

/// The links that the question leaves, sorted and merged.
void Select(cpm::Link_map& selected, Links_in const& links, Question const& question);

/// What the engine has thrown, as an error of this side.
[[noreturn]] void Throw(cpm::Xerror_msg const& error);

} // namespace plexor_access

#endif
