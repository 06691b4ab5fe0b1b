// SPDX-License-Identifier: MIT
#include "parallel/Pipeline.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <latch>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace cpm::test {
namespace {

using Part = std::function<void(std::size_t piece, Progress& progress)>;

// Counts what is done; a test can put something of its own into each part.
class Counting_work : public Piece_work {
public:
    explicit Counting_work(std::size_t n_pieces)
        : n_prepared(n_pieces), n_joined(n_pieces), n_finished(n_pieces) {}

    void Prepare(std::size_t piece, unsigned thread, Progress& progress) override {
        EXPECT_LT(thread, 8U);
        std::size_t const under_way = ++begun_ - n_out;
        std::size_t seen = most_under_way;
        while (under_way > seen && !most_under_way.compare_exchange_weak(seen, under_way)) {
        }
        Call(on_prepare, piece, progress);
        ++n_prepared[piece];
    }
    void Join(std::size_t piece, unsigned, Progress& progress) override {
        EXPECT_EQ(n_prepared[piece], 1);
        joined.push_back(piece); // no lock: one piece at a time
        Call(on_join, piece, progress);
        ++n_joined[piece];
    }
    void Finish(std::size_t piece, unsigned, Progress& progress) override {
        EXPECT_EQ(n_joined[piece], 1);
        Call(on_finish, piece, progress);
        ++n_finished[piece];
    }

    bool Has_room() override { return has_room; }

