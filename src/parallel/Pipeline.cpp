// SPDX-License-Identifier: MIT
// Takes    pieces of work in three parts.
// Leaves   them done, each part once.
// Order    joined and handed out by their numbers. An error is that of the first piece that has
//          one, as it would be with one thread: pieces before it are handed out, none after it is.
// Cost     a lock a part.
// Tested   Pipeline_test.cpp.
#include "parallel/Pipeline.h"

#include <algorithm>
#include <cassert>
#include <chrono>
#include <system_error>
#include <utility>

namespace cpm {

/// Ends the thread that asks when the work has been given up.
class Pipeline::Stop_progress : public Progress {
public:
    explicit Stop_progress(std::atomic<bool> const& given_up) : given_up_(given_up) {}
    void Tick() override {
        if (given_up_.load(std::memory_order_relaxed)) {
            throw Cancelled();
        }
    }

private:
    std::atomic<bool> const& given_up_;
};

Pipeline::Pipeline(Piece_work& work, std::size_t n_pieces, unsigned n_threads, std::size_t window)
    : work_(work), n_pieces_(n_pieces), window_(window), states_(n_pieces, State::untouched),
      first_failed_(n_pieces) {
    assert(n_threads > 0 && window > 0);
    auto const useful = static_cast<unsigned>(std::min<std::size_t>(n_threads, n_pieces));
    to_finish_.reserve(std::min(window, n_pieces)); // so that Done() needs no memory
    threads_.reserve(useful);
    try {
        while (threads_.size() < useful) {
            auto const thread = static_cast<unsigned>(threads_.size());
            threads_.emplace_back([this, thread] { Run(thread); });
        }
    } catch (std::system_error const&) {
        if (threads_.empty()) {
            throw;
        }
    } catch (...) {
        End();
        throw;
    }
}

Pipeline::~Pipeline() {
    End();
}

void Pipeline::End() {
    {
        std::lock_guard const lock(mutex_);
        given_up_ = true;
    }
    work_changed_.notify_all();
    for (std::thread& thread : threads_) {
        thread.join();
    }
    threads_.clear();
}

void Pipeline::Next(Progress& progress) {
    // Short enough for a progress that is to be asked now and then.
    constexpr std::chrono::milliseconds between_ticks{10};
    try {
        std::unique_lock lock(mutex_);
        std::size_t const piece = n_out_;
        assert(piece < n_pieces_ && !given_up_);
        while (states_[piece] != State::finished && first_failed_ > piece) {
            piece_finished_.wait_for(lock, between_ticks);
            lock.unlock();
            progress.Tick();
            lock.lock();
        }
        if (first_failed_ <= piece) {
            std::rethrow_exception(error_);
        }
        ++n_out_;
    } catch (...) {
        End();
        throw;
    }
    work_changed_.notify_all(); // another piece may begin
}

void Pipeline::Run(unsigned thread) {
    Stop_progress progress(given_up_);
    for (;;) {
        Task task;
        {
            std::unique_lock lock(mutex_);
            while ((task = Choose()).step == Step::waits) {
                work_changed_.wait(lock);
            }
        }
        if (task.step == Step::end) {
            return;
        }
        try {
            Do(task, thread, progress);
            Done(task);
        } catch (Cancelled const&) {
            return; // given up
        } catch (...) {
            Failed(task.piece, std::current_exception());
        }
    }
}

// What is next for a thread. Joining comes first: only one thread can do it, and others wait for
// what it leaves. What can be finished comes next, as it holds memory.
Pipeline::Task Pipeline::Choose() {
    if (given_up_) {
        return {Step::end, 0};
    }
    if (!joining_ && n_joined_ < first_failed_ && states_[n_joined_] == State::prepared) {
        joining_ = true;
        return {Step::join, n_joined_};
    }
    if (!to_finish_.empty()) {
        // The one that is waited for first.
        auto const first = std::ranges::min_element(to_finish_);
        std::size_t const piece = *first;
        *first = to_finish_.back();
        to_finish_.pop_back();
        return {Step::finish, piece};
    }
    std::size_t const n_ahead = n_begun_ - n_out_;
    if (n_begun_ < first_failed_ && n_ahead < window_ && (n_ahead == 0 || work_.Has_room())) {
        return {Step::prepare, n_begun_++};
    }
    // After a piece that has failed none is needed.
    return {n_joined_ >= first_failed_ && n_begun_ >= first_failed_ ? Step::end : Step::waits, 0};
}

void Pipeline::Do(Task const& task, unsigned thread, Progress& progress) {
    switch (task.step) {
    case Step::prepare:
        work_.Prepare(task.piece, thread, progress);
        break;
    case Step::join:
        work_.Join(task.piece, thread, progress);
        break;
    default:
        work_.Finish(task.piece, thread, progress);
        break;
    }
}

void Pipeline::Done(Task const& task) {
    {
        std::lock_guard const lock(mutex_);
        State& state = states_[task.piece];
        switch (task.step) {
        case Step::prepare:
            state = State::prepared;
            break;
        case Step::join:
            state = State::joined;
            ++n_joined_;
            joining_ = false;
            to_finish_.push_back(task.piece);
            break;
        default:
            state = State::finished;
            break;
        }
    }
    if (task.step == Step::finish) {
        piece_finished_.notify_one();
    } else {
        work_changed_.notify_all();
    }
}

// Pieces before this one go on: one of them may have an error as well, and that one counts.
void Pipeline::Failed(std::size_t piece, std::exception_ptr error) {
    {
        std::lock_guard const lock(mutex_);
        if (piece >= first_failed_) {
            return;
        }
        first_failed_ = piece;
        error_ = std::move(error);
    }
    piece_finished_.notify_one();
    work_changed_.notify_all();
}

} // namespace cpm
