// SPDX-License-Identifier: MIT
#include "Coms_funcs/Community_graph.h"
#include "Engine_values.h"
#include "Search.h"
#include "Search_data.h"

#include <utility>

namespace plexor_access {

Lists const& Level::Nodes() const {
    return data_->nodes;
}

Lists const& Level::Cliques() const {
    return data_->cliques;
}

Lists const& Level::K_cliques() const {
    return data_->k_cliques;
}

std::size_t Level::N_exact() const {
    return data_->n_exact;
}

namespace {

// Lists the links that it is handed.
class Link_lister : public cpm::Link_visitor {
public:
    explicit Link_lister(Search_data const& search) : search_(search) {}

    void Numbers(std::span<cpm::Link_number const> numbers) override {
        for (cpm::Link_number const number : numbers) {
            Number const first = search_.smaller_ends[number] - 1;
            Number const second = search_.edges.Larger_end(number) - 1;
            bool const reversed = search_.reversed[number];
            source.push_back(reversed ? second : first);
            target.push_back(reversed ? first : second);
        }
    }
    void All_pairs(cpm::Node_set nodes) override {
        for (std::size_t i = 0; i + 1 < nodes.size(); ++i) {
            row_.clear();
            search_.edges.Append_numbers(nodes[i], nodes.subspan(i + 1), row_);
            Numbers(row_);
        }
    }

    std::vector<Number> source;
    std::vector<Number> target;

private:
    Search_data const& search_;
    std::vector<cpm::Link_number> row_;
};

Counts From(cpm::Distribution const& distribution) {
    std::vector<Integer> values;
    std::vector<Integer> counts;
    for (cpm::Value_count const& entry : distribution) {
        values.push_back(entry.value);
        counts.push_back(static_cast<Integer>(entry.count));
    }
    return {Array(std::move(values)), Array(std::move(counts))};
}

cpm::Community_part From(Part part) {
    return part == Part::all     ? cpm::Community_part::all
           : part == Part::exact ? cpm::Community_part::exact
                                 : cpm::Community_part::approximated;
}

} // namespace

// The engine's own form of the level, for as long as something is made of it.
cpm::Communities Level_data::Communities() const {
    cpm::Communities coms;
    coms.n_exact = static_cast<std::uint32_t>(n_exact);
    coms.links = links;
    for (std::size_t i = 0; i + 1 < nodes.offsets.size; ++i) {
        for (Integer at = nodes.offsets.data[i]; at < nodes.offsets.data[i + 1]; ++at) {
            coms.nodes.Append(nodes.members.data[at] + 1);
        }
        coms.nodes.Close_list();
    }
    return coms;
}

Level_links Level::Links(Watcher& watcher) const {
    cpm::Communities const coms = data_->Communities();
    Link_lister lister(*data_->search);
    std::vector<Integer> offsets{0};
    for (std::size_t i = 0; i < coms.size(); ++i) {
        watcher.Tick();
        coms.Visit_links(i, lister);
        offsets.push_back(static_cast<Integer>(lister.source.size()));
    }
    return {Array(std::move(lister.source)), Array(std::move(lister.target)),
            Array(std::move(offsets))};
}

Overlaps Level::Graph(Watcher& watcher) const {
    cpm::Communities const coms = data_->Communities();
    cpm::Community_graph graph;
    Prepare_community_graph(coms, graph);
    std::vector<Integer> a;
    std::vector<Integer> b;
    std::vector<Integer> shared;
    graph.Walk([&](std::uint32_t community, std::span<cpm::Overlap const> row) {
        watcher.Tick();
        for (cpm::Overlap const& overlap : row) {
            a.push_back(community);
            b.push_back(overlap.community);
            shared.push_back(overlap.shared);
        }
    });
    return {Array(std::move(a)), Array(std::move(b)), Array(std::move(shared))};
}

Distributions Level::Count(Part part) const {
    cpm::Communities const coms = data_->Communities();
    cpm::Community_graph graph;
    Prepare_community_graph(coms, graph);
    cpm::Community_distributions distributions;
    Community_statistics(distributions, graph, From(part), data_->search->N_nodes());
    return {From(distributions.membership), From(distributions.size), From(distributions.overlap),
            From(distributions.degree)};
}

} // namespace plexor_access
