// SPDX-License-Identifier: MIT
// Takes    the graph; then its nodes in their order.
// Leaves   the cliques of each, as a finder of its own would.
// Order    that of one finder: what it finds at a node depends on the graph and the node alone, so
//          it does not matter which thread searches the node, nor when. A block has its nodes'
//          cliques in their order, and blocks are handed out in theirs.
// Cost     a thread: a finder. A block that waits: the list of its cliques, and 8 bytes a node.
//          Each list is copied once, by the calling thread.
// Tested   Parallel_finder_test.cpp, the runs with threads against the plain model.
#include "parallel/Parallel_finder.h"

#include <algorithm>
#include <cassert>

namespace cpm {

namespace {

// Steps that a node may take, of about a nanosecond: its neighbours are looked at, and where the
// later ones are linked, they are compared with each other.
std::size_t Weight(Graph const& graph, Node node) {
    constexpr std::size_t steps_a_node = 16;
    constexpr std::size_t steps_a_neighbour = 8;
    std::size_t const later = graph.Later(node).size();
    return steps_a_node + steps_a_neighbour * graph.Degree(node) + later * later;
}

} // namespace

// Blocks that take about as long: none so long that others wait for it at the end, none so short
// that handing it out costs more than a small part of it. Small networks have some blocks as well,
// however little there is to gain. A node that outweighs a block is one by itself.
std::vector<std::size_t> Search_blocks(Graph const& graph, unsigned n_threads) {
    constexpr std::size_t min_weight = std::size_t{1} << 14;
    constexpr std::size_t max_weight = std::size_t{1} << 20;
    constexpr std::size_t enough_blocks = 1024;
    constexpr std::size_t min_blocks_a_thread = 32;
    std::size_t total = 0;
    for (Node node = 1; node <= graph.size(); ++node) {
        total += Weight(graph, node);
    }
    std::size_t const wanted = std::min(std::clamp(total / enough_blocks, min_weight, max_weight),
                                        total / (min_blocks_a_thread * n_threads) + 1);
    std::vector<std::size_t> begins{0};
    std::size_t weight = 0;
    for (std::size_t i = 0; i < graph.size(); ++i) {
        std::size_t const next = Weight(graph, graph.Nodes()[i]);
        if (weight > 0 && weight + next > wanted) {
            begins.push_back(i);
            weight = 0;
        }
        weight += next;
    }
    if (graph.size() > 0) {
        begins.push_back(graph.size());
    }
    return begins;
}

std::size_t Parallel_finder::Block::Bytes() const {
    return cliques.Total() * sizeof(Node) +
           (cliques.size() + n_listed.size()) * sizeof(std::uint64_t);
}

Parallel_finder::Parallel_finder(Graph const& graph, unsigned n_threads, Progress& progress,
                                 std::size_t max_waiting)
    : graph_(graph), progress_(progress), max_waiting_(max_waiting),
      begins_(Search_blocks(graph, n_threads)), finders_(n_threads) {
    // Memory is what bounds the work ahead; the number of blocks bounds what empty ones need.
    constexpr std::size_t max_blocks_ahead = 4096;
    std::size_t const n_blocks = begins_.size() - 1;
    std::size_t const window = std::clamp<std::size_t>(n_blocks, 1, max_blocks_ahead);
    blocks_.resize(window + 1); // that which Find() is at has been handed out
    pipeline_ = std::make_unique<Pipeline>(*this, n_blocks, n_threads, window);
}

Parallel_finder::~Parallel_finder() = default;

void Parallel_finder::Prepare(std::size_t block, unsigned thread, Progress& progress) {
    std::unique_ptr<Finder>& finder = finders_[thread];
    if (!finder) {
        finder = Make_finder(graph_, progress);
    }
    Block& listed = Block_at(block);
    listed.n_listed.reserve(begins_[block + 1] - begins_[block]);
    for (std::size_t i = begins_[block]; i < begins_[block + 1]; ++i) {
        finder->Find(graph_.Nodes()[i], listed.cliques);
        listed.n_listed.push_back(listed.cliques.size());
    }
    n_bytes_waiting_ += listed.Bytes();
}

void Parallel_finder::Next_block() {
    if (n_begun_ > 0) {
        Block& last = Block_at(n_begun_ - 1);
        n_bytes_waiting_ -= last.Bytes();
        last = {};
    }
    progress_.Tick(); // Next() has no time to when the blocks are there before it is called
    pipeline_->Next(progress_);
    ++n_begun_;
}

void Parallel_finder::Find([[maybe_unused]] Node node, Set_list& cliques) {
    assert(node_ < graph_.size() && node == graph_.Nodes()[node_]);
    if (node_ == begins_[n_begun_]) {
        Next_block();
    }
    Block const& block = Block_at(n_begun_ - 1);
    std::size_t const i = node_++ - begins_[n_begun_ - 1];
    cliques.Append_lists(block.cliques, i == 0 ? 0 : block.n_listed[i - 1], block.n_listed[i]);
}

std::unique_ptr<Exact_finder> Make_finder(Graph const& graph, unsigned n_threads,
                                          Progress& progress) {
    if (n_threads > 1) {
        return std::make_unique<Parallel_finder>(graph, n_threads, progress);
    }
    return Make_finder(graph, progress);
}

void Find_cliques(Found_cliques& found, Graph const& graph, std::optional<double> max_time_per_node,
                  Clock& clock, unsigned n_threads, Progress& progress, std::size_t max_cliques) {
    if (max_time_per_node || n_threads == 1) {
        Find_cliques(found, graph, max_time_per_node, clock, progress, max_cliques);
    } else {
        Find_cliques(found, graph, *Make_finder(graph, n_threads, progress), progress, max_cliques);
    }
}

} // namespace cpm
