// SPDX-License-Identifier: MIT
// The search, node by node.
//
// Takes    the nodes in their order, a finder of the cliques of one node, perhaps a time limit.
// Leaves   the cliques of the nodes done; then what was found at the nodes given up.
// Order    the nodes done, in the order they were done (without a limit: that of the graph); then
//          the pending sets, lexicographically.
// Cost     beside the finder's: a node a report, a copy of what is found within a limit, and the
//          pending sets.
// Tested   Search_driver_test.cpp, Clique_find_test.cpp, Clique_find_time_test.cpp,
//          Clique_find_dir_test.cpp.
#include "Clique_find/Search_driver.h"

#include "Clique_find/Directed_finder.h"
#include "Clique_find/Pending_sets.h"
#include "Clique_find/Undirected_finder.h"

#include <algorithm>
#include <deque>

namespace cpm {

namespace {

std::uint32_t Count(std::size_t size) {
    return static_cast<std::uint32_t>(size);
}

// The nodes that are not done: first in their order, then those tried in vain, as they were tried.
class Node_queue {
public:
    explicit Node_queue(std::vector<Node> const& order) : order_(order), size_(order.size()) {}
    std::size_t size() const { return size_; }
    Node Take() {
        --size_;
        if (n_taken_ < order_.size()) {
            return order_[n_taken_++];
        }
        Node const node = again_.front();
        again_.pop_front();
        return node;
    }
    void Put_back(Node node) {
        ++size_;
        again_.push_back(node);
    }

private:
    std::vector<Node> const& order_;
    std::size_t size_;
    std::size_t n_taken_ = 0;
    std::deque<Node> again_;
};

void Begin_without_limit(Graph const& graph, Progress& progress) {
    progress.Search_began({.directed = graph.Directed(), .max_time = std::nullopt});
    if (!graph.Directed()) {
        progress.Nodes_sorted();
    }
}

void Search_all(Set_list& cliques, Graph const& graph, Exact_finder& finder, Progress& progress,
                std::size_t max_cliques) {
    cliques.clear();
    std::uint32_t to_do = Count(graph.size());
    for (Node const node : graph.Nodes()) {
        progress.Node_started(to_do--, Count(graph.size()));
        finder.Find(node, cliques);
        Check_n_cliques(cliques.size(), max_cliques);
    }
    progress.Search_done(Count(cliques.size()), true);
    cliques.Shrink_to_fit();
}

} // namespace

std::unique_ptr<Finder> Make_finder(Graph const& graph, Progress& progress) {
    if (graph.Directed()) {
        return std::make_unique<Directed_finder>(graph, progress);
    }
    return std::make_unique<Undirected_finder>(graph, progress);
}

void Search_graph(Set_list& cliques, Graph const& graph, std::optional<Time_limit> limit,
                  std::vector<Node>& core, Progress& progress, std::size_t max_cliques) {
    if (limit) {
        progress.Search_began({.directed = graph.Directed(), .max_time = limit->max_time});
        Search_nodes(cliques, graph.Nodes(), *Make_finder(graph, progress), *limit, core, progress,
                     max_cliques);
    } else {
        core.clear();
        Begin_without_limit(graph, progress);
        Search_all(cliques, graph, *Make_finder(graph, progress), progress, max_cliques);
    }
}

void Search_graph(Set_list& cliques, Graph const& graph, Exact_finder& finder, Progress& progress,
                  std::size_t max_cliques) {
    Begin_without_limit(graph, progress);
    Search_all(cliques, graph, finder, progress, max_cliques);
}

bool Visit_cliques(Graph const& graph, Exact_finder& finder, Progress& progress,
                   std::function<bool(Node_set)> const& visit) {
    Set_list found;
    std::uint32_t to_do = Count(graph.size());
    for (Node const node : graph.Nodes()) {
        progress.Node_started(to_do--, Count(graph.size()));
        found.clear();
        finder.Find(node, found);
        for (std::size_t i = 0; i < found.size(); ++i) {
            if (!visit(found[i])) {
                return false;
            }
        }
    }
    return true;
}

void Search_nodes(Set_list& cliques, std::vector<Node> const& order, Finder& finder,
                  Time_limit limit, std::vector<Node>& core, Progress& progress,
                  std::size_t max_cliques) {
    cliques.clear();
    Node_queue queue(order); // Invariant: it holds just the nodes that are not done.
    Pending_sets pending(order.size());
    Set_list found;
    std::uint32_t skipped_in_row = 0;
    while (queue.size() > 0) {
        progress.Node_started(Count(queue.size()), Count(order.size()));
        Node const node = queue.Take();
        found.clear();
        Time_budget budget(limit.clock, limit.max_time);
        finder.Find_within(node, budget, found);
        if (!budget.Too_slow()) {
            for (std::size_t i = 0; i < found.size(); ++i) {
                cliques.Add(found[i]);
            }
            Check_n_cliques(cliques.size(), max_cliques);
            pending.Done(node);
            skipped_in_row = 0;
            continue;
        }
        queue.Put_back(node);
        pending.Add(found);
        ++skipped_in_row;
        progress.Node_overran(node, skipped_in_row, Count(queue.size()));
        if (skipped_in_row >= queue.size()) {
            progress.Remaining_nodes_too_hard();
            break;
        }
    }

    core.clear();
    while (queue.size() > 0) {
        core.push_back(queue.Take());
    }
    std::ranges::sort(core);
    if (!core.empty()) {
        pending.Register(cliques, progress);
        Check_n_cliques(cliques.size(), max_cliques);
    }
    progress.Search_done(Count(cliques.size()), core.empty());
    cliques.Shrink_to_fit();
}

} // namespace cpm
