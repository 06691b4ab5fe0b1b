// SPDX-License-Identifier: MIT
// Graph: a network, ready to be searched.
#ifndef PLEXOR_API_GRAPH_H
#define PLEXOR_API_GRAPH_H

#include <plexor/Export.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

namespace plexor {

/// A node's number: 1, 2, 3, ... without gaps. 0 is no node.
using Node = std::uint32_t;
/// Nodes in ascending order, each once. A view: valid as long as the value that it was taken from,
/// or a copy of that value.
using Nodes = std::span<Node const>;

/// A link. Direction counts in directed graphs only.
struct Edge {
    std::uint32_t source = 0;
    std::uint32_t target = 0;
    friend bool operator==(Edge const&, Edge const&) = default;
};

struct Named_edge {
    std::string_view source;
    std::string_view target;
};

struct Graph_options {
    /// Whether a link leads from its source to its target only.
    bool directed = false;
    /// Links whose weight is not above `above`, or not below `below`, are left out, one by one as
    /// they are given, before the weights of repeated links are added up.
    std::optional<double> above = std::nullopt;
    std::optional<double> below = std::nullopt;
};

namespace detail {
struct Graph_data;
}

/// A value that never changes; copies share it, and several threads may read it.
class PLEXOR_API Graph {
public:
    /// Links between nodes that the caller has numbered in any way. The graph numbers them anew, in
    /// the order in which the links that stay first name them, a source before its target; Id()
    /// leads back. Links of a node with itself are left out. A link given several times is one, its
    /// weights added up in the order given; so, in an undirected graph, are a link and its reverse.
    /// `weights` has an entry a link or is empty: then all weights are 0.
    /// Throws Error: bad_argument (another number of weights; a bound of the weights without
    /// weights), too_large (2^32 - 1 different nodes or more).
    static Graph From_edges(std::span<Edge const> edges, std::span<double const> weights = {},
                            Graph_options const& options = {});
    /// The same for names, any bytes. The nodes are numbered as `plexor` numbers those of a link
    /// file: in the order in which the links, sorted by their names byte by byte, name them.
    static Graph From_names(std::span<Named_edge const> edges, std::span<double const> weights = {},
                            Graph_options const& options = {});

    /// Nodes that have a link.
    std::size_t Number_of_nodes() const;
    /// Different links.
    std::size_t Number_of_links() const;
    bool Directed() const;
    /// Whether there are weights other than 0.
    bool Weighted() const;

    /// The caller's number of a node of From_edges().
    std::uint32_t Id(Node node) const;
    /// The name of a node of From_names(); that of other nodes is empty. Valid as long as the
    /// graph.
    std::string_view Name(Node node) const;

    /// The link at a position below Number_of_links(), by this graph's numbers. They are ascending
    /// by source, then by target; in undirected graphs the source is the smaller one.
    Edge Link(std::size_t position) const;
    double Weight(std::size_t position) const;

    /// For the library itself.
    std::shared_ptr<detail::Graph_data const> const& Data() const { return data_; }

private:
    explicit Graph(std::shared_ptr<detail::Graph_data const> data);

    std::shared_ptr<detail::Graph_data const> data_;
};

} // namespace plexor

#endif
