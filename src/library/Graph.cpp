// SPDX-License-Identifier: MIT
#include <plexor/Graph.h>

#include "graph/Convert_links.h"
#include "graph/Link_collector.h"
#include "graph/Link_order.h"
#include "library/Library_data.h"

#include <plexor/Error.h>

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <utility>

namespace plexor {

namespace {

// Whether a link stays, by its position.
class Link_filter {
public:
    Link_filter(std::size_t n_links, std::span<double const> weights, Graph_options const& options)
        : weights_(weights), options_(options) {
        if (!weights.empty() && weights.size() != n_links) {
            throw Error(Error::Kind::bad_argument, "as many weights as links are needed, or none");
        }
        if (weights.empty() && (options.above || options.below)) {
            throw Error(Error::Kind::bad_argument, "bounds of weights need weights");
        }
    }

    bool operator()(std::size_t link) const {
        return (!options_.above || weights_[link] > *options_.above) &&
               (!options_.below || weights_[link] < *options_.below);
    }
    double Weight(std::size_t link) const { return weights_.empty() ? 0.0 : weights_[link]; }

private:
    std::span<double const> weights_;
    Graph_options const& options_;
};

// Gives the caller's numbers new ones, 1, 2, 3, ..., as they are first asked for.
class Id_numbering {
public:
    // `n_links` is the number of links between them: numbers that are not much more than these are
    // looked up in an array.
    Id_numbering(std::uint32_t largest, std::size_t n_links) {
        constexpr std::size_t entries_a_link = 8;
        constexpr std::size_t small_array = std::size_t{1} << 20;
        if (largest < std::max(entries_a_link * n_links, small_array)) {
            by_id_.Resize(std::size_t{largest} + 1, 0);
        }
        ids_.push_back(0); // 0 is no node
    }

    Node Number(std::uint32_t id) {
        Node& number = by_id_.empty() ? sparse_[id] : by_id_[id];
        if (number == 0) {
            if (ids_.size() == std::numeric_limits<Node>::max()) {
                throw Error(Error::Kind::too_large, "more nodes than 32 bits can number");
            }
            number = static_cast<Node>(ids_.size());
            ids_.push_back(id);
        }
        return number;
    }
    cpm::Flat_array<std::uint32_t> Ids() && { return std::move(ids_); }

private:
    cpm::Flat_array<Node> by_id_; ///< empty where numbers are too far apart
    std::unordered_map<std::uint32_t, Node> sparse_;
    cpm::Flat_array<std::uint32_t> ids_;
};

// Equal links become one, then, in an undirected graph, a link and its reverse.
void Merge(cpm::Index_links& links, Node n_nodes, bool directed) {
    if (directed || !links.weights.empty()) {
        cpm::Sort_and_merge(links.pairs, links.weights, n_nodes + 1);
    }
    if (!directed) {
        for (cpm::Node_pair& pair : links.pairs) {
            pair = {std::min(pair.first, pair.second), std::max(pair.first, pair.second)};
        }
        cpm::Sort_and_merge(links.pairs, links.weights, n_nodes + 1);
    }
}

} // namespace

Graph Graph::From_edges(std::span<Edge const> edges, std::span<double const> weights,
                        Graph_options const& options) {
    Link_filter const stays(edges.size(), weights, options);
    std::uint32_t largest = 0;
    for (Edge const& edge : edges) {
        largest = std::max({largest, edge.source, edge.target});
    }
    auto data = std::make_shared<detail::Graph_data>();
    Id_numbering numbering(largest, edges.size());
    for (std::size_t i = 0; i < edges.size(); ++i) {
        if (edges[i].source != edges[i].target && stays(i)) {
            Node const source = numbering.Number(edges[i].source);
            data->links.pairs.push_back({source, numbering.Number(edges[i].target)});
            if (!weights.empty()) {
                data->links.weights.push_back(weights[i]);
            }
        }
    }
    data->ids = std::move(numbering).Ids();
    data->n_nodes = static_cast<Node>(data->ids.size() - 1);
    data->directed = options.directed;
    Merge(data->links, data->n_nodes, options.directed);
    return Graph(std::move(data));
}

Graph Graph::From_names(std::span<Named_edge const> edges, std::span<double const> weights,
                        Graph_options const& options) {
    using cpm::Link_collector;
    Link_filter const stays(edges.size(), weights, options);
    Link_collector collector(!weights.empty());
    auto const keyed = [](std::string_view name) {
        return Link_collector::Keyed(name, name.size());
    };
    for (std::size_t i = 0; i < edges.size(); ++i) {
        auto const& [source, target] = edges[i];
        if (source != target && stays(i)) {
            collector.Add(keyed(source), keyed(target), stays.Weight(i));
        }
    }
    cpm::Link_map links;
    collector.Finish(links);
    auto data = std::make_shared<detail::Graph_data>();
    cpm::Convert_s_links(data->links, data->names, links, options.directed);
    data->n_nodes = static_cast<Node>(data->names.size() - 1);
    data->directed = options.directed;
    return Graph(std::move(data));
}

Graph::Graph(std::shared_ptr<detail::Graph_data const> data) : data_(std::move(data)) {}

std::size_t Graph::Number_of_nodes() const {
    return data_->n_nodes;
}

std::size_t Graph::Number_of_links() const {
    return data_->links.size();
}

bool Graph::Directed() const {
    return data_->directed;
}

bool Graph::Weighted() const {
    return !data_->links.weights.empty();
}

std::uint32_t Graph::Id(Node node) const {
    return data_->ids.empty() ? node : data_->ids[node];
}

std::string_view Graph::Name(Node node) const {
    return node < data_->names.size() ? data_->names[node] : std::string_view();
}

Edge Graph::Link(std::size_t position) const {
    auto const [source, target] = data_->links.pairs[position];
    return {source, target};
}

double Graph::Weight(std::size_t position) const {
    return data_->links.Weight(position);
}

} // namespace plexor
