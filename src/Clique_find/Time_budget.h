// SPDX-License-Identifier: MIT
// Time_budget: how long an attempt at a node may take.
//
// An attempt whose time is up is not over yet: what the search by pivots has found by then is in no
// order, so the beginning of the prescribed order is listed anew, by another walk. An attempt ends
// within twice its time: the listing has three quarters of it, and what is left pays for keeping
// the sets and for the work between two looks at the clock.
#ifndef PLEXOR_TIME_BUDGET_H
#define PLEXOR_TIME_BUDGET_H

#include "Clique_find/Clock.h"
#include "support/Pace.h"

#include <algorithm>
#include <cstddef>

namespace cpm {

/// What a search may keep of one node's cliques before it is known whether the node will be done.
constexpr std::size_t max_bytes_of_an_attempt = std::size_t{1} << 28;

/// The time that one attempt at a node may take, from the making of the budget on.
class Time_budget {
public:
    /// Tells the clock that an attempt begins, and reads it.
    Time_budget(Clock& clock, double max_time, std::size_t steps_between_looks = Pace::usual_steps)
        : clock_(clock), max_time_(max_time), steps_(steps_between_looks) {
        clock.Start();
        t_start_ = clock.Now();
    }
    /// Reads the clock, unless the time is known to be up. True when more than the time is gone.
    bool Overrun() {
        too_slow_ = too_slow_ || clock_.Now() - t_start_ > max_time_;
        return too_slow_;
    }
    /// Whether the time was up at some reading.
    bool Too_slow() const { return too_slow_; }
    /// From now on the work must end with the time of the attempt.
    void Bound(Pace& pace) { pace.End_by(attempt_, steps_); }
    /// From now on it must end with that of the listing. There is always time to list something.
    void Bound_listing(Pace& pace) { pace.End_by(listing_, steps_, true); }
    /// No more sets than these are listed: well above what the search by single steps finds in the
    /// time, and the same on every machine.
    std::size_t Most_listed() const {
        constexpr double sets_a_second = 200000;
        constexpr double least = 1000;
        constexpr double most = 4e9;
        return static_cast<std::size_t>(std::clamp(sets_a_second * max_time_, least, most));
    }

private:
    struct Attempt : Deadline {
        explicit Attempt(Time_budget& whole) : budget(whole) {}
        bool Passed() override { return budget.Overrun(); }
        Time_budget& budget;
    };
    struct Listing : Deadline {
        explicit Listing(Time_budget& whole) : budget(whole) {}
        bool Passed() override {
            return budget.clock_.Now() - budget.t_start_ > 1.75 * budget.max_time_;
        }
        Time_budget& budget;
    };

    Clock& clock_;
    double max_time_;
    std::size_t steps_;
    double t_start_ = 0;
    bool too_slow_ = false;
    Attempt attempt_{*this};
    Listing listing_{*this};
};

/// Sorts, unless the time is up before: then the order is none, and the result false.
template <class Iterator, class Less>
bool Sort_within(Iterator begin, Iterator end, Less const& less, Pace* pace) {
    struct Time_is_up {};
    constexpr std::size_t steps_a_comparison = 16;
    if (end - begin < 2) {
        return true;
    }
    if (pace == nullptr || !pace->Is_bounded()) {
        std::sort(begin, end, less);
        return true;
    }
    try {
        std::sort(begin, end, [&](auto const& a, auto const& b) {
            if (pace->Spend(steps_a_comparison)) {
                throw Time_is_up();
            }
            return less(a, b);
        });
    } catch (Time_is_up const&) {
        return false;
    }
    return true;
}

} // namespace cpm

#endif
