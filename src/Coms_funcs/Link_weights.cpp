// SPDX-License-Identifier: MIT
#include "Coms_funcs/Link_weights.h"

#include "support/Errors.h"

#include <algorithm>
#include <cmath>

namespace cpm {

namespace {

constexpr char const* missing_link = "ERROR: Get_sub_links_and_thresh_abs: missing link.\n";

} // namespace

Link_rows::Link_rows(Index_links const& links) : links_(links) {
    if (links.size() == 0) {
        return;
    }
    n_rows_ = std::size_t{links.pairs.back().first} + 1;
    offsets_.Reserve(n_rows_ + 1);
    for (std::size_t i = 0; i < links.size(); ++i) {
        while (offsets_.size() <= links.pairs[i].first) {
            offsets_.push_back(i);
        }
    }
    offsets_.push_back(links.size());
}

std::size_t Link_rows::Find(Node first, Node second, std::size_t from) const {
    if (first < n_rows_) {
        // A binary search without a branch on what it compares, which nobody can predict.
        Node_pair const* place = links_.pairs.begin() + from;
        for (std::size_t left = offsets_[std::size_t{first} + 1] - from; left > 0;) {
            std::size_t const half = (left + 1) / 2;
            place = place[half - 1].second < second ? place + half : place;
            left -= half;
        }
        auto const found = static_cast<std::size_t>(place - links_.pairs.begin());
        if (found < offsets_[std::size_t{first} + 1] && place->second == second) {
            return found;
        }
    }
    throw Xerror_msg(missing_link);
}

double Link_rows::Log_weight(std::size_t position) const {
    return std::log(links_.Weight(position));
}

void Get_sub_links_and_min_link_w(Node_set nodes, Link_rows const& rows, Sub_links& sub_links,
                                  double& min_log_w, std::size_t n_known) {
    if (nodes.size() < 2) {
        throw Xerror_msg(missing_link);
    }
    sub_links.Resize(nodes.size());
    for (std::size_t a = 0; a + 1 < nodes.size(); ++a) {
        std::size_t next = rows.Begin(nodes[a]);
        for (std::size_t b = std::max(n_known, a + 1); b < nodes.size(); ++b) {
            std::size_t const link = rows.Find(nodes[a], nodes[b], next);
            sub_links.To_earlier(b)[a] = rows.Log_weight(link);
            next = link + 1;
        }
    }
    min_log_w = Smallest_log(sub_links.All());
}

double Smallest_log(std::span<double const> logs) {
    double smallest = logs.front();
    for (double const log_w : logs) {
        if (log_w < smallest) {
            smallest = log_w;
        }
    }
    return smallest;
}

double Number_of_links(std::uint32_t n_nodes) {
    return (n_nodes * 0.5) * (n_nodes - 1U);
}

double Log_threshold(double intensity, std::uint32_t n_nodes) {
    return std::log(std::pow(intensity, Number_of_links(n_nodes)));
}

} // namespace cpm
