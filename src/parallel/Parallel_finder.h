// SPDX-License-Identifier: MIT
// Parallel_finder: the cliques of one node after the other, found ahead by several threads. What is
// found, and its order, is what one finder finds.
#ifndef PLEXOR_PARALLEL_FINDER_H
#define PLEXOR_PARALLEL_FINDER_H

#include "Clique_find/Find_cliques.h"
#include "Clique_find/Finder.h"
#include "graph/Graph.h"
#include "graph/Types.h"
#include "parallel/Pipeline.h"
#include "support/Progress.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace cpm {

/// Cuts the order of the graph's nodes into blocks, for so many threads. Entry i is where block i
/// begins in the order; the last one is the number of nodes.
std::vector<std::size_t> Search_blocks(Graph const& graph, unsigned n_threads);

class Parallel_finder : public Exact_finder, public Piece_work {
public:
    /// Begins. The graph and the progress, which the calling thread alone calls, must outlive this.
    /// What is found ahead waits: `max_waiting` bytes, and what was being found when they were
    /// reached. Throws std::system_error when there is no thread to be had.
    Parallel_finder(Graph const& graph, unsigned n_threads, Progress& progress,
                    std::size_t max_waiting);
    Parallel_finder(Graph const& graph, unsigned n_threads, Progress& progress)
        : Parallel_finder(graph, n_threads, progress,
                          std::min(n_threads, 16U) * usual_bytes_a_thread) {}
    ~Parallel_finder() override;

    /// To be called for the nodes of the graph in their order, each once, and not again after it
    /// has thrown.
    void Find(Node node, Set_list& cliques) override;

private:
    // As much as a thread lists in some tenths of a second: so long the others can go on while one
    // of them is at a node with many cliques.
    static constexpr std::size_t usual_bytes_a_thread = std::size_t{1} << 26;

    struct Block {
        Set_list cliques;
        std::vector<std::size_t> n_listed; ///< by node: after it has been searched
        std::size_t Bytes() const;
    };

    void Prepare(std::size_t block, unsigned thread, Progress& progress) override;
    void Join(std::size_t, unsigned, Progress&) override {}
    void Finish(std::size_t, unsigned, Progress&) override {}
    bool Has_room() override { return n_bytes_waiting_ < max_waiting_; }
    Block& Block_at(std::size_t block) { return blocks_[block % blocks_.size()]; }
    void Next_block();

    Graph const& graph_;
    Progress& progress_;
    std::size_t const max_waiting_;
    std::vector<std::size_t> begins_;              ///< of the blocks; see Search_blocks()
    std::vector<std::unique_ptr<Finder>> finders_; ///< by thread, made when it begins
    std::vector<Block> blocks_;                    ///< those under way, in a ring
    std::atomic<std::size_t> n_bytes_waiting_ = 0; ///< of the blocks done and not handed out
    std::size_t n_begun_ = 0;                      ///< blocks that Find() has come to
    std::size_t node_ = 0;                         ///< its next node: the place in the order
    std::unique_ptr<Pipeline> pipeline_;           ///< ended first
};

/// A finder for such use: with one thread that of the graph's kind.
std::unique_ptr<Exact_finder> Make_finder(Graph const& graph, unsigned n_threads,
                                          Progress& progress);

/// As Find_cliques(): within a limit of time on the calling thread, else on so many threads, with
/// the same result and the same reports.
void Find_cliques(Found_cliques& found, Graph const& graph, std::optional<double> max_time_per_node,
                  Clock& clock, unsigned n_threads, Progress& progress,
                  std::size_t max_cliques = max_n_cliques);

} // namespace cpm

#endif
