// SPDX-License-Identifier: MIT
#include "Clique_find/Circles.h"

#include <vector>

namespace cpm {

// What no link leads to is on no circle: it is taken away with its links, again and again.
bool Close_a_circle(std::span<One_way_link const> links, std::size_t n) {
    if (links.empty()) {
        return false;
    }
    std::vector<std::uint32_t> incoming(n, 0);
    std::vector<std::uint32_t> ends(n + 1, 0); // of each one's part of `targets`, once it is filled
    for (One_way_link const& link : links) {
        ++incoming[link.second];
        ++ends[link.first + 1];
    }
    for (std::size_t i = 1; i <= n; ++i) {
        ends[i] += ends[i - 1];
    }
    std::vector<std::uint32_t> targets(links.size());
    for (One_way_link const& link : links) {
        targets[ends[link.first]++] = link.second;
    }
    std::vector<std::uint32_t> free;
    for (std::uint32_t i = 0; i < n; ++i) {
        if (incoming[i] == 0) {
            free.push_back(i);
        }
    }
    for (std::size_t next = 0; next < free.size(); ++next) {
        std::uint32_t const i = free[next];
        for (std::uint32_t k = i == 0 ? 0 : ends[i - 1]; k < ends[i]; ++k) {
            if (--incoming[targets[k]] == 0) {
                free.push_back(targets[k]);
            }
        }
    }
    return free.size() < n;
}

} // namespace cpm
