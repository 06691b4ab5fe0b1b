// SPDX-License-Identifier: MIT
// What more threads would gain in the levels of a network, from the processor time of their parts
// on one thread: the walk of each k, which any thread can do, and the joining, one k after the
// other. The parts are then put on so many threads as a run does it. A thread that walks fewer
// levels has to catch up with its index, which is measured too: a walk of every k from the start.
//   level_times FILE
#include "Makespan.h"

#include "Clique_find/Appr_core_cliques.h"
#include "Clique_find/Clock.h"
#include "Clique_find/Find_cliques.h"
#include "Coms_funcs/Ranked_cliques.h"
#include "Plexor_io/Read_links.h"
#include "graph/Convert_links.h"
#include "graph/Graph.h"
#include "parallel/Parallel_percolation.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <vector>

namespace {

using namespace cpm;

double Now() {
    return Thread_clock().Now();
}

struct Level_times {
    double walk = 0;  ///< when the same thread has walked the level before
    double alone = 0; ///< when it has walked none
    double join = 0;
};

// When the last level is joined. A thread takes the next k when it is free; its walk takes between
// the two times, the more of the first the more of the levels before it has walked.
double Makespan(std::vector<Level_times> const& levels, std::size_t n_threads) {
    double const share = 1 / static_cast<double>(n_threads);
    return bench::Makespan(levels, n_threads, [share](Level_times const& level) {
        return level.walk * share + level.alone * (1 - share);
    });
}

void Measure(char const* path) {
    Link_map named;
    Read_unw_links(path, named);
    Index_links links;
    Names_map names;
    Convert_s_links(links, names, named, false);
    auto const n_nodes = static_cast<Node>(names.size() - 1);
    Found_cliques found;
    Processor_clock clock;
    Progress nobody;
    Find_cliques(found, Graph(links, false), std::nullopt, clock, nobody);
    Edge_numbering const edges(links, n_nodes, found.cliques, found.n_exact);
    Ranked_cliques const ranked(found.cliques, n_nodes);
    std::vector<std::uint32_t> ks;
    for (std::uint32_t k = Max_clique_size_in_cl_vec(found.cliques); k > 2; --k) {
        ks.push_back(k);
    }
    std::vector<Level_times> levels(ks.size());
    Parallel_percolation chain(found, ranked, edges, ks, 1);
    for (std::size_t place = 0; place < ks.size(); ++place) {
        double const begin = Now();
        chain.Walk(place, 0, nobody);
        double const walked = Now();
        chain.Join(place, nobody);
        levels[place].join = Now() - walked;
        levels[place].walk = walked - begin;
        chain.Take(place);
        Parallel_percolation one(found, ranked, edges, {ks[place]}, 1);
        double const begin_alone = Now();
        one.Walk(0, 0, nobody);
        levels[place].alone = std::max(Now() - begin_alone, levels[place].walk);
    }
    double walks = 0;
    double joins = 0;
    double longest = 0;
    for (Level_times const& level : levels) {
        walks += level.walk;
        joins += level.join;
        longest = std::max(longest, level.alone + level.join);
    }
    double const one_thread = walks + joins;
    std::printf("%zu levels: walks %.2f s, joining %.2f s, the longest level alone %.2f s\n",
                ks.size(), walks, joins, longest);
    for (std::size_t const n : {2U, 4U, 8U, 32U, 128U}) {
        std::printf("%4zu threads: %.2f times as fast\n", n, one_thread / Makespan(levels, n));
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: level_times FILE\n");
        return 2;
    }
    try {
        Measure(argv[1]);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
