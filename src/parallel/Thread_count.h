// SPDX-License-Identifier: MIT
// How many threads a number that a user gives stands for.
#ifndef PLEXOR_THREAD_COUNT_H
#define PLEXOR_THREAD_COUNT_H

namespace cpm {

/// The number itself, or for 0 the number of processors that this process may use; at least 1.
unsigned Thread_count(unsigned asked_for);

} // namespace cpm

#endif
