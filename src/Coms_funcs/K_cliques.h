// SPDX-License-Identifier: MIT
// k-cliques: all sets of k nodes inside the maximal cliques whose link weight intensity, the
// geometric mean of the weights of their links, is above a threshold. What the intensity method
// makes communities of.
#ifndef PLEXOR_K_CLIQUES_H
#define PLEXOR_K_CLIQUES_H

#include "Coms_funcs/K_clique_list.h"
#include "Coms_funcs/Link_weights.h"
#include "graph/Types.h"
#include "support/Pace.h"
#include "support/Progress.h"

#include <cstddef>
#include <cstdint>

namespace cpm {

/// Lists every k-clique inside the cliques whose intensity is above `intensity`, in lexicographic
/// order, each once. Tells its progress at each clique of k nodes or more. At k = 0 and k = 1 there
/// are none. Throws Xerror_msg for a missing link, see above.
void Generate_k_cls_from_cls(Set_list const& cliques, Index_links const& links,
                             K_clique_list& k_cliques, std::uint32_t k, double intensity,
                             Progress& progress);

namespace K_clique_intensity_sub_routines {

/// Walks the sets of k nodes inside one clique after the other, k at least 2.
class K_set_search {
public:
    /// What is found goes to the list, whose k it is. The list and the progress must outlive this.
    K_set_search(K_clique_list& k_cliques, double intensity, Progress& progress);

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
    Pace pace_;
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
