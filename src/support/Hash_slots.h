// SPDX-License-Identifier: MIT
// An open-addressing hash table with linear probing: a power of two of slots, at most half of them
// used. What a key is and how keys compare is the caller's; a slot says whether it is used.
#ifndef PLEXOR_HASH_SLOTS_H
#define PLEXOR_HASH_SLOTS_H

#include "support/Flat_array.h"

#include <bit>
#include <cstddef>
#include <cstdint>

namespace cpm {

/// `Slot()` is an unused slot; `slot.Used()` says whether one is used; `slot.hash` is the hash of
/// what it holds, of which the low bits choose the place.
template <class Slot> class Hash_slots {
public:
    std::size_t size() const { return n_used_; }

    /// Forgets everything and leaves room for `expected` entries; more make it grow.
    void Clear(std::size_t expected) {
        slots_.clear();
        slots_.Resize(2 * std::bit_ceil(expected), Slot());
        n_used_ = 0;
    }

    /// The slot of that hash for which `is_same(slot)` is true, or else a slot that holds `fresh`
    /// from now on. It stays where it is until the next call.
    template <class Is_same> Slot& Find_or_add(Slot const& fresh, Is_same const& is_same) {
        if (2 * n_used_ >= slots_.size()) {
            Grow();
        }
        std::size_t const mask = slots_.size() - 1;
        std::size_t place = fresh.hash & mask;
        while (slots_[place].Used()) {
            if (slots_[place].hash == fresh.hash && is_same(slots_[place])) {
                return slots_[place];
            }
            place = (place + 1) & mask;
        }
        slots_[place] = fresh;
        ++n_used_;
        return slots_[place];
    }

private:
    void Grow() {
        constexpr std::size_t smallest = 16;
        Flat_array<Slot> old;
        old.Swap(slots_);
        slots_.Resize(old.empty() ? smallest : 2 * old.size(), Slot());
        std::size_t const mask = slots_.size() - 1;
        for (Slot const& slot : old) {
            if (slot.Used()) {
                std::size_t place = slot.hash & mask;
                while (slots_[place].Used()) {
                    place = (place + 1) & mask;
                }
                slots_[place] = slot;
            }
        }
    }

    Flat_array<Slot> slots_;
    std::size_t n_used_ = 0;
};

} // namespace cpm

#endif
