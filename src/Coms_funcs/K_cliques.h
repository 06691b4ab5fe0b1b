// SPDX-License-Identifier: MIT
// k-cliques: all sets of k nodes inside the maximal cliques whose link weight intensity, the
// geometric mean of the weights of their links, is above a threshold. What the intensity method
// makes communities of.
#ifndef PLEXOR_K_CLIQUES_H
#define PLEXOR_K_CLIQUES_H

#include "Plexor_io/Console.h"
#include "graph/Types.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace cpm {

/// Sets of k nodes, one behind the other in one array; a set's number is its position.
class K_clique_list {
public:
    K_clique_list() = default;
    /// An empty list of sets of `k` nodes.
    explicit K_clique_list(std::uint32_t k) : k_(k) {}

    std::uint32_t K() const { return k_; }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    Node_set operator[](std::size_t i) const { return {members_.data() + i * k_, k_}; }

    /// Adds a set of k nodes, which may be in the list already. Sets that are there twice are
    /// dropped now and then, so that the list never needs more than twice its room.
    void Add(Node_set k_clique) {
        if (size_ == next_unite_) {
            Sort_and_unite();
        }
        members_.Append(k_clique);
        ++size_;
    }
    /// Puts the sets into lexicographic order, each once, and gives back the room not needed. To be
    /// called when all have been added; until then their numbers mean nothing.
    void Finish();

private:
    void Sort_and_unite();

    static constexpr std::size_t min_worth_uniting = std::size_t{1} << 16;

    std::uint32_t k_ = 0;
    std::size_t size_ = 0;
    std::size_t next_unite_ = min_worth_uniting; ///< the size at which repeats are dropped
    Flat_array<Node> members_;
};

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
/// strictly smaller. So one that is not a number stays when it is the first, and is passed over
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

/// Lists every k-clique inside the cliques whose intensity is above `intensity`, in lexicographic
/// order, each once. Reports its progress, a report for each clique of k nodes or more. At k = 0
/// and k = 1 there are none. Throws Xerror_msg for a missing link, see above.
void Generate_k_cls_from_cls(Set_list const& cliques, Index_links const& links,
                             K_clique_list& k_cliques, std::uint32_t k, double intensity,
                             Console& console);

namespace K_clique_intensity_sub_routines {

/// Walks the sets of k nodes inside one clique after the other, k at least 2.
class K_set_search {
public:
    /// What is found goes to the list, whose k it is. The list must outlive this object.
    K_set_search(K_clique_list& k_cliques, double intensity);

    /// Adds the k-cliques of one clique.
    void Find(Node_set clique, Sub_links const& sub_links, double min_log_w);

private:
    void Limit_from_above();
    void Get_k_cls_iter(std::size_t first);
    void Get_k_cls_iter_no_w(std::size_t size, std::size_t last);
    void Put(std::size_t at, std::size_t place) {
        places_[at] = place;
        nodes_[at] = clique_[place];
    }

    K_clique_list& k_cliques_;
    std::size_t const k_;
    double const log_threshold_;
    Node_set clique_;
    Sub_links const* sub_links_ = nullptr;
    double min_log_w_ = 0;
    Flat_array<double> links_left_;  ///< set size -> links that it lacks to a k-clique
    Flat_array<double> max_left_;    ///< set size -> no set of this size gains more up to k
    Flat_array<double> logs_;        ///< the largest of the clique, descending
    Flat_array<std::size_t> places_; ///< the set under way, by places in the clique
    Flat_array<Node> nodes_;         ///< ... by nodes
    Flat_array<double> sums_;        ///< the sum of the logarithms among its first nodes
};

} // namespace K_clique_intensity_sub_routines

} // namespace cpm

#endif
