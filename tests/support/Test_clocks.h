// SPDX-License-Identifier: MIT
// Clocks for tests of the time-limited searches.
#ifndef PLEXOR_TEST_CLOCKS_H
#define PLEXOR_TEST_CLOCKS_H

#include "Clique_find/Clock.h"

#include <utility>
#include <vector>

namespace cpm::test {

/// Says what the function says.
template <class Now_function> class Clock_of : public Clock {
public:
    explicit Clock_of(Now_function now) : now_(std::move(now)) {}
    double Now() override { return now_(); }

private:
    Now_function now_;
};

/// Lets some attempts overrun a limit of half a second at their first reading after the start.
class Fitful_clock : public Clock {
public:
    /// A flag per attempt; attempts beyond these do not overrun.
    explicit Fitful_clock(std::vector<bool> overruns) : overruns_(std::move(overruns)) {}
    void Start() override {
        ++attempt_;
        started_ = false;
    }
    double Now() override {
        bool const is_start = !std::exchange(started_, true);
        bool const overrun = attempt_ <= overruns_.size() && overruns_[attempt_ - 1];
        return !is_start && overrun ? 1 : 0;
    }

private:
    std::vector<bool> overruns_;
    std::size_t attempt_ = 0;
    bool started_ = false;
};

} // namespace cpm::test

#endif
