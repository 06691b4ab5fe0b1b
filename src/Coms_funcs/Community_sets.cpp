// SPDX-License-Identifier: MIT
// Takes    the communities of one k after the other, as cliques in the order in which they joined.
// Leaves   for each its nodes and its links, ascending.
// Cost     a level: what its new cliques bring, plus what is in communities that change; memory: 4
//          bytes for each node and link of the communities of two cliques or more.
// Tested   Community_sets_test.cpp, the runs against the plain model.
#include "Coms_funcs/Community_sets.h"

#include <algorithm>
#include <bit>

namespace cpm {

Community_sets::Community_sets(Set_list const& cliques, Adjacent_cliques const& index,
                               Edge_numbering const& pairs)
    : cliques_(cliques), index_(index), pairs_(pairs), community_of_(cliques.size(), none) {}

void Community_sets::Start_level(bool nested) {
    if (!nested) {
        communities_.clear();
        sets_.clear();
        std::fill(community_of_.begin(), community_of_.end(), none);
    }
    old_communities_.swap(communities_);
    old_sets_.swap(sets_);
    communities_.clear();
    sets_.clear();
    merged_into_.clear();
    merged_into_.Resize(old_communities_.size(), none);
}

void Community_sets::Forget(std::span<Adjacent_clique const> members) {
    for (Adjacent_clique const& member : members) {
        community_of_[member.clique] = none;
    }
}

void Community_sets::Add_community(std::span<Adjacent_clique const> members) {
    auto const number = static_cast<std::uint32_t>(communities_.size());
    if (members.size() == 1) {
        communities_.push_back({members[0].clique, none});
        community_of_[members[0].clique] = number;
        return;
    }
    Sets sets;
    more_nodes_.clear();
    more_links_.clear();
    for (Adjacent_clique const& member : members) {
        std::uint32_t& community = community_of_[member.clique];
        if (community == none) {
            Add_new_part(member);
            // What waits to be merged must not outgrow what can come of it by much.
            if (more_links_.size() / 4 > pairs_.size()) {
                Unite(sets.links, more_links_, pairs_.size());
            }
        } else if (merged_into_[community] != number) {
            merged_into_[community] = number;
            Absorb(old_communities_[community], sets);
        }
        community = number;
    }
    Unite(sets.nodes, more_nodes_, index_.Number_of_nodes() + 1);
    Unite(sets.links, more_links_, pairs_.size());
    communities_.push_back({none, static_cast<std::uint32_t>(sets_.size())});
    sets_.push_back(std::move(sets));
}

// The largest old sets are taken as they are; smaller ones are added to what has to be merged.
void Community_sets::Absorb(Community const& old, Sets& into) {
    if (old.sets == none) {
        Add_whole(old.clique);
        return;
    }
    Sets sets = std::move(old_sets_[old.sets]);
    if (sets.links.size() > into.links.size()) {
        std::swap(sets, into);
    }
    more_nodes_.Append(sets.nodes);
    more_links_.Append(sets.links);
}

void Community_sets::Add_whole(Clique_number clique) {
    Add_new_part({clique, Adjacent_cliques::all_new});
}

void Community_sets::Add_new_part(Adjacent_clique const& member) {
    std::span<Node const> const ranked = index_.Ranked(member.clique);
    auto const is_new = [&](std::size_t place) {
        return member.new_nodes == Adjacent_cliques::all_new ||
               (member.new_nodes >> place & 1) != 0;
    };
    for (std::size_t i = 0; i < ranked.size(); ++i) {
        if (!is_new(i)) {
            continue;
        }
        more_nodes_.push_back(ranked[i]);
        for (std::size_t j = 0; j < ranked.size(); ++j) {
            // A pair of two new nodes is met twice; the second time is left out.
            if (j > i || (j < i && !is_new(j))) {
                more_links_.push_back(pairs_.Number(ranked[i], ranked[j]));
            }
        }
    }
}

// Sorts values below `range` and drops repeats: by a bitmap where that is cheaper.
template <class T> void Community_sets::Sort_unique(Flat_array<T>& values, std::size_t range) {
    constexpr std::size_t bits_worth_a_comparison_sort = 2048;
    if (range / bits_worth_a_comparison_sort > values.size()) {
        std::sort(values.begin(), values.end());
        T* const end = std::unique(values.begin(), values.end());
        values.Resize_uninitialised(static_cast<std::size_t>(end - values.begin()));
        return;
    }
    bits_.Resize(std::max(bits_.size(), range / 64 + 1), 0);
    for (T const value : values) {
        bits_[value / 64] |= std::uint64_t{1} << (value % 64);
    }
    values.clear();
    for (std::size_t w = 0; w <= range / 64; ++w) {
        for (std::uint64_t rest = bits_[w]; rest != 0; rest &= rest - 1) {
            values.push_back(
                static_cast<T>(w * 64 + static_cast<unsigned>(std::countr_zero(rest))));
        }
        bits_[w] = 0;
    }
}

// Adds `more`, in any order and with repeats, to the sorted values.
template <class T>
void Community_sets::Unite(Flat_array<T>& sorted, Flat_array<T>& more, std::size_t range) {
    Sort_unique(more, range);
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

Node_set Community_sets::Nodes(std::size_t community) const {
    Community const& one = communities_[community];
    return one.sets == none ? cliques_[one.clique] : Node_set(sets_[one.sets].nodes);
}

void Community_sets::Links(std::size_t community, Link_visitor const& take) const {
    Community const& one = communities_[community];
    if (one.sets != none) {
        take.numbers(sets_[one.sets].links);
    } else {
        take.all_pairs(cliques_[one.clique]);
    }
}

} // namespace cpm
