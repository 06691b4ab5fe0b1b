// SPDX-License-Identifier: MIT
// Pace: counts the steps of long loops, lets their progress tick, and tells them when to end.
#ifndef PLEXOR_PACE_H
#define PLEXOR_PACE_H

#include "support/Progress.h"

#include <algorithm>
#include <cstddef>

namespace cpm {

/// When work has to end that is not done by then.
class Deadline {
public:
    Deadline() = default;
    Deadline(Deadline const&) = delete;
    Deadline& operator=(Deadline const&) = delete;
    virtual ~Deadline() = default;
    virtual bool Passed() = 0;
};

class Pace {
public:
    /// Steps of about a nanosecond between two looks: a clock costs some hundred of them or more.
    static constexpr std::size_t usual_steps = std::size_t{1} << 17;

    /// Nothing bounds the work. Without a progress nobody is told.
    explicit Pace(Progress* progress, std::size_t steps = usual_steps)
        : progress_(progress), usual_(steps), steps_(steps), left_(steps) {}
    explicit Pace(Progress& progress) : Pace(&progress) {}

    /// From now on nothing bounds the work.
    void Go_on() { Bound(nullptr, usual_, std::min(left_, usual_)); }
    /// From now on the work must end when the deadline has passed. It is looked at after so many
    /// steps, counting those since the last look; or counting from now on (`anew`).
    void End_by(Deadline& deadline, std::size_t steps, bool anew = false) {
        Bound(&deadline, steps, anew ? steps : std::min(left_, steps));
    }

    /// So many steps of work have been done. True when the time is up; then it stays up.
    bool Spend(std::size_t steps) {
        if (steps < left_) {
            left_ -= steps;
            return false;
        }
        return Look();
    }
    bool Is_over() const { return over_; }
    bool Is_bounded() const { return deadline_ != nullptr; }

private:
    void Bound(Deadline* deadline, std::size_t steps, std::size_t left) {
        deadline_ = deadline;
        steps_ = steps;
        left_ = left;
        over_ = false;
    }
    bool Look() {
        if (progress_ != nullptr) {
            progress_->Tick();
        }
        over_ = over_ || (deadline_ != nullptr && deadline_->Passed());
        left_ = over_ ? 0 : steps_;
        return over_;
    }

    Progress* progress_;
    Deadline* deadline_ = nullptr;
    bool over_ = false;
    std::size_t usual_;
    std::size_t steps_;
    std::size_t left_;
};

} // namespace cpm

#endif
