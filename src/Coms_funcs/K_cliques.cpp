// SPDX-License-Identifier: MIT
// k-cliques and their intensity test.
//
// Takes    the maximal cliques, the index links with their weights, k and the intensity threshold.
// Leaves   the k-cliques above the threshold, lexicographic, each once.
// Order    nothing of the walk shows but which sets pass, and that is decided by sums of doubles: a
//          set passes when its sum is above the threshold, or earlier when the sum so far and the
//          clique's smallest weight for all links to come already are. Equal weights make ties, so
//          every sum is added up in one fixed order, and what a tie does in one clique it need not
//          do in another with a smaller least weight: a set inside two cliques is tried in both.
// Cost     one step per set of at most k nodes that is walked: those that can still pass, as far
//          as the largest weights of the clique tell. One look-up per link of each clique.
//          Memory: twice the k-cliques at most, 4 k bytes each; half a matrix of one clique.
// Tested   K_cliques_test.cpp, the runs against the plain model.
#include "Coms_funcs/K_cliques.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <functional>
#include <limits>

namespace cpm {

void Generate_k_cls_from_cls(Set_list const& cliques, Index_links const& links,
                             K_clique_list& k_cliques, std::uint32_t k, double intensity,
                             Progress& progress) {
    k_cliques = K_clique_list(k);
    progress.K_clique_search_began(k, intensity);
    Link_rows const rows(links);
    K_clique_intensity_sub_routines::K_set_search search(k_cliques, intensity, progress);
    Sub_links sub_links;
    double min_log_w = 0;
    auto const total = static_cast<std::uint32_t>(cliques.size());
    for (std::uint32_t processed = 0; processed < total; ++processed) {
        Node_set const clique = cliques[processed];
        if (clique.size() < k) {
            continue;
        }
        progress.K_clique_search_at(total - processed, total);
        Get_sub_links_and_min_link_w(clique, rows, sub_links, min_log_w);
        // Sets are tested from two nodes on, so at k = 0 and k = 1 none is ever of the size asked
        // for; the walk would try all sets there are in vain.
        if (k >= 2) {
            search.Find(clique, sub_links, min_log_w);
        }
    }
    k_cliques.Finish();
    progress.K_clique_search_done(static_cast<std::uint32_t>(k_cliques.size()));
}

namespace K_clique_intensity_sub_routines {

K_set_search::K_set_search(K_clique_list& k_cliques, double intensity, Progress& progress)
    : k_cliques_(k_cliques), k_(k_cliques.K()),
      log_threshold_(Log_threshold(intensity, k_cliques.K())), pace_(progress) {}

void K_set_search::Find(Node_set clique, Sub_links const& sub_links, double min_log_w) {
    assert(k_ >= 2 && clique.size() >= k_);
    clique_ = clique;
    sub_links_ = &sub_links;
    min_log_w_ = min_log_w;
    if (nodes_.empty()) { // not before a clique of k nodes comes: k may be any number
        std::uint32_t const k = k_cliques_.K();
        for (std::uint32_t m = 0; m <= k; ++m) {
            links_left_.push_back((k * (k - 1)) * 0.5 - Number_of_links(m));
        }
        places_.Resize(k_);
        nodes_.Resize(k_);
        sums_.Resize(k_);
    }
    Limit_from_above();
    if (!(max_left_[1] > log_threshold_)) {
        return;
    }
    for (std::size_t first = 0; first + k_ <= clique.size(); ++first) {
        Get_k_cls_iter(first);
    }
}

// For each size of a set: the most that the links to come can add to its sum, which is what those
// of the largest weights in the clique would. A set that does not get above the threshold with that
// is given up.
//
// Invariant: no set that would pass is given up.
// Relies on: a sum of n logarithms, none larger than A, is off by less than n^2 A / 2^53, in
//            whatever order it is added up. The sum so far, the most to come, and the sum or the
//            bound of a complete set are such sums; the slack is twice all their errors, and 0
//            when all logarithms are 0 and every sum is exact. Where a logarithm is infinite or
//            not a number the most to come is infinite: only sums of -inf or not a
//            number are given up, and these stay what they are.
// Buys:      large cliques of small weights. Nothing passes, but without it every set is tried.
void K_set_search::Limit_from_above() {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double slack_unit = 0x1p-50;
    max_left_.clear();
    max_left_.Resize(k_ + 1, infinity);
    logs_.clear();
    logs_.Append(sub_links_->All());
    double largest = 0;
    for (double const log_w : logs_) {
        if (!std::isfinite(log_w)) {
            return;
        }
        largest = std::max(largest, std::abs(log_w));
    }
    std::size_t const n_links = k_ * (k_ - 1) / 2;
    std::ranges::nth_element(logs_, logs_.begin() + (n_links - 1), std::greater());
    std::sort(logs_.begin(), logs_.begin() + n_links, std::greater());
    auto const n = static_cast<double>(n_links);
    double most = n * n * largest * slack_unit;
    std::size_t added = 0;
    for (std::size_t size = k_; size >= 1; --size) {
        for (; added < n_links - size * (size - 1) / 2; ++added) {
            most += logs_[added];
        }
        max_left_[size] = most;
    }
}

// All k-cliques whose first node stands at `first`, by growing sets node by node, depth first. Sets
// followed by too few nodes to reach k are left out: nothing can come of them.
void K_set_search::Get_k_cls_iter(std::size_t first) {
    Put(0, first);
    sums_[0] = 0;
    pace_.Spend(clique_.size()); // here and where a set grows: for all that may come next
    std::size_t size = 1;        // of the set that is being extended
    std::size_t next = first + 1;
    while (true) {
        if (next + (k_ - size) > clique_.size()) {
            if (size == 1) {
                return;
            }
            next = places_[--size] + 1;
            continue;
        }
        double const* const log_w = sub_links_->To_earlier(next);
        double to_next = 0;
        for (std::size_t i = 0; i < size; ++i) {
            to_next += log_w[places_[i]];
        }
        double const sum = sums_[size - 1] + to_next;
        double const bound = links_left_[size + 1] * min_log_w_ + sum;
        bool const complete = size + 1 == k_;
        Put(size, next);
        if (bound > log_threshold_ && !complete) {
            Get_k_cls_iter_no_w(size + 1, next);
        } else if (!complete) {
            if (sum + max_left_[size + 1] > log_threshold_) {
                sums_[size++] = sum;
                pace_.Spend(clique_.size() - next);
            }
        } else if (bound > log_threshold_ || sum > log_threshold_) {
            k_cliques_.Add(nodes_);
        }
        ++next;
    }
}

// All k-cliques that begin with the first `size` nodes of the set under way, the last of which
// stands at `last`. They are certain to pass.
void K_set_search::Get_k_cls_iter_no_w(std::size_t size, std::size_t last) {
    std::size_t const fixed = size;
    std::size_t next = last + 1;
    while (true) {
        if (next + (k_ - size) > clique_.size()) {
            if (size == fixed) {
                return;
            }
            next = places_[--size] + 1;
        } else if (size + 1 == k_) {
            Put(size, next++);
            k_cliques_.Add(nodes_);
        } else {
            Put(size++, next++);
            pace_.Spend(clique_.size() - next);
        }
    }
}

} // namespace K_clique_intensity_sub_routines

} // namespace cpm
