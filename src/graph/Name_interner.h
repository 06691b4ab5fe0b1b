// SPDX-License-Identifier: MIT
// Name_interner: gives each different name a number as it is first seen. A hash table without
// chains; names of up to seven bytes are their own key, so that most look-ups touch one cache line.
#ifndef PLEXOR_NAME_INTERNER_H
#define PLEXOR_NAME_INTERNER_H

#include "graph/Types.h"

#include <string_view>

namespace cpm {

class Name_interner {
public:
    /// A name of up to seven bytes as a number, or the hash of a longer one; the top byte keeps the
    /// two apart. `readable` bytes from the name's first one may be read.
    static std::uint64_t Key(std::string_view name, std::size_t readable);

    Name_interner();
    /// Fetches the memory that Number() will look at first.
    void Prefetch(std::uint64_t key) const { __builtin_prefetch(&slots_[Home(key)]); }
    /// The name's number: 0, 1, 2, ... in the order in which names are first asked for.
    Node Number(std::string_view name, std::uint64_t key);
    /// The names by their numbers.
    Name_table const& Names() const { return names_; }
    /// Frees the hash table, which is no longer needed once all names are known.
    void Release_table();

private:
    struct Slot {
        std::uint64_t key = 0; ///< 0: free
        Node number = 0;
    };

    std::size_t Home(std::uint64_t key) const {
        // Fibonacci hashing: the product's top bits depend on every bit of the key.
        return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15U) >> shift_);
    }
    void Grow();

    Name_table names_;
    Flat_array<Slot> slots_;
    unsigned shift_;
};

} // namespace cpm

#endif
