// SPDX-License-Identifier: MIT
#include "support/Hash_slots.h"

#include "support/Random_numbers.h"

#include <gtest/gtest.h>
#include <map>

namespace cpm::test {
namespace {

struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t key = 0; ///< 0: unused
    std::uint32_t value = 0;
    bool Used() const { return key != 0; }
};

// With hashes that collide in the low bits, and some that are the same.
TEST(Hash_slots, Find_what_was_added_however_much_it_grows) {
    Random_numbers random(31);
    Hash_slots<Slot> slots;
    for (int time = 0; time < 3; ++time) {
        if (time > 0) {
            slots.Clear(static_cast<std::size_t>(time));
        }
        std::map<std::uint32_t, std::uint32_t> expected;
        for (std::uint32_t i = 1; i < 4000; ++i) {
            std::uint32_t const key = 1 + random.Below(1000);
            std::uint32_t const hash = (key / 2) * 64;
            Slot const& slot = slots.Find_or_add(
                {hash, key, i}, [&](Slot const& other) { return other.key == key; });
            expected.emplace(key, i);
            ASSERT_EQ(slot.key, key);
            ASSERT_EQ(slot.value, expected.at(key)) << "the first one added stays";
        }
        EXPECT_EQ(slots.size(), expected.size());
    }
}

} // namespace
} // namespace cpm::test
