// SPDX-License-Identifier: MIT
#include <plexor/Progress.h>

#include <plexor/Error.h>

#include <ctime>

namespace plexor {

Error::~Error() = default;
Cancelled::~Cancelled() = default;
char const* Cancelled::what() const noexcept {
    return "cancelled";
}

Progress::~Progress() = default;
void Progress::Searching(std::uint32_t, std::uint32_t) {}
void Progress::Node_overran(std::uint32_t) {}
void Progress::Level_started(std::uint32_t) {}

Clock::~Clock() = default;
void Clock::Start() {}

double Thread_clock::Now() {
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

} // namespace plexor
