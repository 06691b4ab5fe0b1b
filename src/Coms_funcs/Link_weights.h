// SPDX-License-Identifier: MIT
// Link weights as the intensity tests need them: found by the two ends, as logarithms, and the sums
// and thresholds that decide.
#ifndef PLEXOR_LINK_WEIGHTS_H
#define PLEXOR_LINK_WEIGHTS_H

#include "graph/Types.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace cpm {

/// Finds links by their two ends. The links must outlive it.
class Link_rows {
public:
    explicit Link_rows(Index_links const& links);

    /// Where the links from `first` begin; they lie together, ascending by their second end.
    std::size_t Begin(Node first) const { return first < n_rows_ ? offsets_[first] : 0; }
    /// The position of the link from `first` to `second`, which is `from` or a later one. Throws
    /// Xerror_msg "ERROR: Get_sub_links_and_thresh_abs: missing link.\n" when there is no such
    /// link.
    std::size_t Find(Node first, Node second, std::size_t from) const;
    /// The natural logarithm of a link's weight: -inf for 0, NaN for less.
    double Log_weight(std::size_t position) const;

private:
    Index_links const& links_;
    std::size_t n_rows_ = 0; ///< nodes from this one on are the first end of no link
    Flat_array<std::size_t> offsets_;
};

/// The logarithms of the link weights between the nodes of one set. A node is named by its place
/// in the set.
class Sub_links {
public:
    /// The logarithms for the links between a node and each earlier one, in the order of these.
    double const* To_earlier(std::size_t place) const {
        return logs_.data() + place * (place - 1) / 2;
    }
    double* To_earlier(std::size_t place) { return logs_.data() + place * (place - 1) / 2; }
    /// All of them; the first is that for the first two nodes.
    std::span<double const> All() const { return {logs_.data(), logs_.size()}; }
    /// Makes room for a set of `size` nodes. The values for the first nodes stay.
    void Resize(std::size_t size) { logs_.Resize_uninitialised(size * (size - 1) / 2); }

private:
    Flat_array<double> logs_;
};

/// The smallest of the logarithms, of which there is one at least: the first unless another one is
/// strictly smaller. So one that is not a number stays when it is the first, and is ignored
/// elsewhere.
double Smallest_log(std::span<double const> logs);

/// The logarithms of all link weights inside a set of nodes, and the smallest of them. Throws
/// Xerror_msg "ERROR: Get_sub_links_and_thresh_abs: missing link.\n" when a pair is not linked, or
/// there is no pair. The logarithms among the first `n_known` nodes are in place already, from a
/// call for a set that begins with the same nodes.
void Get_sub_links_and_min_link_w(Node_set nodes, Link_rows const& rows, Sub_links& sub_links,
                                  double& min_log_w, std::size_t n_known = 0);

/// The number of links among `n_nodes` nodes, as the intensity tests compute it.
double Number_of_links(std::uint32_t n_nodes);
/// The logarithm of `intensity` to the power of that number: sums of logarithms above it belong to
/// sets of a higher intensity.
double Log_threshold(double intensity, std::uint32_t n_nodes);

} // namespace cpm

#endif
