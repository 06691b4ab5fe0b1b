// SPDX-License-Identifier: MIT
// The overlaps of all pairs of communities, counted once for the graph and the statistics.
//
// Takes    the communities of one k, exact ones first.
// Leaves   each pair that shares nodes once, and the four distributions of all communities, of the
//          exact and of the approximated ones.
// Order    rows by their community, in a row by the later community.
// Cost     time: for each node the pairs of its communities, and the sorting of each row; memory: 8
//          bytes per member, 16 per node, a few dozen per community, nothing per pair.
// Tested   Community_graph_test.cpp, the runs against the plain model.
#include "Coms_funcs/Community_graph.h"

#include "support/Bits.h"
#include "support/Errors.h"
#include "support/Grouping.h"

#include <algorithm>

namespace cpm {

namespace {

// counts[value], which grows as values come.
void Add_one(Flat_array<std::uint64_t>& counts, std::size_t value) {
    while (counts.size() <= value) {
        counts.push_back(0);
    }
    ++counts[value];
}

Distribution Listed(Flat_array<std::uint64_t> const& counts) {
    Distribution distribution;
    for (std::size_t value = 0; value < counts.size(); ++value) {
        if (counts[value] != 0) {
            distribution.push_back({static_cast<std::uint32_t>(value), counts[value]});
        }
    }
    return distribution;
}

} // namespace

void Prepare_community_graph(Communities const& coms, Community_graph& graph) {
    graph.Prepare(coms);
}

void Community_graph::Prepare(Communities const& coms) {
    coms_ = &coms;
    walked_ = false;
    std::size_t const n_nodes = Number_nodes();
    offsets_.clear();
    offsets_.Resize(n_nodes + 1, 0);
    for (Node const number : flat_) {
        ++offsets_[number];
    }
    Counts_to_ends(offsets_);
    // Filled from its end, each part arrives at its start.
    members_.Resize_uninitialised(flat_.size());
    for (std::size_t i = coms.size(), at = flat_.size(); i-- > 0;) {
        for (std::size_t n = coms.nodes[i].size(); n > 0; --n) {
            members_[--offsets_[flat_[--at]]] = static_cast<std::uint32_t>(i);
        }
    }
}

// Fills flat_; returns how many nodes are in communities.
std::size_t Community_graph::Number_nodes() {
    std::span<Node const> const all = coms_->nodes.Flat();
    std::size_t const node_end = all.empty() ? 0 : std::size_t{*std::ranges::max_element(all)} + 1;
    number_.Resize(std::max(number_.size(), node_end), 0);
    flat_.Resize_uninitialised(all.size());
    Flat_array<Node>& numbered = members_; // not needed yet
    numbered.clear();
    for (std::size_t i = 0; i < all.size(); ++i) {
        Node const node = all[i];
        if (number_[node] == 0) {
            numbered.push_back(node);
            number_[node] = static_cast<Node>(numbered.size());
        }
        flat_[i] = number_[node] - 1;
    }
    for (Node const node : numbered) {
        number_[node] = 0;
    }
    return numbered.size();
}

void Community_graph::Walk(Take_overlaps const& take) {
    std::size_t const n_coms = coms_->size();
    passed_.clear();
    passed_.Resize(N_nodes(), 0);
    shared_.Resize(n_coms, 0);
    for (Flat_array<std::uint64_t>& counts : overlap_counts_) {
        counts.clear();
    }
    degrees_.clear();
    degrees_.Resize(n_coms, 0);
    degrees_other_.clear();
    degrees_other_.Resize(coms_->n_exact < n_coms ? n_coms : 0, 0);
    for (std::size_t i = 0; i < n_coms; ++i) {
        auto const community = static_cast<std::uint32_t>(i);
        Fill_row(community);
        if (!row_.empty()) {
            Count_row(community);
            take(community, row_);
        }
    }
    walked_ = true;
}

// Invariant: passed_ of a node is how many of its communities come before that of the row.
// Relies on: rows are filled in ascending order, and the communities of a node are ascending.
// Buys:      only later communities are met; nothing is searched for.
void Community_graph::Fill_row(std::uint32_t community) {
    touched_.Resize_uninitialised(coms_->size() + 1);
    std::size_t n_touched = 0;
    std::uint64_t const* const begins = coms_->nodes.Starts() + community;
    for (std::uint64_t n = begins[0]; n < begins[1]; ++n) {
        std::size_t const node = flat_[n];
        std::uint64_t const end = offsets_[node + 1];
        for (std::uint64_t at = offsets_[node] + ++passed_[node]; at < end; ++at) {
            std::uint32_t const other = members_[at];
            // Written each time and kept the first time: no branch predictor could tell which.
            touched_[n_touched] = other;
            n_touched += static_cast<std::size_t>(shared_[other]++ == 0);
        }
    }
    touched_.Resize_uninitialised(n_touched);
    // At low k a hub's communities overlap with most others: a bitmap sorts them.
    constexpr std::size_t bits_worth_a_comparison_sort = 256; // for each number to sort
    Sort_unique(touched_, community, coms_->size(), bits_worth_a_comparison_sort, bits_);
    row_.clear();
    for (std::uint32_t const other : touched_) {
        row_.push_back({other, shared_[other]});
        shared_[other] = 0;
    }
}

void Community_graph::Count_row(std::uint32_t community) {
    std::span<Overlap const> const row = row_;
    if (community >= coms_->n_exact) {
        Count_pairs(community, row, both_approximated);
        return;
    }
    auto const middle = std::ranges::lower_bound(row, coms_->n_exact, {}, &Overlap::community);
    auto const n_exact = static_cast<std::size_t>(middle - row.begin());
    Count_pairs(community, row.first(n_exact), both_exact);
    Count_pairs(community, row.subspan(n_exact), one_of_each);
}

void Community_graph::Count_pairs(std::uint32_t community, std::span<Overlap const> row,
                                  Pair_kind kind) {
    if (row.empty()) {
        return;
    }
    Flat_array<std::uint32_t>& degrees = kind == one_of_each ? degrees_other_ : degrees_;
    degrees[community] += static_cast<std::uint32_t>(row.size());
    for (Overlap const& overlap : row) {
        ++degrees[overlap.community];
        Add_one(overlap_counts_[kind], overlap.shared);
    }
}

Flat_array<std::uint64_t> Community_graph::Overlap_counts(Community_part part) const {
    if (part != Community_part::all) {
        return overlap_counts_[part == Community_part::exact ? both_exact : both_approximated];
    }
    Flat_array<std::uint64_t> sum;
    for (Flat_array<std::uint64_t> const& counts : overlap_counts_) {
        sum.Resize(std::max(sum.size(), counts.size()), 0);
        for (std::size_t size = 0; size < counts.size(); ++size) {
            sum[size] += counts[size];
        }
    }
    return sum;
}

std::uint32_t Community_graph::Degree(std::size_t community, Community_part part) const {
    bool const other_part = part == Community_part::all && !degrees_other_.empty();
    return degrees_[community] + (other_part ? degrees_other_[community] : 0);
}

void Community_statistics(Community_distributions& distributions, Community_graph& graph,
                          Community_part part, Node node_count) {
    if (!graph.Walked()) {
        graph.Walk([](std::uint32_t, std::span<Overlap const>) {});
    }
    Communities const& coms = graph.Coms();
    std::size_t const n_exact = std::min<std::size_t>(coms.n_exact, coms.size());
    std::size_t const first = part == Community_part::approximated ? n_exact : 0;
    std::size_t const last = part == Community_part::exact ? n_exact : coms.size();

    Flat_array<std::uint64_t> sizes;
    Flat_array<std::uint64_t> degrees;
    for (std::size_t i = first; i < last; ++i) {
        Add_one(sizes, coms.nodes[i].size());
        Add_one(degrees, graph.Degree(i, part));
    }
    distributions.size = Listed(sizes);
    distributions.degree = Listed(degrees);
    distributions.overlap = Listed(graph.Overlap_counts(part));

    Flat_array<std::uint64_t> memberships;
    std::uint64_t n_counted = 0;
    for (std::size_t node = 0; node < graph.N_nodes(); ++node) {
        std::span<std::uint32_t const> const of = graph.Coms_of(node);
        auto const within =
            std::ranges::lower_bound(of, last) - std::ranges::lower_bound(of, first);
        if (within > 0) {
            Add_one(memberships, static_cast<std::size_t>(within));
            ++n_counted;
        }
    }
    distributions.membership = Listed(memberships);
    if (n_counted > node_count) {
        throw Xerror_msg(
            "ERROR: Community_statistics() : More vertex in the communities than in the graph.");
    }
    distributions.membership.insert(distributions.membership.begin(), {0, node_count - n_counted});
}

} // namespace cpm
