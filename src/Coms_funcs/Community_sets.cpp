// SPDX-License-Identifier: MIT
// Takes    the communities of one k after the other, as cliques in the order in which they joined.
// Leaves   for each its nodes and its links, ascending.
// Cost     per level: what its new cliques bring, plus what is in communities that change; memory:
//          4 bytes for each node and link of the communities of two cliques or more, once more for
//          a level whose result is kept.
// Tested   Community_sets_test.cpp, the runs against the plain model.
#include "Coms_funcs/Community_sets.h"

#include "support/Bits.h"

#include <algorithm>
#include <cassert>

namespace cpm {

namespace {

constexpr std::uint32_t none = Level_sets::none;

// The links of one level, in the order of its result.
class Level_links : public Community_links {
public:
    Level_links(std::shared_ptr<Level_sets const> level, std::vector<std::uint32_t> order)
        : level_(std::move(level)), order_(std::move(order)) {}

    void Visit(std::size_t community, Node_set nodes, Link_visitor& visitor) const override {
        std::uint32_t const sets = level_->communities[order_[community]].sets;
        if (sets != none) {
            visitor.Numbers(level_->sets[sets].links);
        } else {
            visitor.All_pairs(nodes);
        }
    }

private:
    std::shared_ptr<Level_sets const> level_;
    std::vector<std::uint32_t> order_;
};

} // namespace

Community_sets::Community_sets(Ranked_cliques const& cliques, Edge_numbering const& edges)
    : cliques_(cliques), edges_(edges), community_of_(cliques.size(), none) {}

// Buys:      the sets of a level that no result refers to become those of the next one without a
//            copy.
// Breaks if: a result is copied by another thread while its last owner here lets go of it.
void Community_sets::Start_level(bool nested) {
    if (!nested) {
        level_ = std::make_shared<Level_sets>();
        std::fill(community_of_.begin(), community_of_.end(), none);
    }
    old_level_ = std::exchange(level_, std::make_shared<Level_sets>());
    old_is_shared_ = old_level_.use_count() > 1;
    // Letting go of one reference more comes after all that others did before they let go of
    // theirs: what they read is not written before they have read it.
    std::shared_ptr<Level_sets>(old_level_).reset();
    merged_into_.clear();
    merged_into_.Resize(old_level_->communities.size(), none);
}

void Community_sets::Forget(std::span<Adjacent_clique const> members) {
    for (Adjacent_clique const& member : members) {
        community_of_[member.clique] = none;
    }
}

void Community_sets::Add_community(std::span<Adjacent_clique const> members) {
    assert(!members.empty());
    auto const number = static_cast<std::uint32_t>(size());
    if (members.size() == 1) {
        level_->communities.push_back({members[0].clique, none});
        community_of_[members[0].clique] = number;
        return;
    }
    Level_sets::Sets sets;
    more_nodes_.clear();
    more_links_.clear();
    for (Adjacent_clique const& member : members) {
        std::uint32_t& community = community_of_[member.clique];
        if (community == none) {
            Add_new_part(member);
            // What waits to be merged must not outgrow what can come of it by much.
            if (more_links_.size() / 4 > edges_.size()) {
                Unite(sets.links, more_links_, edges_.size());
            }
        } else if (merged_into_[community] != number) {
            merged_into_[community] = number;
            Absorb(old_level_->communities[community], sets);
        }
        community = number;
    }
    Unite(sets.nodes, more_nodes_, std::size_t{cliques_.Number_of_nodes()} + 1);
    Unite(sets.links, more_links_, edges_.size());
    level_->communities.push_back({none, static_cast<std::uint32_t>(level_->sets.size())});
    level_->sets.push_back(std::move(sets));
}

// The largest old sets are taken as they are; smaller ones are added to what has to be merged.
void Community_sets::Absorb(Level_sets::Community const& old, Level_sets::Sets& into) {
    if (old.sets == none) {
        Add_new_part({old.clique, all_new});
        return;
    }
    Level_sets::Sets& kept = old_level_->sets[old.sets];
    Level_sets::Sets sets = old_is_shared_ ? kept : std::move(kept);
    if (sets.links.size() > into.links.size()) {
        std::swap(sets, into);
    }
    more_nodes_.Append(sets.nodes);
    more_links_.Append(sets.links);
}

void Community_sets::Add_new_part(Adjacent_clique const& member) {
    std::span<Node const> const ranked = cliques_[member.clique];
    auto const is_new = [&](std::size_t place) {
        return member.new_nodes == all_new || (member.new_nodes >> place & 1) != 0;
    };
    for (std::size_t i = 0; i < ranked.size(); ++i) {
        if (!is_new(i)) {
            continue;
        }
        more_nodes_.push_back(ranked[i]);
        for (std::size_t j = 0; j < ranked.size(); ++j) {
            // A pair of two new nodes is met twice; the second time is left out.
            if (j > i || (j < i && !is_new(j))) {
                more_links_.push_back(edges_.Number(ranked[i], ranked[j]));
            }
        }
    }
}

// Adds `more`, in any order and with repeats, to the sorted values, all below `range`.
template <class T>
void Community_sets::Unite(Flat_array<T>& sorted, Flat_array<T>& more, std::size_t range) {
    constexpr std::size_t bits_worth_a_comparison_sort = 2048; // for each number to sort
    Sort_unique(more, 0, range, bits_worth_a_comparison_sort, bits_);
    if (more.empty()) {
        return;
    }
    Flat_array<T> united;
    united.Resize_uninitialised(sorted.size() + more.size());
    T* const end =
        std::set_union(sorted.begin(), sorted.end(), more.begin(), more.end(), united.begin());
    united.Resize_uninitialised(static_cast<std::size_t>(end - united.begin()));
    united.Shrink_to_fit();
    sorted.Swap(united);
}

Node_set Community_sets::Nodes(std::size_t community) {
    Level_sets::Community const& one = level_->communities[community];
    if (one.sets != none) {
        return level_->sets[one.sets].nodes;
    }
    std::span<Node const> const ranked = cliques_[one.clique];
    lone_clique_.assign(ranked.begin(), ranked.end());
    std::ranges::sort(lone_clique_);
    return lone_clique_;
}

std::shared_ptr<Community_links const>
Community_sets::Links(std::vector<std::uint32_t> order) const {
    return std::make_shared<Level_links>(level_, std::move(order));
}

} // namespace cpm
