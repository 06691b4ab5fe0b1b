// SPDX-License-Identifier: MIT
// How long a chain of parts takes on several threads.
#ifndef PLEXOR_MAKESPAN_H
#define PLEXOR_MAKESPAN_H

#include <algorithm>
#include <cstddef>
#include <vector>

namespace cpm::bench {

/// When the last part is joined, in the unit of the times, which begin at 0. A thread takes the
/// next part when it is free, for alone(part); parts are joined in their order, one at a time and
/// for `part.join`, by nobody of these.
template <class Part, class Alone>
double Makespan(std::vector<Part> const& parts, std::size_t n_threads, Alone const& alone) {
    std::vector<double> free(n_threads, 0.0);
    double joined = 0;
    for (Part const& part : parts) {
        auto const thread = std::ranges::min_element(free);
        *thread += alone(part);
        joined = std::max(joined, *thread) + part.join;
    }
    return joined;
}

} // namespace cpm::bench

#endif
