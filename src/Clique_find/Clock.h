// SPDX-License-Identifier: MIT
// The clock of the time-limited searches. It is handed to them, so that tests can bring their own.
#ifndef PLEXOR_CLOCK_H
#define PLEXOR_CLOCK_H

#include <ctime>
#include <functional>

namespace cpm {

/// Gives the time in seconds; only differences mean something.
using Clock = std::function<double()>;

/// The processor time that the process has used.
inline double Processor_seconds() {
    return static_cast<double>(std::clock()) / 1000000;
}

} // namespace cpm

#endif
