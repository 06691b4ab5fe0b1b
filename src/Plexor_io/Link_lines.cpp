// SPDX-License-Identifier: MIT
#include "Plexor_io/Link_lines.h"

namespace cpm {

Link_lines::Link_lines(Pair_table const& pairs, Index_links const& links, Names_map const& names)
    : pairs_(pairs), names_(names) {
    starts_.Reserve(pairs.size() + 1);
    starts_.push_back(0);
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
            bool const as_is = is_link({first, second});
            smaller_first_ = smaller_first_ && as_is;
            bytes_.Append(names.Spaced(as_is ? first : second));
            bytes_.Append(names[as_is ? second : first]);
            bytes_.push_back('\n');
            starts_.push_back(bytes_.size());
        }
    }
    bytes_.Resize(bytes_.size() + padding, '\n');
    bytes_.Shrink_to_fit();
}

void Link_lines::Put(std::span<Link_number const> numbers, Text_sink& text) const {
    // The lines of a community lie all over the text of a large network.
    constexpr std::size_t ahead = 12;
    for (std::size_t i = 0; i < numbers.size();) {
        if (i + 2 * ahead < numbers.size()) {
            __builtin_prefetch(&starts_[numbers[i + 2 * ahead]]);
            __builtin_prefetch(bytes_.data() + starts_[numbers[i + ahead]]);
        }
        std::uint64_t const begin = starts_[numbers[i]];
        // A run of consecutive numbers.
        for (++i; i < numbers.size() && numbers[i] == numbers[i - 1] + 1;) {
            ++i;
        }
        std::uint64_t const end = starts_[std::size_t{numbers[i - 1]} + 1];
        auto const size = static_cast<std::size_t>(end - begin);
        if (size <= padding) {
            text.Put_padded<padding>(bytes_.data() + begin, size);
        } else {
            text.Put({bytes_.data() + begin, size});
        }
    }
}

void Link_lines::Put_all_pairs(Node_set nodes, Text_sink& text) {
    if (smaller_first_ && Take_names(nodes)) {
        for (std::size_t i = 0; i < halves_.size(); ++i) {
            Half_line first = halves_[i];
            first.bytes[first.size - 1U] = ' ';
            for (std::size_t j = i + 1; j < halves_.size(); ++j) {
                text.Put_padded<sizeof(first.bytes)>(first.bytes.data(), first.size);
                text.Put_padded<sizeof(first.bytes)>(halves_[j].bytes.data(), halves_[j].size);
            }
        }
        return;
    }
    for (std::size_t i = 0; i + 1 < nodes.size(); ++i) {
        row_.clear();
        pairs_.Append_numbers(nodes[i], nodes.subspan(i + 1), row_);
        Put(row_, text);
    }
}

// Keeps the name of each node with an end of line behind it. False when one of them is too long.
bool Link_lines::Take_names(Node_set nodes) {
    halves_.clear();
    for (Node const node : nodes) {
        std::string_view const name = names_[node];
        Half_line half{};
        if (name.size() >= half.bytes.size()) {
            return false;
        }
        *std::ranges::copy(name, half.bytes.begin()).out = '\n';
        half.size = static_cast<unsigned char>(name.size() + 1);
        halves_.push_back(half);
    }
    return true;
}

} // namespace cpm
