// SPDX-License-Identifier: MIT
// Takes    the clique list and which levels are wanted.
// Leaves   the communities of each.
// Order    as Percolation has it: a walk is the same whatever was walked before.
// Cost     a thread: the lists of Adjacent_cliques. A level that was walked and not joined: 4 bytes
//          a clique in a community; one that was joined and not taken: its communities.
// Tested   Level_pipeline_test.cpp, the runs with threads against the plain model.
#include "parallel/Parallel_percolation.h"

#include <cassert>
#include <span>
#include <utility>

namespace cpm {

// A level between its walk and its being taken.
//
// Invariant: `new_nodes` has those of each member of fewer than `known_from` nodes, in the order of
//            the members.
// Relies on: a clique of k nodes or more is in a community at k; so one of as many nodes as the k
//            of the level before is in a community there, and brings nothing new to this level.
// Buys:      4 bytes a clique in place of 16 while the level waits.
struct Parallel_percolation::Level : public Community_taker {
    Level(Ranked_cliques const& ranked, std::uint32_t first_known)
        : cliques(ranked), known_from(first_known) {}

    void Take(std::span<Adjacent_clique const> members) override {
        for (Adjacent_clique const& member : members) {
            com_cliques.Append(member.clique);
            if (cliques[member.clique].size() < known_from) {
                new_nodes.push_back(member.new_nodes);
            }
        }
        com_cliques.Close_list();
    }

    Ranked_cliques const& cliques;
    std::uint32_t known_from;
    List_of_lists<Clique_number> com_cliques;
    Flat_array<std::uint64_t> new_nodes;
    Communities coms;
};

namespace {

constexpr std::uint32_t no_clique_is_known = 0xFFFFFFFF;

} // namespace

Parallel_percolation::Parallel_percolation(Found_cliques const& found,
                                           Ranked_cliques const& cliques,
                                           Edge_numbering const& edges,
                                           std::vector<std::uint32_t> ks, unsigned n_threads)
    : found_(found), cliques_(cliques), ks_(std::move(ks)), walks_(n_threads),
      lister_(cliques, found.n_exact, edges, Levels_nest(found)), levels_(ks_.size()) {}

Parallel_percolation::~Parallel_percolation() = default;

void Parallel_percolation::Walk(std::size_t place, unsigned thread, Progress& progress) {
    std::unique_ptr<Percolation_walk>& walk = walks_[thread];
    if (!walk) {
        walk = std::make_unique<Percolation_walk>(found_, cliques_);
    }
    bool const is_first = place == 0 || !Levels_nest(found_);
    assert(place == 0 || ks_[place] < ks_[place - 1]);
    auto level = std::make_unique<Level>(cliques_, is_first ? no_clique_is_known : ks_[place - 1]);
    walk->Walk(ks_[place], *level, &progress);
    levels_[place] = std::move(level);
}

void Parallel_percolation::Join(std::size_t place, Progress& progress) {
    constexpr std::uint32_t communities_a_tick = 256;
    Pace pace(&progress, communities_a_tick);
    Level& level = *levels_[place];
    lister_.Start_level(ks_[place], level.coms);
    std::uint64_t const* next_new = level.new_nodes.begin();
    for (std::size_t i = 0; i < level.com_cliques.size(); ++i) {
        pace.Spend(1);
        members_.clear();
        for (Clique_number const clique : level.com_cliques[i]) {
            bool const is_known = cliques_[clique].size() >= level.known_from;
            members_.push_back({clique, is_known ? 0 : *next_new++});
        }
        lister_.Add_sets(members_);
    }
    assert(next_new == level.new_nodes.end());
    level.new_nodes.Release();
    lister_.List(level.com_cliques, level.coms);
}

Communities Parallel_percolation::Take(std::size_t place) {
    Communities coms = std::move(levels_[place]->coms);
    levels_[place].reset();
    return coms;
}

} // namespace cpm