    bool has_room = true;
    Part on_prepare;
    Part on_join;
    Part on_finish;
    std::vector<std::atomic<int>> n_prepared;
    std::vector<std::atomic<int>> n_joined;
    std::vector<std::atomic<int>> n_finished;
    std::vector<std::size_t> joined;
    std::atomic<std::size_t> n_out = 0;
    std::atomic<std::size_t> most_under_way = 0;

private:
    static void Call(Part const& part, std::size_t piece, Progress& progress) {
        if (part) {
            part(piece, progress);
        }
    }
    std::atomic<std::size_t> begun_ = 0;
};

std::vector<std::size_t> Numbers_to(std::size_t n) {
    std::vector<std::size_t> numbers(n);
    for (std::size_t i = 0; i < n; ++i) {
        numbers[i] = i;
    }
    return numbers;
}

TEST(Pipeline, Does_each_part_once_and_joins_in_order) {
    for (unsigned const n_threads : {1U, 2U, 3U, 8U}) {
        for (std::size_t const window : {1U, 2U, 5U, 1000U}) {
            constexpr std::size_t n = 100;
            Counting_work work(n);
            Progress nobody;
            Pipeline pipeline(work, n, n_threads, window);
            for (std::size_t piece = 0; piece < n; ++piece) {
                pipeline.Next(nobody);
                EXPECT_EQ(work.n_finished[piece], 1);
                ++work.n_out;
            }
            EXPECT_EQ(work.joined, Numbers_to(n));
            EXPECT_LE(work.most_under_way, window + 1); // one may have been handed out unnoticed
        }
    }
}

TEST(Pipeline, Goes_on_with_one_piece_at_a_time_where_there_is_no_room) {
    constexpr std::size_t n = 100;
    Counting_work work(n);
    work.has_room = false;
    Progress nobody;
    Pipeline pipeline(work, n, 3, 1000);
    for (std::size_t piece = 0; piece < n; ++piece) {
        pipeline.Next(nobody);
        ++work.n_out;
    }
    EXPECT_EQ(work.joined, Numbers_to(n));
    EXPECT_LE(work.most_under_way, 2U); // one may have been handed out unnoticed
}

TEST(Pipeline, Of_nothing_has_nothing_to_do) {
    Counting_work work(0);
    Pipeline const pipeline(work, 0, 4, 1);
}

TEST(Pipeline, Prepares_several_pieces_at_a_time) {
    Counting_work work(2);
    std::latch both(2);
    work.on_prepare = [&](std::size_t, Progress&) { both.arrive_and_wait(); };
    Progress nobody;
    Pipeline pipeline(work, 2, 2, 2);
    pipeline.Next(nobody);
    pipeline.Next(nobody);
}

TEST(Pipeline, Finishes_a_piece_while_the_next_one_is_joined) {
    Counting_work work(2);
    std::latch both(2);
    work.on_finish = [&](std::size_t piece, Progress&) {
        if (piece == 0) {
            both.arrive_and_wait();
        }
    };
    work.on_join = [&](std::size_t piece, Progress&) {
        if (piece == 1) {
            both.arrive_and_wait();
        }
    };
    Progress nobody;
    Pipeline pipeline(work, 2, 2, 2);
    pipeline.Next(nobody);
    pipeline.Next(nobody);
}

// Takes the pieces until one throws; gives how many came and what was thrown.
std::pair<std::size_t, std::string> Take_all(Pipeline& pipeline, std::size_t n) {
    Progress nobody;
    std::size_t taken = 0;
    try {
        for (; taken < n; ++taken) {
            pipeline.Next(nobody);
        }
    } catch (std::runtime_error const& error) {
        return {taken, error.what()};
    }
    return {taken, ""};
}

TEST(Pipeline, Throws_the_error_of_the_first_piece_that_has_one_in_whichever_part) {
    constexpr std::size_t n = 20;
    for (unsigned const n_threads : {1U, 2U, 8U}) {
        for (std::size_t const failing : {0U, 1U, 7U, 19U}) {
            for (int part = 0; part < 3; ++part) {
                Counting_work work(n);
                auto const fail = [&](std::size_t piece, Progress&) {
                    if (piece >= failing) {
                        throw std::runtime_error(std::to_string(piece));
                    }
                };
                (part == 0 ? work.on_prepare : part == 1 ? work.on_join : work.on_finish) = fail;
                Pipeline pipeline(work, n, n_threads, 6);
                EXPECT_EQ(Take_all(pipeline, n), std::pair(failing, std::to_string(failing)));
            }
        }
    }
}

TEST(Pipeline, An_earlier_piece_may_fail_after_a_later_one) {
    Counting_work work(4);
    std::latch third_has_failed(1);
    work.on_prepare = [&](std::size_t piece, Progress&) {
        if (piece == 3) {
            third_has_failed.count_down();
            throw std::runtime_error("3");
        }
        if (piece == 1) {
            third_has_failed.wait();
            throw std::runtime_error("1");
        }
    };
    Pipeline pipeline(work, 4, 2, 4);
    EXPECT_EQ(Take_all(pipeline, 4), std::pair(std::size_t{1}, std::string("1")));
}

// Gives up at a tick, on the thread that waits.
class Giving_up : public Progress {
public:
    explicit Giving_up(int ticks) : left_(ticks), thread_(std::this_thread::get_id()) {}
    void Tick() override {
        EXPECT_EQ(std::this_thread::get_id(), thread_);
        if (left_-- == 0) {
            throw Cancelled();
        }
    }

private:
    int left_;
    std::thread::id thread_;
};

TEST(Pipeline, Ends_all_threads_when_the_progress_gives_up) {
    for (int const ticks : {0, 1, 3}) {
        Counting_work work(100);
        std::atomic<int> begun = 0;
        std::atomic<int> ended = 0;
        work.on_prepare = [&](std::size_t, Progress& progress) {
            ++begun;
            try {
                for (;;) { // until it is told to end
                    progress.Tick();
                    std::this_thread::yield();
                }
            } catch (Cancelled const&) {
                ++ended;
                throw;
            }
        };
        Giving_up progress(ticks);
        Pipeline pipeline(work, 100, 3, 5);
        EXPECT_THROW(pipeline.Next(progress), Cancelled);
        EXPECT_EQ(ended, begun);
        EXPECT_LE(begun, 3);
        EXPECT_TRUE(work.joined.empty());
    }
}

TEST(Pipeline, That_is_left_in_the_middle_waits_for_its_threads) {
    for (int i = 0; i < 50; ++i) {
        Counting_work work(1000);
        Progress nobody;
        {
            Pipeline pipeline(work, 1000, 4, 10);
            pipeline.Next(nobody);
        }
        std::size_t const begun = static_cast<std::size_t>(
            std::ranges::count_if(work.n_prepared, [](auto const& n) { return n > 0; }));
        EXPECT_LE(begun, 11U);
    }
}

} // namespace
} // namespace cpm::test
