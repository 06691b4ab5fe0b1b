// SPDX-License-Identifier: MIT
#include "graph/Graph.h"

#include "support/Grouping.h"

#include <functional>

namespace cpm {

namespace {

Node Largest_node(Index_links const& links) {
    Node largest = 0;
    for (Node_pair const& link : links.pairs) {
        largest = std::max({largest, link.first, link.second});
    }
    return largest;
}

[[maybe_unused]] bool Are_well_formed(Index_links const& links, bool directed) {
    return std::ranges::adjacent_find(links.pairs, std::greater_equal<>()) == links.pairs.end() &&
           std::ranges::all_of(links.pairs, [directed](Node_pair const& link) {
               return link.first != 0 && link.second != 0 &&
                      (directed ? link.first != link.second : link.first < link.second);
           });
}

// Pairs of linked nodes, smaller index first, ascending, and how the smaller one is linked with the
// larger.
struct Linked_pairs {
    Flat_array<Node_pair> pairs;
    Flat_array<Arcs> arcs;
};

// At each node two ascending lists are merged: where its own links lead to, which stand side by
// side, and where links to it come from.
Linked_pairs Merge_directions(Index_links const& links, Node n_nodes) {
    Groups<Node> const sources(
        links.size(), std::size_t{n_nodes} + 1,
        [&](std::size_t i) { return links.pairs[i].second; },
        [&](std::size_t i) { return links.pairs[i].first; });
    Linked_pairs merged;
    Node_pair const* to = links.pairs.begin();
    Node_pair const* const end = links.pairs.end();
    for (Node node = 1; node <= n_nodes; ++node) {
        while (to != end && to->first == node && to->second < node) {
            ++to; // met at the smaller node
        }
        std::span<Node const> const all = sources[node];
        Node const* from = std::ranges::upper_bound(all, node).base();
        Node const* const from_end = all.data() + all.size();
        while ((to != end && to->first == node) || from != from_end) {
            bool const is_to = to != end && to->first == node;
            Node const neighbour =
                is_to && (from == from_end || to->second < *from) ? to->second : *from;
            Arcs arcs = 0;
            if (is_to && to->second == neighbour) {
                arcs |= Arc_to;
                ++to;
            }
            if (from != from_end && *from == neighbour) {
                arcs |= Arc_from;
                ++from;
            }
            merged.pairs.push_back({node, neighbour});
            merged.arcs.push_back(arcs);
        }
    }
    return merged;
}

} // namespace

// A counting sort.
void Sort_by_counts(std::vector<Node>& order, Flat_array<Node> const& counts) {
    order.resize(counts.size());
    Node const largest = counts.empty() ? 0 : *std::ranges::max_element(counts);
    Flat_array<Node> begins(std::size_t{largest} + 1, 0);
    for (Node const count : counts) {
        ++begins[count];
    }
    Counts_to_begins(begins);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        order[begins[counts[i]]++] = static_cast<Node>(i + 1);
    }
}

Graph::Graph(Index_links const& links, bool directed) : directed_(directed) {
    assert(Are_well_formed(links, directed));
    Node const n_nodes = Largest_node(links);
    if (directed) {
        Linked_pairs const merged = Merge_directions(links, n_nodes);
        Build(merged.pairs, merged.arcs, n_nodes);
    } else {
        Build(links.pairs, {}, n_nodes);
    }
}

void Graph::Build(Flat_array<Node_pair> const& pairs, Flat_array<Arcs> const& arcs, Node n_nodes) {
    Flat_array<Node> counts(n_nodes, 0);
    for (Node_pair const& pair : pairs) {
        ++counts[pair.first - 1];
        ++counts[pair.second - 1];
    }
    Sort_by_counts(nodes_, counts);
    if (directed_) {
        Split<true>(pairs, arcs, counts);
    } else {
        Split<false>(pairs, arcs, counts);
    }
}

// Splits the neighbours of each node; it has so many (`counts`). Each part is filled from its end:
// then its cursor arrives at its begin. Taken from the last pair on, a node meets its larger
// neighbours first and both kinds in descending order.
template <bool with_arcs>
void Graph::Split(Flat_array<Node_pair> const& pairs, Flat_array<Arcs> const& arcs,
                  Flat_array<Node> const& counts) {
    Flat_array<Node> places(nodes_.size() + 1, 0);
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
        places[nodes_[i]] = static_cast<Node>(i);
    }
    auto const is_in_order = [&](Node_pair const& pair) {
        return places[pair.first] < places[pair.second];
    };
    middles_.Resize(places.size(), 0);
    for (Node_pair const& pair : pairs) {
        ++middles_[is_in_order(pair) ? pair.first : pair.second];
    }
    begins_.Resize(places.size() + 1, 0);
    std::uint64_t end = 0;
    for (std::size_t node = 1; node < places.size(); ++node) {
        begins_[node] = end + middles_[node];
        end += counts[node - 1];
        middles_[node] = end;
    }
    begins_[places.size()] = end;
    neighbours_.Resize_uninitialised(end);
    if constexpr (with_arcs) {
        arcs_.Resize_uninitialised(end);
    }
    for (std::size_t i = pairs.size(); i-- > 0;) {
        bool const as_it_is = is_in_order(pairs[i]);
        Node const earlier = as_it_is ? pairs[i].first : pairs[i].second;
        Node const later = as_it_is ? pairs[i].second : pairs[i].first;
        std::uint64_t const at_earlier = --begins_[earlier];
        std::uint64_t const at_later = --middles_[later];
        neighbours_[at_earlier] = later;
        neighbours_[at_later] = earlier;
        if constexpr (with_arcs) {
            arcs_[at_earlier] = as_it_is ? arcs[i] : Reversed(arcs[i]);
            arcs_[at_later] = as_it_is ? Reversed(arcs[i]) : arcs[i];
        }
    }
}

} // namespace cpm
