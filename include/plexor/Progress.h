// SPDX-License-Identifier: MIT
// How a program watches long computations, and ends them; and the clock of time limits.
#ifndef PLEXOR_API_PROGRESS_H
#define PLEXOR_API_PROGRESS_H

#include <plexor/Export.h>

#include <cstdint>

namespace plexor {

/// Called back from the thread that has called the library, also when other threads do the work.
/// What a function here throws ends the computation and arrives at its caller; to stop one, return
/// true from Cancel().
class PLEXOR_API Progress {
public:
    virtual ~Progress();

    /// Asked every few milliseconds of work, everywhere. True ends the computation by Cancelled.
    virtual bool Cancel() { return false; }
    /// The search has `to_do` of `total` start nodes before it. The largest share of the work is
    /// among the last of them.
    virtual void Searching(std::uint32_t to_do, std::uint32_t total);
    /// A node has taken more than its time. It will be tried again as long as others are finished.
    virtual void Node_overran(std::uint32_t node);
    /// Communities are extracted at this k.
    virtual void Level_started(std::uint32_t k);
};

/// A clock in seconds, of which only differences count. A search with a time limit asks for the
/// time of each attempt at a node.
class PLEXOR_API Clock {
public:
    virtual ~Clock();
    /// An attempt begins; its time counts from the next reading.
    virtual void Start();
    virtual double Now() = 0;
};

/// The processor time of the calling thread: what is used where no clock is given.
class PLEXOR_API Thread_clock final : public Clock {
public:
    double Now() override;
};

} // namespace plexor

#endif
