// SPDX-License-Identifier: MIT
#include "Coms_funcs/Edge_numbering.h"

#include "graph/Link_order.h"
#include "support/Bits.h"
#include "support/Errors.h"
#include "support/Grouping.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

namespace cpm {

namespace {

[[noreturn]] void Throw_too_many() {
    throw Too_large("ERROR: the network has more than 4294967295 links.");
}

// Whether one of the sets holds more pairs than can be numbered: the table would fill the memory
// before it showed.
bool One_is_too_large(Set_list const& cliques, std::size_t n_exact) {
    std::uint64_t largest = 0;
    for (std::size_t c = n_exact; c < cliques.size(); ++c) {
        largest = std::max<std::uint64_t>(largest, cliques[c].size());
    }
    return largest * largest / 2 - largest / 2 > std::numeric_limits<Link_number>::max();
}

// The larger nodes that share an approximated clique with a node. Neighbourhoods in a dense core
// overlap so much that walking them for each of their nodes would take the cube of their number:
// such sets are joined as rows of bits.
class Companions {
public:
    Companions(Set_list const& cliques, std::size_t n_exact, Node n_nodes)
        : cliques_(cliques), n_exact_(n_exact), cliques_at_(Groups<Clique_number>::Of_members(
                                                    cliques, n_exact, std::size_t{n_nodes} + 1)) {
        Flat_array<std::uint32_t> number_of(cliques_at_.size(), 0);
        for (Node node = 0; node < cliques_at_.size(); ++node) {
            if (!cliques_at_[node].empty()) {
                number_of[node] = static_cast<std::uint32_t>(nodes_.size());
                nodes_.push_back(node);
            }
        }
        n_words_ = Words_for(nodes_.size());
        std::size_t const n_words = n_words_ * (cliques.size() - n_exact);
        if (n_words > cliques.Total() - cliques.Starts()[n_exact]) {
            return; // the sets are small: bits would take more memory than their members
        }
        rows_.Resize(n_words, 0);
        for (std::size_t c = n_exact; c < cliques.size(); ++c) {
            for (Node const node : cliques[c]) {
                Set_bit(rows_.data() + (c - n_exact) * n_words_, number_of[node]);
            }
        }
    }

    /// Calls visit(node) for them, and perhaps for smaller nodes; in any order, perhaps more than
    /// once.
    template <class Visit> void For_each(Node first, Visit const& visit) {
        if (rows_.empty()) {
            for (Clique_number const c : cliques_at_[first]) {
                std::ranges::for_each(cliques_[c], visit);
            }
            return;
        }
        joined_.assign(n_words_, 0);
        for (Clique_number const c : cliques_at_[first]) {
            std::uint64_t const* const row = rows_.data() + (c - n_exact_) * n_words_;
            for (std::size_t w = 0; w < n_words_; ++w) {
                joined_[w] |= row[w];
            }
        }
        for (std::size_t w = 0; w < n_words_; ++w) {
            For_each_bit(joined_[w], [&](std::size_t bit) { visit(nodes_[w * word_bits + bit]); });
        }
    }

private:
    Set_list const& cliques_;
    std::size_t n_exact_;
    Groups<Clique_number> cliques_at_;
    std::vector<Node> nodes_; ///< in some approximated clique, ascending: the bits of a row
    std::size_t n_words_ = 0;
    Flat_array<std::uint64_t> rows_; ///< one for each approximated clique, or none at all
    std::vector<std::uint64_t> joined_;
};

} // namespace

Edge_numbering::Edge_numbering(Index_links const& links, Node n_nodes, Set_list const& cliques,
                               std::size_t n_exact) {
    assert(std::ranges::all_of(links.pairs, [&](Node_pair const& pair) {
        return pair.first != pair.second && std::max(pair.first, pair.second) <= n_nodes;
    }));
    assert(std::ranges::all_of(cliques.Flat(), [&](Node node) { return node <= n_nodes; }));
    if (One_is_too_large(cliques, n_exact)) {
        Throw_too_many();
    }
    Flat_array<Node_pair> pairs = links.pairs;
    bool const undirected =
        std::ranges::all_of(pairs, [](Node_pair const& pair) { return pair.first < pair.second; });
    if (!undirected) {
        for (Node_pair& pair : pairs) {
            pair = {std::min(pair.first, pair.second), std::max(pair.first, pair.second)};
        }
        Flat_array<double> no_weights;
        Sort_and_merge(pairs, no_weights, n_nodes + 1);
    }
    bool const all_exact = n_exact >= cliques.size();
    std::optional<Companions> companions;
    if (!all_exact) {
        companions.emplace(cliques, n_exact, n_nodes);
    }
    larger_.Reserve(pairs.size());
    std::size_t next = 0;
    Flat_array<Node> seen_for(n_nodes + 1, 0); // the node whose row holds this one already
    for (Node first = 0; first <= n_nodes; ++first) {
        offsets_.push_back(static_cast<Link_number>(larger_.size()));
        for (; next < pairs.size() && pairs[next].first == first; ++next) {
            seen_for[pairs[next].second] = first;
            larger_.push_back(pairs[next].second);
        }
        if (!all_exact) {
            std::size_t const row = offsets_.back();
            companions->For_each(first, [&](Node second) {
                if (second > first && seen_for[second] != first) {
                    seen_for[second] = first;
                    larger_.push_back(second);
                }
            });
            std::sort(larger_.begin() + row, larger_.end());
        }
        if (larger_.size() > std::numeric_limits<Link_number>::max()) {
            Throw_too_many();
        }
    }
    offsets_.push_back(static_cast<Link_number>(larger_.size()));
}

void Edge_numbering::Append_numbers(Node first, Node_set others,
                                    std::vector<Link_number>& numbers) const {
    constexpr std::size_t steps_of_a_search = 8;
    Node_set const row = Larger_neighbours(first);
    if (row.size() / steps_of_a_search > others.size()) {
        for (Node const other : others) {
            numbers.push_back(Number(first, other));
        }
        return;
    }
    Link_number number = First_number(first);
    for (Node const other : others) {
        while (larger_[number] != other) {
            ++number;
        }
        assert(number < offsets_[first + 1]);
        numbers.push_back(number);
    }
}

} // namespace cpm
