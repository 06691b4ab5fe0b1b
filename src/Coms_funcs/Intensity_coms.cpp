// SPDX-License-Identifier: MIT
// Communities by link weight intensity.
//
// Takes    the k-cliques, lexicographic and each once, the index links and the threshold.
// Leaves   the communities: their nodes, and what their links are made from when asked for.
// Order    communities by their first k-clique, which is the smallest member of a disjoint set.
//          Within a community everything goes by the numbers of the k-cliques.
// Cost     see Adjacent_k_cliques; then 4 bytes per k-clique and the communities.
// Tested   Intensity_coms_test.cpp, the runs against the plain model.
#include "Coms_funcs/Intensity_coms.h"

#include "Coms_funcs/Adjacent_k_cliques.h"
#include "Coms_funcs/Link_weights.h"
#include "support/Disjoint_sets.h"
#include "support/Grouping.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace cpm {

namespace {

using K_clique_number = std::uint32_t;
using K_clique_groups = Groups<K_clique_number, K_clique_number>;

// Numbers the links of one k-clique after the other.
class Link_numbers {
public:
    explicit Link_numbers(Link_rows const& rows) : rows_(rows) {}

    // Neighbours in a lexicographic order often begin with the same nodes; the links among these
    // are numbered already.
    std::span<Link_number const> Of(Node_set nodes) {
        auto const differ = std::ranges::mismatch(nodes, last_).in1;
        auto const n_same = static_cast<std::size_t>(differ - nodes.begin());
        last_ = nodes;
        std::size_t const k = nodes.size();
        link_numbers_.Resize_uninitialised(k * (k - 1) / 2);
        Link_number* row = link_numbers_.begin(); // the links of node a to the later ones
        for (std::size_t a = 0; a + 1 < k; ++a) {
            std::size_t const first = std::max(n_same, a + 1);
            std::size_t next =
                first > a + 1 ? std::size_t{row[first - a - 2]} + 1 : rows_.Begin(nodes[a]);
            for (std::size_t b = first; b < k; ++b) {
                std::size_t const link = rows_.Find(nodes[a], nodes[b], next);
                row[b - a - 1] = static_cast<Link_number>(link);
                next = link + 1;
            }
            row += k - a - 1;
        }
        return link_numbers_;
    }

private:
    Link_rows const& rows_;
    Node_set last_; ///< the k-clique whose links are numbered; empty: none yet
    Flat_array<Link_number> link_numbers_;
};

// The k-cliques of each community, and the links made from them.
class K_clique_links : public Community_links {
public:
    K_clique_links(K_clique_list k_cliques, Link_rows rows, K_clique_groups communities)
        : k_cliques_(std::move(k_cliques)), rows_(std::move(rows)),
          communities_(std::move(communities)) {}

    void Visit(std::size_t community, Node_set, Link_visitor& visitor) const override {
        Link_numbers numbers(rows_);
        std::span<K_clique_number const> const members = communities_[community];
        for (std::size_t i = members.size(); i-- > 0;) {
            visitor.Numbers(numbers.Of(k_cliques_[members[i]]));
        }
    }

private:
    K_clique_list k_cliques_;
    Link_rows rows_;
    K_clique_groups communities_;
};

// The nodes of each community.
void List_nodes(K_clique_list const& k_cliques, K_clique_groups const& communities,
                Set_list& sets) {
    Flat_array<std::uint32_t> listed_for; // node -> 1 + the last community that it was listed for
    Flat_array<Node> nodes;
    for (std::size_t community = 0; community < communities.size(); ++community) {
        nodes.clear();
        for (K_clique_number const i : communities[community]) {
            Node_set const k_clique = k_cliques[i];
            if (k_clique.back() >= listed_for.size()) {
                listed_for.Resize(std::size_t{k_clique.back()} + 1 + listed_for.size(), 0);
            }
            for (Node const node : k_clique) {
                if (listed_for[node] != community + 1) {
                    listed_for[node] = static_cast<std::uint32_t>(community + 1);
                    nodes.push_back(node);
                }
            }
        }
        std::ranges::sort(nodes);
        sets.Add(nodes);
    }
    sets.Shrink_to_fit();
}

} // namespace

void Intensity_coms_from_k_cliques(K_clique_list k_cliques, Communities& coms,
                                   Index_links const& links, double intensity, Progress& progress) {
    Link_rows rows(links);
    Disjoint_sets sets(k_cliques.size());
    Coms_from_k_cls_sub::Get_node_com_inds(k_cliques, sets, rows, intensity, progress);
    Flat_array<std::uint32_t> community_of = std::move(sets).Number_sets();
    std::size_t n_communities = 0;
    for (std::uint32_t const community : community_of) {
        n_communities = std::max(n_communities, std::size_t{community} + 1);
    }
    K_clique_groups communities(
        community_of.size(), n_communities, [&](std::size_t i) { return community_of[i]; },
        [](std::size_t i) { return i; });
    community_of.Release();
    coms.nodes.clear();
    coms.cliques.clear();
    List_nodes(k_cliques, communities, coms.nodes);
    coms.n_exact = static_cast<std::uint32_t>(n_communities);
    coms.links = std::make_shared<K_clique_links>(std::move(k_cliques), std::move(rows),
                                                  std::move(communities));
}

} // namespace cpm
