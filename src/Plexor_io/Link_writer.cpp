// SPDX-License-Identifier: MIT
#include "Plexor_io/Link_writer.h"

#include <vector>

namespace cpm {

Link_writer::Link_writer(Edge_numbering const& edges, Index_links const& links,
                         Name_labels const& labels)
    : edges_(edges), labels_(labels) {
    // Both the edges and the links are ascending, so one look at each is enough.
    std::size_t next = 0;
    auto const is_link = [&](Node_pair pair) {
        while (next < links.size() && links.pairs[next] < pair) {
            ++next;
        }
        return next < links.size() && links.pairs[next] == pair;
    };
    std::size_t number = 0;
    for (Node first = 0; first < edges.Smaller_ends_end(); ++first) {
        for (Node const second : edges.Larger_neighbours(first)) {
            if (!is_link({first, second})) {
                reversed_.Resize(Words_for(edges.size()), 0);
                Set_bit(reversed_.data(), number);
            }
            ++number;
        }
    }
}

// Where all communities are single cliques nobody asks for links by their numbers.
void Link_writer::List_firsts() const {
    firsts_.Reserve(edges_.size());
    for (Node first = 0; first < edges_.Smaller_ends_end(); ++first) {
        firsts_.Resize(firsts_.size() + edges_.Larger_neighbours(first).size(), first);
    }
}

void Link_writer::Put(std::span<Link_number const> numbers, Text_sink& text) const {
    std::call_once(needs_firsts_, [this] { List_firsts(); });
    for (Link_number const number : numbers) {
        Node const first = firsts_[number];
        Node const second = edges_.Larger_end(number);
        if (!reversed_.empty() && Has_bit(reversed_.data(), number)) {
            Put_line(second, first, text);
        } else {
            Put_line(first, second, text);
        }
    }
}

void Link_writer::Put_all_pairs(Node_set nodes, Text_sink& text) const {
    std::vector<Link_number> row;
    for (std::size_t i = 0; i + 1 < nodes.size(); ++i) {
        Node_set const others = nodes.subspan(i + 1);
        if (!reversed_.empty()) {
            row.clear();
            edges_.Append_numbers(nodes[i], others, row);
            Put(row, text);
        } else {
            for (Node const other : others) {
                Put_line(nodes[i], other, text);
            }
        }
    }
}

} // namespace cpm
