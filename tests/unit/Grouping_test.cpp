// SPDX-License-Identifier: MIT
#include "support/Grouping.h"

#include "graph/Types.h"

#include <gtest/gtest.h>
#include <vector>

namespace cpm::test {
namespace {

using Numbers = std::vector<std::uint32_t>;
using Number_groups = Groups<std::uint32_t, std::uint32_t>;

std::vector<Numbers> Listed(Number_groups const& groups) {
    std::vector<Numbers> lists;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        lists.emplace_back(groups[i].begin(), groups[i].end());
    }
    return lists;
}

TEST(Groups, Items_keep_their_order_in_each_group) {
    Numbers const keys{2, 0, 2, 3, 0, 2};
    Number_groups const groups(
        keys.size(), 5, [&](std::size_t i) { return keys[i]; },
        [](std::size_t i) { return 10 + i; });
    EXPECT_EQ(Listed(groups), (std::vector<Numbers>{{11, 14}, {}, {10, 12, 15}, {13}, {}}));
}

TEST(Groups, Of_nothing_are_empty) {
    EXPECT_EQ(Number_groups().size(), 0U);
    auto const key = [](std::size_t i) { return i; };
    EXPECT_EQ(Listed(Number_groups(0, 2, key, key)), (std::vector<Numbers>{{}, {}}));
}

TEST(Groups, Of_members_list_who_has_them) {
    Set_list const lists{{1, 2}, {2, 3}, {}, {1, 3}};
    EXPECT_EQ(Listed(Number_groups::Of_members(lists, 0, 5)),
              (std::vector<Numbers>{{}, {0, 3}, {0, 1}, {1, 3}, {}}));
    EXPECT_EQ(Listed(Number_groups::Of_members(lists, 1, 4)),
              (std::vector<Numbers>{{}, {3}, {1}, {1, 3}}));
    EXPECT_EQ(Listed(Number_groups::Of_members(lists, 0, 4, [](Node n) { return n != 1; })),
              (std::vector<Numbers>{{}, {}, {0, 1}, {1, 3}}));
}

TEST(Counting_sort, Counts_turn_into_begins_or_ends) {
    Numbers begins{3, 0, 2};
    EXPECT_EQ(Counts_to_begins(begins), 5U);
    EXPECT_EQ(begins, (Numbers{0, 3, 3}));
    Numbers ends{3, 0, 2};
    EXPECT_EQ(Counts_to_ends(ends), 5U);
    EXPECT_EQ(ends, (Numbers{3, 3, 5}));
    struct Record {
        std::uint64_t count;
        int other;
    };
    std::vector<Record> records{{4, 1}, {1, 2}};
    EXPECT_EQ(Counts_to_begins(
                  records, [](Record & one) -> auto& { return one.count; }),
              5U);
    EXPECT_EQ(records[1].count, 4U);
}

} // namespace
} // namespace cpm::test
