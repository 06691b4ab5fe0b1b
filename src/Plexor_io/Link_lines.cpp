// SPDX-License-Identifier: MIT
#include "Plexor_io/Link_lines.h"

namespace cpm {

Link_lines::Link_lines(Pair_table const& pairs, Index_links const& links, Name_labels const& labels)
    : pairs_(pairs), labels_(labels), turned_(pairs.size() / 64 + 1, 0) {
    firsts_.Reserve(pairs.size());
    // Both the pairs and the links are ascending, so one look at each is enough.
    std::size_t next = 0;
    auto const is_link = [&](Node_pair pair) {
        while (next < links.size() && links.pairs[next] < pair) {
            ++next;
        }
        return next < links.size() && links.pairs[next] == pair;
    };
    for (Node first = 0; pairs.size() > 0 && first <= pairs.Last_first(); ++first) {
        for (Node const second : pairs.Seconds(first)) {
            if (!is_link({first, second})) {
                turned_[firsts_.size() / 64] |= std::uint64_t{1} << (firsts_.size() % 64);
                any_turned_ = true;
            }
            firsts_.push_back(first);
        }
    }
}

void Link_lines::Put(std::span<Link_number const> numbers, Text_sink& text) const {
    // The names of a community's links lie all over the names of a large network.
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        Link_number const number = numbers[i];
        Node const first = firsts_[number];
        Node const second = pairs_.Second(number);
        if (any_turned_ && (turned_[number / 64] >> (number % 64) & 1) != 0) {
            Put_line(second, first, text);
        } else {
            Put_line(first, second, text);
        }
    }
}

void Link_lines::Put_all_pairs(Node_set nodes, Text_sink& text) {
    for (std::size_t i = 0; i + 1 < nodes.size(); ++i) {
        Node_set const others = nodes.subspan(i + 1);
        if (any_turned_) {
            row_.clear();
            pairs_.Append_numbers(nodes[i], others, row_);
            Put(row_, text);
        } else {
            for (Node const other : others) {
                Put_line(nodes[i], other, text);
            }
        }
    }
}

} // namespace cpm
