// SPDX-License-Identifier: MIT
// Community_sets: the nodes and links of each community, kept from one k to the next smaller one.
//
// Going from k+1 to k communities only merge and grow: cliques of size k come in, and cliques that
// share k-1 nodes become adjacent. So a community's sets are those of the communities it has
// absorbed and what the new cliques bring. A new clique that another one led to brings only its
// nodes that the other one lacks, and the pairs with these: a few, not half the square of its size.
#ifndef PLEXOR_COMMUNITY_SETS_H
#define PLEXOR_COMMUNITY_SETS_H

#include "Coms_funcs/Edge_numbering.h"
#include "Coms_funcs/Ranked_cliques.h"
#include "graph/Types.h"

#include <memory>
#include <vector>

namespace cpm {

/// The communities of one level in the order in which they were found.
struct Level_sets {
    static constexpr std::uint32_t none = 0xFFFFFFFF;

    struct Sets {
        Flat_array<Node> nodes;
        Flat_array<Link_number> links;
    };
    // A community of a single clique is that clique; the others have sets of their own.
    struct Community {
        Clique_number clique = none;
        std::uint32_t sets = none;
    };

    std::vector<Community> communities;
    std::vector<Sets> sets;
};

class Community_sets {
public:
    /// Both must outlive this object.
    Community_sets(Ranked_cliques const& cliques, Edge_numbering const& edges);

    /// Starts a level. `nested`: each community of the level before lies inside one community of
    /// this level; otherwise nothing is taken over.
    void Start_level(bool nested);
    /// Takes the cliques as new ones, though a community of this level may have them already.
    void Forget(std::span<Adjacent_clique const> members);
    /// Adds the next community of the level: its cliques in the order in which they joined, each
    /// with the nodes that the clique which led to it lacks.
    void Add_community(std::span<Adjacent_clique const> members);

    std::size_t size() const { return level_->communities.size(); }
    /// Its nodes, ascending; they stay there until the next call.
    Node_set Nodes(std::size_t community);
    /// The communities of this level by their places in `order`, with their links, ascending. What
    /// is given out stays as it is.
    std::shared_ptr<Community_links const> Links(std::vector<std::uint32_t> order) const;

private:
    void Absorb(Level_sets::Community const& old, Level_sets::Sets& into);
    void Add_new_part(Adjacent_clique const& member);
    template <class T> void Unite(Flat_array<T>& sorted, Flat_array<T>& more, std::size_t range);

    Ranked_cliques const& cliques_;
    Edge_numbering const& edges_;
    std::shared_ptr<Level_sets> level_ = std::make_shared<Level_sets>();
    std::shared_ptr<Level_sets> old_level_;
    bool old_is_shared_ = false;             ///< results refer to the old level
    Flat_array<std::uint32_t> community_of_; ///< clique -> its community; none: no level had it yet
    Flat_array<std::uint32_t> merged_into_;  ///< old community -> the new one that has it
    Flat_array<Node> more_nodes_;
    Flat_array<Link_number> more_links_;
    std::vector<Node> lone_clique_;  ///< ascending; its nodes were asked for last
    Flat_array<std::uint64_t> bits_; ///< all zero between calls
};

} // namespace cpm

#endif
