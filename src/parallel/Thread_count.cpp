// SPDX-License-Identifier: MIT
#include "parallel/Thread_count.h"

#include <algorithm>
#include <sched.h>
#include <thread>

namespace cpm {

unsigned Thread_count(unsigned asked_for) {
    if (asked_for > 0) {
        return asked_for;
    }
    cpu_set_t usable;
    CPU_ZERO(&usable);
    // (The set is of 1024 processors; on a larger machine the call fails.)
    if (::sched_getaffinity(0, sizeof usable, &usable) == 0) {
        return static_cast<unsigned>(std::max(CPU_COUNT(&usable), 1));
    }
    return std::max(std::thread::hardware_concurrency(), 1U);
}

} // namespace cpm
