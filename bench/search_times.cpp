// SPDX-License-Identifier: MIT
// What more threads gain in the search of a network: measured, the wall time from the links to the
// list of cliques with one thread and with two, in turn; and calculated, from the processor time of
// each block of start nodes on one thread, put on so many threads as a search does it. What one
// thread has to do alone counts as well: making the graph, cutting the blocks, putting the lists
// together.
//   search_times FILE [-D]
#include "Makespan.h"

#include "Clique_find/Find_cliques.h"
#include "Plexor_io/Read_links.h"
#include "graph/Convert_links.h"
#include "graph/Graph.h"
#include "parallel/Parallel_finder.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <exception>
#include <vector>

namespace {

using namespace cpm;

double Now(clockid_t clock) {
    timespec now{};
    ::clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

template <class Action> double Seconds(clockid_t clock, Action const& action) {
    double const begin = Now(clock);
    action();
    return Now(clock) - begin;
}

struct Block_times {
    double search = 0;
    double join = 0; ///< appending what was found to the list
};

// Each block by itself, as it is cut for so many threads. Appending one is often too short to be
// timed: that of some blocks in a row is shared out among them.
std::vector<Block_times> Measure_blocks(Graph const& graph,
                                        std::vector<std::size_t> const& begins) {
    constexpr std::size_t joins_timed = 500;
    Progress nobody;
    auto const finder = Make_finder(graph, nobody);
    std::vector<Block_times> blocks(begins.size() - 1);
    std::size_t const in_row = 1 + blocks.size() / joins_timed;
    Set_list whole;
    for (std::size_t first = 0; first < blocks.size(); first += in_row) {
        std::size_t const end = std::min(first + in_row, blocks.size());
        std::vector<Set_list> found(end - first);
        for (std::size_t block = first; block < end; ++block) {
            blocks[block].search = Seconds(CLOCK_THREAD_CPUTIME_ID, [&] {
                for (std::size_t i = begins[block]; i < begins[block + 1]; ++i) {
                    finder->Find(graph.Nodes()[i], found[block - first]);
                }
            });
        }
        double const joining = Seconds(CLOCK_THREAD_CPUTIME_ID, [&] {
            for (Set_list const& list : found) {
                whole.Append_lists(list, 0, list.size());
            }
        });
        for (std::size_t block = first; block < end; ++block) {
            blocks[block].join = joining / static_cast<double>(end - first);
        }
    }
    return blocks;
}

// When the last block is in the list, put there by one more thread.
double Makespan(std::vector<Block_times> const& blocks, std::size_t n_threads) {
    return bench::Makespan(blocks, n_threads,
                           [](Block_times const& block) { return block.search; });
}

void Calculate(Index_links const& links, bool directed) {
    double const making =
        Seconds(CLOCK_THREAD_CPUTIME_ID, [&] { Graph const unused(links, directed); });
    Graph const graph(links, directed);
    for (unsigned const n : {2U, 8U, 32U, 128U}) {
        std::vector<std::size_t> begins;
        double const cutting =
            Seconds(CLOCK_THREAD_CPUTIME_ID, [&] { begins = Search_blocks(graph, n); });
        std::vector<Block_times> const blocks = Measure_blocks(graph, begins);
        double search = 0;
        double join = 0;
        double longest = 0;
        for (Block_times const& block : blocks) {
            search += block.search;
            join += block.join;
            longest = std::max(longest, block.search);
        }
        std::printf("%4u threads: %.2f times as fast (graph %.3f s, search %.3f s, joining %.3f s, "
                    "%zu blocks, the longest %.4f s)\n",
                    n, (making + search) / (making + cutting + Makespan(blocks, n)), making, search,
                    join, blocks.size(), longest);
    }
}

void Measure_wall(Index_links const& links, bool directed) {
    constexpr std::size_t rounds = 5;
    std::array<std::vector<double>, 2> walls;
    Progress nobody;
    Processor_clock clock;
    for (std::size_t round = 0; round < rounds; ++round) {
        for (unsigned const n_threads : {1U, 2U}) {
            walls[n_threads - 1].push_back(Seconds(CLOCK_MONOTONIC, [&] {
                Graph const graph(links, directed);
                Found_cliques found;
                Find_cliques(found, graph, std::nullopt, clock, n_threads, nobody);
            }));
        }
    }
    for (auto& seconds : walls) {
        std::ranges::sort(seconds);
    }
    double const one = walls[0][rounds / 2];
    double const two = walls[1][rounds / 2];
    std::printf("wall, medians of %zu: 1 thread %.3f s, 2 threads %.3f s, %.2f times as fast\n",
                rounds, one, two, one / two);
}

void Measure(char const* path, bool directed) {
    Link_map named;
    Read_unw_links(path, named);
    Index_links links;
    Names_map names;
    Convert_s_links(links, names, named, directed);
    Measure_wall(links, directed);
    Calculate(links, directed);
}

} // namespace

int main(int argc, char** argv) {
    bool const directed = argc == 3 && std::strcmp(argv[2], "-D") == 0;
    if (argc != 2 && !directed) {
        std::fprintf(stderr, "usage: search_times FILE [-D]\n");
        return 2;
    }
    try {
        Measure(argv[1], directed);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
