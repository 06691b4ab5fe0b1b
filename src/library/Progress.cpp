// SPDX-License-Identifier: MIT
#include <plexor/Progress.h>

#include "Clique_find/Clock.h"

#include <plexor/Error.h>

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
    return cpm::Thread_clock().Now();
}

} // namespace plexor
