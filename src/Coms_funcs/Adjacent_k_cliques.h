// SPDX-License-Identifier: MIT
// Which k-cliques are adjacent by intensity: those that share k-1 nodes of an intensity above the
// threshold.
#ifndef PLEXOR_ADJACENT_K_CLIQUES_H
#define PLEXOR_ADJACENT_K_CLIQUES_H

#include "Coms_funcs/K_clique_list.h"
#include "Coms_funcs/Link_weights.h"
#include "graph/Types.h"
#include "support/Disjoint_sets.h"
#include "support/Progress.h"

#include <cstddef>
#include <cstdint>

namespace cpm::Coms_from_k_cls_sub {

/// The intensity test of the nodes that two k-cliques share.
class Shared_test {
public:
    /// The links must outlive this object.
    Shared_test(std::uint32_t k, Link_rows const& rows, double intensity);

    /// Whether the intensity of a k-clique without the node at one place is above the threshold,
    /// k at least 3. Throws as Get_sub_links_and_min_link_w() does.
    bool Check_intersection(Node_set k_clique, std::size_t left_out);

private:
    void Take_shared_logs(Node_set k_clique, std::size_t left_out);

    Link_rows const& rows_;
    double n_links_;
    double log_threshold_;
    Sub_links sub_links_;
    Flat_array<Node> last_;          ///< the k-clique that sub_links_ is for
    Flat_array<double> shared_logs_; ///< for the links to earlier nodes, node by node
};

/// Unites all adjacent k-cliques, each a number of the sets, with the reports and the error that
/// Intensity_coms_from_k_cliques() speaks of.
void Get_node_com_inds(K_clique_list const& k_cliques, Disjoint_sets& communities,
                       Link_rows const& rows, double intensity, Progress& progress);

} // namespace cpm::Coms_from_k_cls_sub

#endif
