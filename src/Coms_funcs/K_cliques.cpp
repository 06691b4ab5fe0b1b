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
// Cost     one step a set of at most k nodes that is walked: those that can still pass, as far as
//          the largest weights of the clique tell. One look-up a link of each clique.
//          Memory: twice the k-cliques at most, 4 k bytes each; half a matrix of one clique.
// Tested   K_cliques_test.cpp, the runs against the plain model.
#include "Coms_funcs/K_cliques.h"

#include "Plexor_io/Reports.h"
#include "support/Errors.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace cpm {

namespace {

// Sorts sets of equal size where they lie: partitions them by one column into smaller, equal and
// larger, and goes on with the next column in the equal ones. No second array, no index; each
// comparison looks at one node.
class Set_sort {
public:
    Set_sort(Flat_array<Node>& members, std::size_t width)
        : members_(members), width_(width), held_(width) {}

    void Sort(std::size_t n_sets) {
        open_.push_back({0, n_sets, 0});
        while (!open_.empty()) {
            Range const range = open_.back();
            open_.pop_back();
            if (range.end - range.begin <= small) {
                Sort_small(range);
            } else {
                Partition(range);
            }
        }
    }

private:
    // Sets `begin` to `end` - 1, equal in the columns before `column`.
    struct Range {
        std::size_t begin;
        std::size_t end;
        std::size_t column;
    };
    static constexpr std::size_t small = 12;

    Node* Set(std::size_t i) { return members_.data() + i * width_; }
    Node At(std::size_t i, std::size_t column) { return Set(i)[column]; }
    void Swap(std::size_t i, std::size_t j) { std::swap_ranges(Set(i), Set(i) + width_, Set(j)); }

    void Sort_small(Range const& range) {
        auto const less = [&](Node const* a, Node const* b) {
            return std::lexicographical_compare(a + range.column, a + width_, b + range.column,
                                                b + width_);
        };
        for (std::size_t i = range.begin + 1; i < range.end; ++i) {
            if (!less(Set(i), Set(i - 1))) {
                continue;
            }
            std::copy_n(Set(i), width_, held_.data());
            std::size_t to = i;
            do {
                --to;
            } while (to > range.begin && less(held_.data(), Set(to - 1)));
            std::copy_backward(Set(to), Set(i), Set(i + 1));
            std::copy_n(held_.data(), width_, Set(to));
        }
    }

    void Partition(Range const& range) {
        Node const pivot = Pivot(range);
        std::size_t equal = range.begin; // where the ones equal to the pivot begin
        std::size_t larger = range.end;
        for (std::size_t i = range.begin; i < larger;) {
            Node const node = At(i, range.column);
            if (node < pivot) {
                if (i != equal) {
                    Swap(i, equal);
                }
                ++equal;
                ++i;
            } else if (node > pivot) {
                Swap(i, --larger);
            } else {
                ++i;
            }
        }
        Open({range.begin, equal, range.column});
        Open({equal, larger, range.column + 1});
        Open({larger, range.end, range.column});
    }

    void Open(Range const& range) {
        if (range.end - range.begin > 1 && range.column < width_) {
            open_.push_back(range);
        }
    }

    // The median of three medians of three.
    Node Pivot(Range const& range) {
        std::size_t const step = (range.end - range.begin) / 9;
        auto const median = [](Node a, Node b, Node c) {
            return std::max(std::min(a, b), std::min(std::max(a, b), c));
        };
        auto const median_at = [&](std::size_t i) {
            return median(At(i, range.column), At(i + step, range.column),
                          At(i + 2 * step, range.column));
        };
        return median(median_at(range.begin), median_at(range.begin + 3 * step),
                      median_at(range.begin + 6 * step));
    }

    Flat_array<Node>& members_;
    std::size_t width_;
    Flat_array<Node> held_;
    std::vector<Range> open_;
};

constexpr char const* missing_link = "ERROR: Get_sub_links_and_thresh_abs: missing link.\n";

} // namespace

void K_clique_list::Sort_and_unite() {
    auto const set = [&](std::size_t i) { return members_.data() + i * k_; };
    auto const less = [&](Node const* a, Node const* b) {
        return std::lexicographical_compare(a, a + k_, b, b + k_);
    };
    std::size_t in_order = 1;
    while (in_order < size_ && less(set(in_order - 1), set(in_order))) {
        ++in_order;
    }
    if (in_order < size_) { // the sets of a single clique come in their order
        Set_sort(members_, k_).Sort(size_);
        std::size_t kept = 1;
        for (std::size_t i = 1; i < size_; ++i) {
            if (less(set(kept - 1), set(i))) {
                if (kept != i) {
                    std::copy_n(set(i), k_, set(kept));
                }
                ++kept;
            }
        }
        size_ = kept;
        members_.Resize_uninitialised(size_ * k_);
    }
    next_unite_ = std::max(2 * size_, least_worth_uniting);
}

