// SPDX-License-Identifier: MIT
#include "support/Flat_array.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace cpm {
namespace {

using Array = Flat_array<std::uint32_t>;
using Values = std::vector<std::uint32_t>;

Array Made_of(Values const& values) {
    Array array;
    array.Append(values);
    return array;
}

Values In(Array const& array) {
    return Values(array.begin(), array.end());
}

TEST(Flat_arrays, Begin_empty) {
    Array const array;
    EXPECT_TRUE(array.empty());
    EXPECT_EQ(array.size(), 0U);
    EXPECT_EQ(array.begin(), array.end());
}

TEST(Flat_arrays, Can_begin_with_a_size) {
    EXPECT_EQ(In(Array(3)), (Values{0, 0, 0}));
    EXPECT_EQ(In(Array(2, 7)), (Values{7, 7}));
    EXPECT_EQ(In(Array(0)), Values{});
}

TEST(Flat_arrays, Grow_value_by_value) {
    Array array;
    Values expected;
    for (std::uint32_t i = 0; i < 10000; ++i) {
        array.push_back(i * i);
        expected.push_back(i * i);
    }
    EXPECT_EQ(In(array), expected);
}

TEST(Flat_arrays, A_value_of_the_array_itself_can_be_pushed_back) {
    Array array(1, 5);
    for (int i = 0; i < 100; ++i) {
        array.push_back(array[0]);
    }
    EXPECT_EQ(In(array), Values(101, 5));
}

TEST(Flat_arrays, Values_can_be_appended) {
    Array array = Made_of({1, 2});
    array.Append(Values{});
    array.Append(Values{3, 4, 5});
    array.Append(Values(1000, 9));
    Values expected{1, 2, 3, 4, 5};
    expected.resize(1005, 9);
    EXPECT_EQ(In(array), expected);
}

TEST(Flat_arrays, Values_can_be_changed_and_taken_off) {
    Array array = Made_of({1, 2, 3});
    array[1] = 20;
    array.back() = 30;
    EXPECT_EQ(In(array), (Values{1, 20, 30}));
    array.pop_back();
    EXPECT_EQ(array.back(), 20U);
    EXPECT_EQ(In(array), (Values{1, 20}));
    array.clear();
    EXPECT_TRUE(array.empty());
}

TEST(Flat_arrays, Resize_keeps_the_values_and_fills_up) {
    Array array = Made_of({1, 2});
    array.Resize(4, 9);
    EXPECT_EQ(In(array), (Values{1, 2, 9, 9}));
    array.Resize(1);
    EXPECT_EQ(In(array), (Values{1}));
    array.Resize(3);
    EXPECT_EQ(In(array), (Values{1, 0, 0}));
}

TEST(Flat_arrays, Can_be_filled_up_with_a_value_of_their_own) {
    Array array = Made_of({1, 2});
    array.Resize(100000, array[1]);
    EXPECT_EQ(array[0], 1U);
    EXPECT_EQ(array[2], 2U);
    EXPECT_EQ(array.back(), 2U);
}

TEST(Flat_arrays, Resize_uninitialised_keeps_the_values) {
    Array array = Made_of({1, 2});
    array.Resize_uninitialised(1000);
    EXPECT_EQ(array.size(), 1000U);
    EXPECT_EQ(array[0], 1U);
    EXPECT_EQ(array[1], 2U);
    array.Resize_uninitialised(1);
    EXPECT_EQ(In(array), (Values{1}));
}

TEST(Flat_arrays, What_is_reserved_needs_no_move) {
    Array array = Made_of({1});
    array.Reserve(1000);
    EXPECT_EQ(In(array), (Values{1}));
    std::uint32_t const* const place = array.data();
    array.Append(Values(999, 3));
    array.Reserve(10);
    EXPECT_EQ(array.data(), place);
    EXPECT_EQ(array.size(), 1000U);
}

TEST(Flat_arrays, A_copy_has_values_of_its_own) {
    Array array = Made_of({1, 2, 3});
    Array copy(array);
    copy[0] = 10;
    EXPECT_EQ(In(array), (Values{1, 2, 3}));
    EXPECT_EQ(In(copy), (Values{10, 2, 3}));
    EXPECT_TRUE(Array(Array()).empty());
}

TEST(Flat_arrays, A_moved_array_takes_its_values_along) {
    Array array = Made_of({1, 2, 3});
    std::uint32_t const* const place = array.data();
    Array const moved(std::move(array));
    EXPECT_EQ(moved.data(), place);
    EXPECT_EQ(In(moved), (Values{1, 2, 3}));
}

TEST(Flat_arrays, Assignment_replaces_the_values) {
    Array array = Made_of({1, 2, 3});
    Array other = Made_of({4});
    array = other;
    EXPECT_EQ(In(array), (Values{4}));
    EXPECT_EQ(In(other), (Values{4}));
    Array const& same = array;
    array = same;
    EXPECT_EQ(In(array), (Values{4}));
    array = Made_of({5, 6});
    EXPECT_EQ(In(array), (Values{5, 6}));
    array = Array();
    EXPECT_TRUE(array.empty());
}

TEST(Flat_arrays, Swap_exchanges_everything) {
    Array array = Made_of({1, 2, 3});
    Array other;
    array.Swap(other);
    EXPECT_TRUE(array.empty());
    EXPECT_EQ(In(other), (Values{1, 2, 3}));
}

TEST(Flat_arrays, Memory_can_be_given_back) {
    Array array = Made_of(Values(1000, 7));
    array.Resize(2);
    array.Shrink_to_fit();
    EXPECT_EQ(In(array), (Values{7, 7}));
    array.Release();
    EXPECT_TRUE(array.empty());
    EXPECT_EQ(array.data(), nullptr);
    array.Shrink_to_fit();
    array.push_back(1);
    array.clear();
    array.Shrink_to_fit();
    EXPECT_EQ(array.data(), nullptr);
    array.push_back(2);
    EXPECT_EQ(In(array), (Values{2}));
}

TEST(Flat_arrays, Hold_structures) {
    struct Pair {
        std::uint32_t first;
        double second;
    };
    Flat_array<Pair> array;
    array.push_back({1, 0.5});
    array.push_back({2, 1.5});
    EXPECT_EQ(array[0].first, 1U);
    EXPECT_EQ(array.back().second, 1.5);
}

TEST(Flat_arrays, A_size_beyond_all_memory_is_refused) {
    Array array = Made_of({1, 2});
    EXPECT_THROW(array.Reserve(std::numeric_limits<std::size_t>::max()), std::bad_alloc);
    EXPECT_THROW(array.Reserve(std::numeric_limits<std::size_t>::max() / 4), std::bad_alloc);
    EXPECT_EQ(In(array), (Values{1, 2}));
}

// Each bound counts alone. The bytes of 2^62 + 1 values are 4 in 64 bits: the array would get
// these and believe that it has room for all.
TEST(Flat_arrays, A_size_whose_bytes_do_not_fit_is_refused) {
    constexpr std::size_t wraps_to_nothing = std::numeric_limits<std::size_t>::max() / 4 + 1;
    Array array = Made_of({1, 2});
    EXPECT_THROW(array.Reserve(wraps_to_nothing + 1), std::bad_alloc);
    EXPECT_THROW(array.Reserve(wraps_to_nothing), std::bad_alloc);
    EXPECT_THROW(array.Resize_uninitialised(wraps_to_nothing), std::bad_alloc);
    EXPECT_EQ(In(array), (Values{1, 2}));
}

TEST(Flat_arrays, A_size_that_the_type_of_sizes_cannot_hold_is_refused) {
    Flat_array<char, std::uint8_t> array(2, 'x');
    EXPECT_THROW(array.Reserve(256), std::bad_alloc);
    EXPECT_THROW(array.Resize(1000), std::bad_alloc);
    EXPECT_EQ(array.size(), 2U);
    array.Reserve(255);
    array.Resize(255, 'y');
    EXPECT_EQ(array.size(), 255U);
    EXPECT_EQ(array[1], 'x');
    EXPECT_EQ(array.back(), 'y');
    EXPECT_THROW(array.push_back('z'), std::bad_alloc);
    EXPECT_EQ(array.size(), 255U);
}

#if defined(__SANITIZE_ADDRESS__)
#define PLEXOR_MEMORY_IS_WATCHED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PLEXOR_MEMORY_IS_WATCHED
#endif
#endif

#ifndef PLEXOR_MEMORY_IS_WATCHED // it would end the process
TEST(Flat_arrays, Without_memory_the_new_handler_is_asked) {
    if (sizeof(std::size_t) < 8) {
        GTEST_SKIP() << "there may be memory for any size that is not refused";
    }
    Flat_array<char> array(2, 'x');
    struct Asked {};
    std::new_handler const before = std::set_new_handler([] { throw Asked(); });
    EXPECT_THROW(array.Reserve(std::numeric_limits<std::size_t>::max() / 4), Asked);
    std::set_new_handler(nullptr);
    EXPECT_THROW(array.Reserve(std::numeric_limits<std::size_t>::max() / 4), std::bad_alloc);
    std::set_new_handler(before);
    EXPECT_EQ(array.size(), 2U);
    EXPECT_EQ(array[1], 'x');
}
#endif

} // namespace
} // namespace cpm
