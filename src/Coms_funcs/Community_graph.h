// SPDX-License-Identifier: MIT
// The community graph and the statistics of one k. The graph's nodes are communities; two are
// linked when they share nodes. It can grow with the square of the communities of a hub, so it is
// handed out row by row and never held; the statistics are counted while it passes.
#ifndef PLEXOR_COMMUNITY_GRAPH_H
#define PLEXOR_COMMUNITY_GRAPH_H

#include "graph/Types.h"

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace cpm {

/// A community that shares nodes with another one, and how many.
struct Overlap {
    std::uint32_t community = 0;
    std::uint32_t shared = 0;
    friend bool operator==(Overlap const&, Overlap const&) = default;
};

/// Takes one row of the graph: the overlaps of a community with later ones, ascending.
using Take_overlaps = std::function<void(std::uint32_t community, std::span<Overlap const> row)>;

/// How often a value occurs.
struct Value_count {
    std::uint32_t value = 0;
    std::uint64_t count = 0;
    friend bool operator==(Value_count const&, Value_count const&) = default;
};

/// Ascending by value.
using Distribution = std::vector<Value_count>;

struct Community_distributions {
    Distribution membership; ///< number of communities of a node -> number of nodes
    Distribution size;       ///< number of nodes of a community -> number of communities
    Distribution overlap;    ///< number of shared nodes, not 0 -> number of pairs of communities
    Distribution degree;     ///< number of communities that share nodes -> number of communities
};

/// Which communities statistics are about: pairs count when both of them are of that part.
enum class Community_part { all, exact, approximated };

/// One object serves one k after the other, with the memory that it has by then.
class Community_graph {
public:
    /// Hands out the rows that are not empty, ascending.
    void Walk(Take_overlaps const& take);

    // What the statistics ask for.

    Communities const& Coms() const { return *coms_; }
    /// How many nodes are in communities. Here they have numbers from 0 on, as they occur first.
    std::size_t N_nodes() const { return offsets_.size() - 1; }
    /// The communities of the node of this number, ascending.
    std::span<std::uint32_t const> Coms_of(std::size_t number) const {
        return {members_.data() + offsets_[number], members_.data() + offsets_[number + 1]};
    }
    /// Whether Walk() has been called; the rest is known from then on.
    bool Walked() const { return walked_; }
    /// For each overlap size, from 0 on, the number of pairs of the part.
    Flat_array<std::uint64_t> Overlap_counts(Community_part part) const;
    /// How many communities of the part share nodes with a community of the part.
    std::uint32_t Degree(std::size_t community, Community_part part) const;

private:
    friend void Prepare_community_graph(Communities const& coms, Community_graph& graph);

    // A pair of communities: both exact, both approximated, or one of each.
    enum Pair_kind : std::size_t { both_exact, both_approximated, one_of_each, n_pair_kinds };

    void Prepare(Communities const& coms);
    std::size_t Number_nodes();
    void Fill_row(std::uint32_t community);
    void Count_row(std::uint32_t community);
    void Count_pairs(std::uint32_t community, std::span<Overlap const> row, Pair_kind kind);

    Communities const* coms_ = nullptr;
    // The nodes are numbered as they occur first: at large k few are in communities, and those of
    // one community are next to each other.
    Flat_array<Node> number_; ///< node -> its number + 1 while they are given, else 0
    Flat_array<Node> flat_;   ///< the numbers of the nodes of all communities, in their order
    // The index: the communities of the node of a number begin at offsets_[number] in members_.
    Flat_array<std::uint64_t> offsets_;
    Flat_array<std::uint32_t> members_;
    // The row under way. Before and after it all of shared_ and bits_ is zero.
    Flat_array<std::uint32_t> passed_;  ///< number -> how many of its communities rows have passed
    Flat_array<std::uint32_t> shared_;  ///< community -> nodes shared with that of the row
    Flat_array<std::uint32_t> touched_; ///< the communities whose shared_ is not zero
    Flat_array<std::uint64_t> bits_;
    Flat_array<Overlap> row_;
    // What the walk has counted.
    bool walked_ = false;
    std::array<Flat_array<std::uint64_t>, n_pair_kinds> overlap_counts_; ///< by overlap size
    Flat_array<std::uint32_t> degrees_;       ///< within the community's own part
    Flat_array<std::uint32_t> degrees_other_; ///< to the other part; empty when there is none
};

/// Sets up the graph of the communities, which must outlive its use.
void Prepare_community_graph(Communities const& coms, Community_graph& graph);

/// The distributions of a part of the communities, in a network of `node_count` nodes; walks the
/// graph if nobody has. The number of nodes in no community of the part is always the first entry
/// of `membership`, even when it is 0. Throws Xerror_msg "ERROR: Community_statistics() : More
/// vertex in the communities than in the graph.".
void Community_statistics(Community_distributions& distributions, Community_graph& graph,
                          Community_part part, Node node_count);

} // namespace cpm

#endif
