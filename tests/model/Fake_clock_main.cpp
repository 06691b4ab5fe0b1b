// SPDX-License-Identifier: MIT
// The program with a clock that only counts. With two whole numbers in the environment variable
// PLEXOR_FAKE_CLOCK_COIN, a seed and a percentage, a coin decides which attempts at nodes overrun:
// these at their first reading after the start, all others never. Without it the C library's clock
// is read, whose place Fake_clock.cpp takes. With a number in PLEXOR_TEST_THREADS the run has so
// many threads, as it has in other programs.
#include "Clique_find/Clock.h"
#include "Coin.h"
#include "Plexor_io/Console.h"
#include "Plexor_io/Console_progress.h"
#include "Plexor_io/Run.h"
#include "Process_setup.h"

#include <cstdlib>
#include <new>
#include <optional>
#include <sstream>
#include <unistd.h>
#include <utility>

namespace {

class Coin_clock : public cpm::Clock {
public:
    explicit Coin_clock(cpm::model::Coin coin) : coin_(coin) {}
    void Start() override {
        ++attempt_;
        started_ = false;
    }
    double Now() override {
        bool const is_start = !std::exchange(started_, true);
        return !is_start && coin_.Overruns(attempt_) ? cpm::model::coin_time_is_up : 0;
    }

private:
    cpm::model::Coin coin_;
    std::uint64_t attempt_ = 0;
    bool started_ = false;
};

} // namespace

int main(int argc, char** argv) {
    cpm::Set_up_process();
    try {
        cpm::Console console(STDOUT_FILENO);
        cpm::Console_progress progress(console);
        cpm::Processor_clock counting;
        std::optional<Coin_clock> tossing;
        if (char const* const text = std::getenv("PLEXOR_FAKE_CLOCK_COIN"); text != nullptr) {
            cpm::model::Coin coin;
            std::istringstream(text) >> coin.seed >> coin.percent;
            tossing.emplace(coin);
        }
        cpm::Clock& clock = tossing ? static_cast<cpm::Clock&>(*tossing) : counting;
        unsigned n_threads = 1;
        if (char const* const text = std::getenv("PLEXOR_TEST_THREADS"); text != nullptr) {
            std::istringstream(text) >> n_threads;
        }
        cpm::Run_command_line(argc, argv, clock, progress, console, n_threads);
    } catch (std::bad_alloc const&) {
        cpm::Write_out_of_memory();
    }
    return 0;
}