void K_clique_list::Finish() {
    Sort_and_unite();
    members_.Shrink_to_fit();
    if (size_ >= std::numeric_limits<std::uint32_t>::max()) {
        throw Xerror_msg("ERROR: there are more than 4294967294 k-cliques at this k.");
    }
}

Link_rows::Link_rows(Index_links const& links) : links_(links) {
    if (links.size() == 0) {
        return;
    }
    n_rows_ = std::size_t{links.pairs.back().first} + 1;
    starts_.Reserve(n_rows_ + 1);
    for (std::size_t i = 0; i < links.size(); ++i) {
        while (starts_.size() <= links.pairs[i].first) {
            starts_.push_back(i);
        }
    }
    starts_.push_back(links.size());
}

std::size_t Link_rows::Find(Node first, Node second, std::size_t from) const {
    if (first < n_rows_) {
        // A binary search without a branch on what it compares, which nobody can predict.
        Node_pair const* place = links_.pairs.begin() + from;
        for (std::size_t left = starts_[std::size_t{first} + 1] - from; left > 0;) {
            std::size_t const half = (left + 1) / 2;
            place = place[half - 1].second < second ? place + half : place;
            left -= half;
        }
        auto const found = static_cast<std::size_t>(place - links_.pairs.begin());
        if (found < starts_[std::size_t{first} + 1] && place->second == second) {
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

void Generate_k_cls_from_cls(Set_list const& cliques, Index_links const& links,
                             K_clique_list& k_cliques, std::uint32_t k, double intensity,
                             Console& console) {
    namespace reports = Clique_find_report_sub_routines;
    k_cliques = K_clique_list(k);
    Text title1;
    title1.Put(" Generating k-cliques at k=");
    title1.Put_number(k);
    title1.Put(',');
    Text title2;
    title2.Put(" and a link weight intensity threshold I=");
    title2.Put_fixed(intensity, 6);
    title2.Put(':');
    Link_rows const rows(links);
    K_clique_intensity_sub_routines::K_set_search search(k_cliques, intensity);
    Sub_links sub_links;
    double min_log_w = 0;
    auto const total = static_cast<std::uint32_t>(cliques.size());
    for (std::uint32_t processed = 0; processed < total; ++processed) {
        Node_set const clique = cliques[processed];
        if (clique.size() < k) {
            continue;
        }
        reports::Report_progress(title1.View(), title2.View(), "cliques", total - processed, total,
                                 console);
        console.Message_done();
        Get_sub_links_and_min_link_w(clique, rows, sub_links, min_log_w);
        // Sets are tested from two nodes on, so at k = 0 and k = 1 none is ever of the size asked
        // for; the walk would try all sets there are in vain.
        if (k >= 2) {
            search.Find(clique, sub_links, min_log_w);
        }
    }
    k_cliques.Finish();
    reports::Report_clique_search_end(" k-cliques", static_cast<std::uint32_t>(k_cliques.size()),
                                      console);
    console.Message_done();
}

namespace K_clique_intensity_sub_routines {

K_set_search::K_set_search(K_clique_list& k_cliques, double intensity)
    : k_cliques_(k_cliques), k_(k_cliques.K()),
      log_threshold_(Log_threshold(intensity, k_cliques.K())) {}

void K_set_search::Find(Node_set clique, Sub_links const& sub_links, double min_log_w) {
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
    if (!(most_left_[1] > log_threshold_)) {
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
//            not a number the most to come is infinite: given up are only sums of -inf or not a
//            number, which stay what they are.
// Buys:      large cliques of small weights. Nothing passes, but without it every set is tried.
void K_set_search::Limit_from_above() {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double slack_unit = 0x1p-50;
    most_left_.clear();
    most_left_.Resize(k_ + 1, infinity);
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
        most_left_[size] = most;
    }
}

// All k-cliques whose first node stands at `first`, by growing sets node by node, depth first. Sets
// that too few nodes follow to reach k are left out: nothing comes of them.
void K_set_search::Get_k_cls_iter(std::size_t first) {
    Put(0, first);
    sums_[0] = 0;
    std::size_t size = 1; // of the set that is being extended
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
            if (sum + most_left_[size + 1] > log_threshold_) {
                sums_[size++] = sum;
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
        }
    }
}

} // namespace K_clique_intensity_sub_routines

} // namespace cpm
