// SPDX-License-Identifier: MIT
#include "graph/Link_order.h"

#include "support/Grouping.h"

namespace cpm {

namespace {

// A counting sort, stable, by one end of the pairs.
void Sort_by(Node Node_pair::*end, Flat_array<Node_pair>& pairs, Flat_array<double>& weights,
             Node n_values) {
    Flat_array<std::uint64_t> place(n_values, 0);
    for (Node_pair const& pair : pairs) {
        ++place[pair.*end];
    }
    Counts_to_begins(place);
    Flat_array<Node_pair> sorted;
    sorted.Resize_uninitialised(pairs.size());
    Flat_array<double> sorted_weights;
    sorted_weights.Resize_uninitialised(weights.size());
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        std::uint64_t const to = place[pairs[i].*end]++;
        sorted[to] = pairs[i];
        if (!weights.empty()) {
            sorted_weights[to] = weights[i];
        }
    }
    pairs.Swap(sorted);
    weights.Swap(sorted_weights);
}

} // namespace

void Sort_and_merge(Flat_array<Node_pair>& pairs, Flat_array<double>& weights, Node n_values) {
    Sort_by(&Node_pair::second, pairs, weights, n_values);
    Sort_by(&Node_pair::first, pairs, weights, n_values);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        bool const repeat = kept > 0 && pairs[kept - 1] == pairs[i];
        if (!repeat) {
            pairs[kept++] = pairs[i];
        }
        if (!weights.empty()) {
            double const sum_so_far = repeat ? weights[kept - 1] : 0.0;
            weights[kept - 1] = sum_so_far + weights[i];
        }
    }
    pairs.Resize_uninitialised(kept);
    pairs.Shrink_to_fit();
    if (!weights.empty()) {
        weights.Resize_uninitialised(kept);
        weights.Shrink_to_fit();
    }
}

} // namespace cpm
