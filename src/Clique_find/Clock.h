// SPDX-License-Identifier: MIT
// The clock of the time-limited searches. It is handed to them, so that whoever runs them can
// choose what time means: the processor time of the process, of a thread, or counted steps.
#ifndef PLEXOR_CLOCK_H
#define PLEXOR_CLOCK_H

#include <cstdint>
#include <ctime>
#include <type_traits>

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
    double Now() override {
        auto const now = static_cast<Ticks>(std::clock());
        ticks_ += static_cast<Ticks>(now - last_);
        last_ = now;
        return static_cast<double>(static_cast<std::int64_t>(ticks_)) / 1000000;
    }

private:
    // Where it has 32 bits the C library's clock begins anew after 72 minutes.
    using Ticks = std::make_unsigned_t<std::clock_t>;
    Ticks last_ = 0;
    std::uint64_t ticks_ = 0;
};

/// The processor time that the calling thread has used: other threads of its process may be busy
/// with other things.
class Thread_clock : public Clock {
public:
    double Now() override {
        timespec now{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
    }
};

} // namespace cpm

#endif
