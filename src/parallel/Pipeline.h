// SPDX-License-Identifier: MIT
// Pipeline: work in numbered pieces, done on several threads and handed out in order.
//
// Each piece is prepared on any thread, whatever happens to the others; joined to what the pieces
// before it have left, one piece at a time and in order; and finished, again on any thread. So what
// a piece can do alone is done at the same time as others, what depends on the order is done in it,
// and the result is the same under any schedule.
//
// Threads without work sleep. A piece is prepared only when it is near the one that is handed out
// next: what is done ahead waits in memory, and there is a bound to that.
#ifndef PLEXOR_PIPELINE_H
#define PLEXOR_PIPELINE_H

#include "support/Progress.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace cpm {

/// The three parts of a piece. `thread` is the number of the thread that calls, from 0 on. What
/// takes long calls progress.Tick(), which throws when the work has been given up; a thread has the
/// same progress as long as it works.
class Piece_work {
public:
    virtual ~Piece_work() = default;
    /// Called for several pieces at a time, in the order of their numbers but for that.
    virtual void Prepare(std::size_t piece, unsigned thread, Progress& progress) = 0;
    /// Called for piece 0, 1, 2, ..., one at a time, each once it is prepared.
    virtual void Join(std::size_t piece, unsigned thread, Progress& progress) = 0;
    /// Called for several pieces at a time, each once it is joined.
    virtual void Finish(std::size_t piece, unsigned thread, Progress& progress) = 0;
    /// False when what waits to be handed out needs so much memory that no more should be prepared.
    /// Asked by any thread, under the lock of the pipeline, for pieces beyond the one that is
    /// handed out next: so the work goes on whatever the answer.
    virtual bool Has_room() { return true; }
};

class Pipeline {
public:
    /// Begins. No more than `window` pieces, at least one, are between the first part and being
    /// handed out. The work must outlive this object. Throws std::system_error when there is no
    /// thread to be had; one or some of them are enough.
    Pipeline(Piece_work& work, std::size_t n_pieces, unsigned n_threads, std::size_t window);
    Pipeline(Pipeline const&) = delete;
    Pipeline& operator=(Pipeline const&) = delete;
    /// Gives up what is not finished, and waits for the threads.
    ~Pipeline();

    /// Waits until the next piece is finished, 0 first. Meanwhile it calls progress.Tick() on the
    /// calling thread. Throws what a part of this piece has thrown, or what the progress throws;
    /// then everything has been given up. To be called once for each piece, not again after it has
    /// thrown.
    void Next(Progress& progress);

private:
    class Stop_progress;
    enum class Step { waits, prepare, join, finish, end };
    enum class State : unsigned char { untouched, prepared, joined, finished };
    struct Task {
        Step step = Step::waits;
        std::size_t piece = 0;
    };

    void Run(unsigned thread);
    Task Choose();
    void Do(Task const& task, unsigned thread, Progress& progress);
    void Done(Task const& task);
    void Failed(std::size_t piece, std::exception_ptr error);
    void End();

    Piece_work& work_;
    std::size_t const n_pieces_;
    std::size_t const window_;
    std::atomic<bool> given_up_ = false;

    std::mutex mutex_; ///< for all that follows
    std::condition_variable work_changed_;
    std::condition_variable piece_finished_;
    std::vector<State> states_;
    std::size_t n_begun_ = 0;  ///< pieces below have been taken for preparing
    std::size_t n_joined_ = 0; ///< pieces below have been joined
    std::size_t n_out_ = 0;    ///< pieces below have been handed out
    bool joining_ = false;     ///< a thread is at it
    std::vector<std::size_t> to_finish_;
    std::size_t first_failed_; ///< n_pieces_: none
    std::exception_ptr error_; ///< what was thrown at that one

    std::vector<std::thread> threads_;
};

} // namespace cpm

#endif
