// SPDX-License-Identifier: MIT
// The undirected clique search as it is defined: a graph that nodes are cut out of, sets, and for
// each node the list of the known cliques, against which every clique and every branch is tested.
#ifndef PLEXOR_CLIQUES_BY_SETS_H
#define PLEXOR_CLIQUES_BY_SETS_H

#include "Plexor_io/Reports.h"
#include "Plexor_io/Text_sink.h"
#include "records/Vertex_maps.h"
#include "support/Graph_makers.h"

#include <algorithm>
#include <deque>
#include <map>
#include <string>
#include <vector>

namespace cpm::test {

class Cliques_by_sets {
public:
    using Sets = std::vector<std::vector<Node>>;

    explicit Cliques_by_sets(Vtx_map const& vertices) {
        for (Vtx const& vertex : vertices) {
            Node_set const neighs = vertex.Neighs_c();
            work_[vertex.Index()] = Nodes(neighs.begin(), neighs.end());
        }
    }

    /// Searches. Attempt i at a node, of all attempts from 0 on, overruns at its first look at the
    /// clock when `overruns[i]` says so; later ones than there are flags never do.
    void Search(std::string const& title, std::vector<bool> const& overruns = {}) {
        using namespace Clique_find_report_sub_routines;
        std::vector<std::pair<std::size_t, Node>> order;
        for (auto const& [node, neighs] : work_) {
            order.push_back({neighs.size(), node});
        }
        std::ranges::sort(order);
        std::deque<Node> queue;
        for (auto const& [degree, node] : order) {
            queue.push_back(node);
        }
        auto const total = static_cast<std::uint32_t>(queue.size());
        Text text;
        std::set<std::vector<Node>> pending;
        std::uint32_t skipped = 0;
        bool go_on = true;
        for (std::size_t attempt = 0; !queue.empty() && go_on; ++attempt) {
            auto const left = static_cast<std::uint32_t>(work_.size());
            Report_progress(title, "nodes", left, total, text);
            Node const node = queue.front();
            queue.pop_front();
            found_.clear();
            too_slow_ = false;
            overruns_ = attempt < overruns.size() && overruns[attempt];
            Take(node);
            if (!too_slow_) {
                cliques_.insert(cliques_.end(), found_.begin(), found_.end());
                work_.erase(node);
                skipped = 0;
                continue;
            }
            Report_hard_node(node, ++skipped, left, text);
            queue.push_back(node);
            pending.insert(found_.begin(), found_.end());
            if (skipped >= queue.size()) {
                Report_all_rem_nodes_to_hard("cliques", text);
                go_on = false;
            }
        }
        if (!work_.empty()) {
            for (auto const& set : pending) {
                if (std::ranges::none_of(cliques_, [&](std::vector<Node> const& one) {
                        return std::ranges::includes(one, set);
                    })) {
                    cliques_.push_back(set);
                }
            }
        }
        auto const count = static_cast<std::uint32_t>(cliques_.size());
        if (work_.empty()) {
            Report_clique_search_end("cliques", count, " no approximation was needed", text);
        } else {
            Report_clique_search_end("exact cliques", count, text);
        }
        reports_ = text.View();
    }

    Sets const& Cliques() const { return cliques_; }
    /// The reports of a search under a time limit.
    std::string const& Reports() const { return reports_; }
    /// The nodes not done.
    std::vector<Node> Core() const {
        std::vector<Node> core;
        for (auto const& [node, neighs] : work_) {
            core.push_back(node);
        }
        return core;
    }

private:
    static Nodes Tighten(Nodes const& a, Nodes const& b, Nodes const& without) {
        Nodes result;
        for (Node const node : a) {
            if (b.count(node) > 0 && without.count(node) == 0) {
                result.insert(node);
            }
        }
        return result;
    }
    static Nodes United(Nodes a, Nodes const& b) {
        a.insert(b.begin(), b.end());
        return a;
    }
    bool Go_on(Nodes const& set) const {
        return std::ranges::none_of(
            known_, [&](Nodes const& one) { return std::ranges::includes(one, set); });
    }
    void Take(Node node) {
        known_.clear();
        for (auto const& clique : cliques_) {
            if (std::ranges::binary_search(clique, node)) {
                known_.emplace_back(clique.begin(), clique.end());
            }
        }
        Nodes const neighs = work_[node];
        Nodes candidates = neighs;
        while (candidates.size() > 1 && !too_slow_) {
            Node const first = *candidates.begin();
            Nodes const clique{node, first};
            Nodes extension = Tighten(work_[first], candidates, clique);
            candidates.erase(first);
            if (Go_on(United(clique, extension))) {
                while (!extension.empty() && !too_slow_) {
                    Node const next = *extension.begin();
                    extension.erase(next);
                    Extend(next, clique, extension);
                }
            }
        }
        if (!too_slow_) {
            for (Node const other : neighs) {
                work_[other].erase(node);
            }
        }
    }
    void Extend(Node node, Nodes clique, Nodes const& candidates) {
        Nodes extension = Tighten(work_[node], candidates, clique);
        clique.insert(node);
        if (extension.empty()) {
            if (Go_on(clique)) {
                found_.emplace_back(clique.begin(), clique.end());
                known_.push_back(clique);
            }
        } else if (Go_on(United(clique, extension))) {
            while (!extension.empty() && !too_slow_) {
                if (overruns_) {
                    too_slow_ = true;
                    return;
                }
                Node const next = *extension.begin();
                extension.erase(next);
                Extend(next, clique, extension);
            }
        }
    }

    std::map<Node, Nodes> work_;
    std::vector<Nodes> known_;
    Sets found_;
    Sets cliques_;
    std::string reports_;
    bool overruns_ = false;
    bool too_slow_ = false;
};

} // namespace cpm::test

#endif
