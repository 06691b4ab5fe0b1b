// SPDX-License-Identifier: MIT
#include "graph/Name_interner.h"

#include "support/Errors.h"

#include <cstring>
#include <limits>

namespace cpm {

namespace {

constexpr unsigned first_table_bits = 10;
constexpr std::size_t longest_inline_name = 7;

std::uint64_t Load(char const* bytes, std::size_t count) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, count);
    return word;
}

std::uint64_t Long_key(std::string_view name) {
    constexpr std::uint64_t odd_factor = 0xC2B2AE3D27D4EB4FU;
    std::uint64_t hash = name.size();
    while (name.size() >= sizeof(hash)) {
        hash = (hash ^ Load(name.data(), sizeof(hash))) * odd_factor;
        hash ^= hash >> 32;
        name.remove_prefix(sizeof(hash));
    }
    hash = (hash ^ Load(name.data(), name.size())) * odd_factor;
    hash ^= hash >> 29;
    return hash | std::uint64_t{0x80} << 56;
}

} // namespace

std::uint64_t Name_interner::Key(std::string_view name, std::size_t readable) {
    if (name.size() > longest_inline_name) {
        return Long_key(name);
    }
    std::uint64_t word = 0;
    if (readable >= sizeof(word)) {
        // One load and a mask instead of a copy of unknown length.
        word = Load(name.data(), sizeof(word));
        word &= (std::uint64_t{1} << (8 * name.size())) - 1;
    } else {
        word = Load(name.data(), name.size());
    }
    return word | static_cast<std::uint64_t>(name.size()) << 56;
}

Name_interner::Name_interner()
    : slots_(std::size_t{1} << first_table_bits), shift_(64 - first_table_bits) {}

Node Name_interner::Number(std::string_view name, std::uint64_t key) {
    std::size_t const mask = slots_.size() - 1;
    std::size_t place = Home(key);
    while (slots_[place].key != 0) {
        Slot const& slot = slots_[place];
        if (slot.key == key &&
            (name.size() <= longest_inline_name || names_[slot.number] == name)) {
            return slot.number;
        }
        place = (place + 1) & mask;
    }
    // One number is left free: node indices start at 1.
    if (names_.size() >= std::numeric_limits<Node>::max() - 1) {
        throw Xerror_msg("ERROR: the link file names more nodes than can be numbered.");
    }
    Node const number = static_cast<Node>(names_.size());
    slots_[place] = {key, number};
    names_.Add(name);
    if (2 * names_.size() > slots_.size()) {
        Grow();
    }
    return number;
}

void Name_interner::Release_table() {
    slots_.Release();
}

void Name_interner::Grow() {
    Flat_array<Slot> const old = std::move(slots_);
    slots_ = Flat_array<Slot>(2 * old.size());
    --shift_;
    std::size_t const mask = slots_.size() - 1;
    for (Slot const& slot : old) {
        if (slot.key != 0) {
            std::size_t place = Home(slot.key);
            while (slots_[place].key != 0) {
                place = (place + 1) & mask;
            }
            slots_[place] = slot;
        }
    }
}

} // namespace cpm
