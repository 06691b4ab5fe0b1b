// SPDX-License-Identifier: MIT
// Time_budget and Pace: how long an attempt at a node may take, and how its loops find out.
//
// An attempt whose time is up is not over yet: what the search by pivots has found by then is in no
// order, so the beginning of the prescribed order is listed anew, by another walk. An attempt ends
// within twice its time: the listing has three quarters of it, and what is left pays for keeping
// the sets and for the work between two looks at the clock.
#ifndef PLEXOR_TIME_BUDGET_H
#define PLEXOR_TIME_BUDGET_H

#include "Clique_find/Clock.h"
#include "support/Progress.h"

#include <algorithm>
#include <cstddef>

namespace cpm {

/// What a search may keep of one node's cliques before it is known whether the node will be done.
constexpr std::size_t most_bytes_of_an_attempt = std::size_t{1} << 28;

/// The time that one attempt at a node may take, from the making of the budget on.
class Time_budget {
public:
    /// Steps of about a nanosecond: a look at the clock costs some hundred of them or more.
    static constexpr std::size_t steps_between_looks = std::size_t{1} << 17;

    /// Tells the clock that an attempt begins, and reads it.
    Time_budget(Clock& clock, double max_time, std::size_t steps = steps_between_looks)
        : clock_(clock), max_time_(max_time), steps_(steps) {
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
    /// Reads the clock. True when the listing has to end.
    bool Listing_over() { return clock_.Now() - t_start_ > 1.75 * max_time_; }
    /// No more sets than these are listed: well above what the search by single steps finds in the
    /// time, and the same on every machine.
    std::size_t Most_listed() const {
        constexpr double sets_a_second = 200000;
        constexpr double least = 1000;
        constexpr double most = 4e9;
        return static_cast<std::size_t>(std::clamp(sets_a_second * max_time_, least, most));
    }
    std::size_t Steps_between_looks() const { return steps_; }

private:
    Clock& clock_;
    double max_time_;
    std::size_t steps_;
    double t_start_ = 0;
    bool too_slow_ = false;
};

/// Counts the steps of long loops; after so many of them it lets the progress tick and looks
/// whether the time is up.
class Pace {
public:
    explicit Pace(Progress& progress) : progress_(progress) {}

    /// From now on nothing bounds the work.
    void Go_on() { Bound(nullptr, false, Time_budget::steps_between_looks); }
    /// From now on the work must end with the time of the attempt, or with that of the listing.
    void Go_on_within(Time_budget& budget) { Bound(&budget, false, budget.Steps_between_looks()); }
    void List_within(Time_budget& budget) { Bound(&budget, true, budget.Steps_between_looks()); }

    /// So many steps of work have been done. True when the time is up; then it stays up.
    bool Spend(std::size_t steps) {
        if (steps < left_) {
            left_ -= steps;
            return false;
        }
        return Look();
    }
    bool Is_over() const { return over_; }
    bool Is_bounded() const { return budget_ != nullptr; }

private:
    void Bound(Time_budget* budget, bool listing, std::size_t steps) {
        budget_ = budget;
        listing_ = listing;
        steps_ = steps;
        left_ = listing ? steps : std::min(left_, steps); // there is always time to list something
        over_ = false;
    }
    bool Look() {
        left_ = steps_;
        progress_.Tick();
        if (!over_ && budget_ != nullptr) {
            over_ = listing_ ? budget_->Listing_over() : budget_->Overrun();
        }
        if (over_) {
            left_ = 0;
        }
        return over_;
    }

    Progress& progress_;
    Time_budget* budget_ = nullptr;
    bool listing_ = false;
    bool over_ = false;
    std::size_t steps_ = Time_budget::steps_between_looks;
    std::size_t left_ = Time_budget::steps_between_looks;
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
