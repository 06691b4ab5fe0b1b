// SPDX-License-Identifier: MIT
// Clique_limit: how many cliques a search may list.
#ifndef PLEXOR_CLIQUE_LIMIT_H
#define PLEXOR_CLIQUE_LIMIT_H

#include "graph/Types.h"
#include "support/Errors.h"

#include <cstddef>
#include <limits>
#include <string>

namespace cpm {

/// The numbers of cliques have 32 bits, and many tables hold 1 + a number.
inline constexpr std::size_t max_n_cliques = std::numeric_limits<Clique_number>::max();

/// Throws Too_large when there are more than `max` cliques.
inline void Check_n_cliques(std::size_t n_cliques, std::size_t max = max_n_cliques) {
    if (n_cliques > max) {
        throw Too_large("ERROR: the network has more than " + std::to_string(max) + " cliques.");
    }
}

} // namespace cpm

#endif
