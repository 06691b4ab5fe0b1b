// SPDX-License-Identifier: MIT
#include "graph/Convert_links.h"

#include "graph/Link_order.h"

#include <utility>

namespace cpm {

void Convert_s_links(Index_links& index_links, Names_map& names, Link_map const& links,
                     bool directed) {
    names.clear();
    names.Reserve(links.names.size() + 1, links.names.Bytes() + 1);
    names.Add(""); // index 0 is no node
    Flat_array<Node> index(links.names.size(), 0);
    auto const index_of = [&](Node place) {
        if (index[place] == 0) {
            index[place] = static_cast<Node>(names.size());
            names.Add(links.names[place]);
        }
        return index[place];
    };
    index_links.pairs.clear();
    index_links.pairs.Reserve(links.links.size());
    for (Node_pair const& link : links.links) {
        Node first = index_of(link.first);
        Node second = index_of(link.second);
        if (!directed && second < first) {
            std::swap(first, second);
        }
        index_links.pairs.push_back({first, second});
    }
    index_links.weights = links.weights;
    Sort_and_merge(index_links.pairs, index_links.weights, static_cast<Node>(names.size()));
}

} // namespace cpm
