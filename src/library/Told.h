// SPDX-License-Identifier: MIT
// The engine's progress and clock, handed on to those of a program that uses the library.
#ifndef PLEXOR_TOLD_H
#define PLEXOR_TOLD_H

#include "Clique_find/Clock.h"
#include "support/Progress.h"

#include <plexor/Error.h>
#include <plexor/Progress.h>

namespace plexor::detail {

class Told_progress : public cpm::Progress {
public:
    /// Null: nobody is told. The progress must outlive this object.
    explicit Told_progress(plexor::Progress* to) : to_(to) {}

    void Tick() override {
        if (to_ != nullptr && to_->Cancel()) {
            throw Cancelled();
        }
    }
    void Node_started(std::uint32_t to_do, std::uint32_t total) override {
        if (to_ != nullptr) {
            to_->Searching(to_do, total);
        }
    }
    void Node_overran(std::uint32_t node, std::uint32_t, std::uint32_t) override {
        if (to_ != nullptr) {
            to_->Node_overran(node);
        }
    }

private:
    plexor::Progress* to_;
};

class Told_clock : public cpm::Clock {
public:
    /// Null: the processor time of the thread. The clock must outlive this object.
    explicit Told_clock(plexor::Clock* clock) : clock_(clock != nullptr ? clock : &thread_clock_) {}

    void Start() override { clock_->Start(); }
    double Now() override { return clock_->Now(); }

private:
    Thread_clock thread_clock_;
    plexor::Clock* clock_;
};

} // namespace plexor::detail

#endif
