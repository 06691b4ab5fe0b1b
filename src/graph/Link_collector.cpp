// SPDX-License-Identifier: MIT
#include "graph/Link_collector.h"

#include "graph/Link_order.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace cpm {

namespace {

// The first eight bytes of a name as a number that orders as the bytes do.
std::uint64_t Order_prefix(std::string_view name) {
    std::uint64_t word = 0;
    std::memcpy(&word, name.data(), std::min(name.size(), sizeof(word)));
    return std::endian::native == std::endian::little ? __builtin_bswap64(word) : word;
}

struct Ordered_name {
    std::uint64_t prefix = 0;
    Node number = 0;
};

} // namespace

void Link_collector::Close_batch() {
    for (std::size_t i = 0; i < filled_; ++i) {
        auto const& [source, target] = batch_[i];
        Node const source_number = names_.Number(source.name, source.key);
        links_.push_back({source_number, names_.Number(target.name, target.key)});
    }
    filled_ = 0;
}

void Link_collector::Finish(Link_map& links) {
    Finish_unmerged(links);
    Sort_and_merge(links.links, links.weights, static_cast<Node>(links.names.size()));
}

void Link_collector::Finish_unmerged(Link_map& links) {
    links = Link_map();
    Close_batch();
    names_.Release_table();
    Name_table const& names = names_.Names();
    Node const n_names = static_cast<Node>(names.size());
    Flat_array<Ordered_name> order;
    order.Resize_uninitialised(n_names);
    for (Node number = 0; number < n_names; ++number) {
        order[number] = {Order_prefix(names[number]), number};
    }
    std::sort(order.begin(), order.end(), [&](Ordered_name const& a, Ordered_name const& b) {
        return a.prefix != b.prefix ? a.prefix < b.prefix : names[a.number] < names[b.number];
    });
    Flat_array<Node> rank;
    rank.Resize_uninitialised(n_names);
    links.names.Reserve(n_names, names.Bytes());
    for (Node place = 0; place < n_names; ++place) {
        rank[order[place].number] = place;
        links.names.Add(names[order[place].number]);
    }
    order.Release();
    for (Node_pair& link : links_) {
        link = {rank[link.first], rank[link.second]};
    }
    links.links = std::move(links_);
    links.weights = std::move(weights_);
}

} // namespace cpm
