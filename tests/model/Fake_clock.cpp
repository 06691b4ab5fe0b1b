// SPDX-License-Identifier: MIT
// Takes the place of the C library's clock in a program it is linked into: the n-th call returns n
// times the step given in microseconds by the environment variable PLEXOR_FAKE_CLOCK_STEP, so that
// the same nodes run out of time on every machine. Without the variable time stands still.
#include <cstdint>
#include <cstdlib>
#include <ctime>

extern "C" std::clock_t clock() noexcept {
    static std::uint64_t const step = [] {
        char const* const text = std::getenv("PLEXOR_FAKE_CLOCK_STEP");
        return text == nullptr ? 0 : static_cast<std::uint64_t>(std::strtoll(text, nullptr, 10));
    }();
    static std::uint64_t calls = 0;
    return static_cast<std::clock_t>(++calls * step);
}
