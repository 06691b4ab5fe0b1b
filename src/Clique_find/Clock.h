// SPDX-License-Identifier: MIT
// The clock of the time-limited searches. It is handed to them, so that whoever runs them can
// choose what time means: the processor time of the process, of a thread, or counted steps.
#ifndef PLEXOR_CLOCK_H
#define PLEXOR_CLOCK_H

#include <ctime>

namespace cpm {

class Clock {
public:
    Clock() = default;
    Clock(Clock const&) = delete;
    Clock& operator=(Clock const&) = delete;
    virtual ~Clock() = default;

    /// An attempt at a node begins; the next reading is that from which its time counts.
    virtual void Start() {}
    /// Seconds since some moment; only differences mean something.
    virtual double Now() = 0;
};

/// The processor time that the process has used.
class Processor_clock : public Clock {
public:
    double Now() override { return static_cast<double>(std::clock()) / 1000000; }
};

} // namespace cpm

#endif
