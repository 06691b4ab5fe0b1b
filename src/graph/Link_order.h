// SPDX-License-Identifier: MIT
// Puts links into their order, in time proportional to their number.
#ifndef PLEXOR_LINK_ORDER_H
#define PLEXOR_LINK_ORDER_H

#include "graph/Types.h"

namespace cpm {

/// Sorts pairs of numbers below `n_values` by (first, second), weights (one per pair, or none)
/// with them, and merges equal pairs. Equal pairs keep their order until then: a merged weight is
/// 0 plus their weights in that order, which fixes every bit of the sum.
void Sort_and_merge(Flat_array<Node_pair>& pairs, Flat_array<double>& weights, Node n_values);

} // namespace cpm

#endif
