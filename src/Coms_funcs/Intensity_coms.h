// SPDX-License-Identifier: MIT
// Communities by link weight intensity: two k-cliques are adjacent when they share k-1 nodes and
// the intensity of these is above the threshold as well; a community is a connected set of them.
#ifndef PLEXOR_INTENSITY_COMS_H
#define PLEXOR_INTENSITY_COMS_H

#include "Coms_funcs/K_cliques.h"
#include "Plexor_io/Console.h"
#include "graph/Types.h"

#include <cstddef>
#include <cstdint>

namespace cpm {

/// Finds the communities of the k-cliques (lexicographic, each once), in the order of their first
/// k-clique; all count as exact and none has cliques. The links of a community are those of its
/// last k-clique, then those of the one before, and so on, in each in the order of the pairs, so
/// that a link shared by several k-cliques comes several times; a link's number is its position
/// among `links`, which must hold every pair inside the k-cliques. The links are made from the
/// k-cliques when asked for: both arguments must outlive `coms.links`.
/// Reports its progress, a report a k-clique. At k = 2 the nodes that k-cliques share have no link
/// between them: throws Xerror_msg "ERROR: Get_sub_links_and_thresh_abs: missing link.\n" at the
/// first k-clique that a later one shares a node with.
void Intensity_coms_from_k_cliques(K_clique_list const& k_cliques, Communities& coms,
                                   Index_links const& links, double intensity, Console& console);

namespace Coms_from_k_cls_sub {

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

/// Labels of k-cliques, which are numbers of k-cliques, and the rules that replace a label by a
/// smaller one it was found to be the same community as.
class Labels {
public:
    /// Every k-clique has its own number for a label; no rules yet.
    explicit Labels(std::size_t n_k_cliques);

    std::size_t size() const { return rule_.size(); }
    /// The smallest label that the rules lead to: the first k-clique of the community, as far as it
    /// is known.
    std::uint32_t Get_uni_rules_recur(std::uint32_t label);
    /// The two belong to the same community.
    void Unite(std::uint32_t a, std::uint32_t b);
    /// Makes every rule lead to its end in one step; returns them.
    Flat_array<std::uint32_t> Get_trans_rules() &&;

private:
    Flat_array<std::uint32_t> rule_; ///< label -> a smaller one that replaces it, or itself
};

/// Unites the labels of all adjacent k-cliques, with the reports and the error that
/// Intensity_coms_from_k_cliques() speaks of.
void Get_node_com_inds(K_clique_list const& k_cliques, Labels& labels, Link_rows const& rows,
                       double intensity, Console& console);

} // namespace Coms_from_k_cls_sub

} // namespace cpm

#endif
