// SPDX-License-Identifier: MIT
#include "parallel/Thread_count.h"

#include <gtest/gtest.h>
#include <sched.h>

namespace cpm::test {
namespace {

TEST(Thread_count, Is_what_is_asked_for) {
    EXPECT_EQ(Thread_count(1), 1U);
    EXPECT_EQ(Thread_count(17), 17U);
}

TEST(Thread_count, Of_0_is_how_many_processors_the_process_may_use) {
    cpu_set_t before;
    ASSERT_EQ(::sched_getaffinity(0, sizeof before, &before), 0);
    EXPECT_EQ(Thread_count(0), static_cast<unsigned>(CPU_COUNT(&before)));
    cpu_set_t first;
    CPU_ZERO(&first);
    for (std::size_t cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
        if (CPU_ISSET(cpu, &before)) {
            CPU_SET(cpu, &first);
            break;
        }
    }
    ASSERT_EQ(::sched_setaffinity(0, sizeof first, &first), 0);
    EXPECT_EQ(Thread_count(0), 1U);
    ::sched_setaffinity(0, sizeof before, &before);
}

} // namespace
} // namespace cpm::test
