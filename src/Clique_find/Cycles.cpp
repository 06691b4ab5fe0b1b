// SPDX-License-Identifier: MIT
#include "Clique_find/Cycles.h"

#include "support/Grouping.h"

#include <vector>

namespace cpm {

// What no link leads to is on no cycle: it is taken away with its links, again and again.
bool Has_cycle(std::span<One_way_link const> links, std::size_t n) {
    if (links.empty()) {
        return false;
    }
    std::vector<std::uint32_t> incoming(n, 0);
    for (One_way_link const& link : links) {
        ++incoming[link.second];
    }
    Groups<std::uint32_t> const targets(
        links.size(), n, [&](std::size_t i) { return links[i].first; },
        [&](std::size_t i) { return links[i].second; });
    std::vector<std::uint32_t> free;
    for (std::uint32_t i = 0; i < n; ++i) {
        if (incoming[i] == 0) {
            free.push_back(i);
        }
    }
    for (std::size_t next = 0; next < free.size(); ++next) {
        for (std::uint32_t const target : targets[free[next]]) {
            if (--incoming[target] == 0) {
                free.push_back(target);
            }
        }
    }
    return free.size() < n;
}

} // namespace cpm
