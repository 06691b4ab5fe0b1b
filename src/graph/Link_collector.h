// SPDX-License-Identifier: MIT
// Link_collector: makes the link map of links as they come, between names.
//
// Links are taken in batches: the names of a whole batch are asked for before the first is looked
// up, so that the cache misses of the hash table overlap. This halves the time of reading.
#ifndef PLEXOR_LINK_COLLECTOR_H
#define PLEXOR_LINK_COLLECTOR_H

#include "graph/Name_interner.h"
#include "graph/Types.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace cpm {

class Link_collector {
public:
    struct Keyed_name {
        std::string_view name;
        std::uint64_t key = 0;
    };
    /// A name of which `readable` bytes, at least its own, may be read.
    static Keyed_name Keyed(std::string_view name, std::size_t readable) {
        return {name, Name_interner::Key(name, readable)};
    }

    /// Whether the links have weights.
    explicit Link_collector(bool weighted) : weighted_(weighted) {}

    /// Takes a link between different names. They must stay in memory until Close_batch().
    void Add(Keyed_name source, Keyed_name target, double weight) {
        batch_[filled_++] = {source, target};
        names_.Prefetch(source.key);
        names_.Prefetch(target.key);
        if (weighted_) {
            weights_.push_back(weight);
        }
        if (filled_ == batch_.size()) {
            Close_batch();
        }
    }
    /// Looks up the names of the links that wait for it.
    void Close_batch();
    /// Closes the batch and leaves the different names in byte order and the links in the order of
    /// their names, equal ones merged, their weights added up in the order in which they came.
    /// Nothing can be added from then on.
    void Finish(Link_map& links);
    /// The same, but for the links, which stay as they came.
    void Finish_unmerged(Link_map& links);

private:
    struct Entry {
        Keyed_name source;
        Keyed_name target;
    };

    bool weighted_;
    Name_interner names_;
    std::array<Entry, 32> batch_;
    std::size_t filled_ = 0;
    Flat_array<Node_pair> links_;
    Flat_array<double> weights_;
};

} // namespace cpm

#endif
