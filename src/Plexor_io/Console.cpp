// SPDX-License-Identifier: MIT
#include "Plexor_io/Console.h"

#include "Plexor_io/Write_all.h"

#include <ctime>

namespace cpm {

namespace {

constexpr std::size_t buffer_size = std::size_t{1} << 16;
constexpr std::int64_t flush_interval_ms = 100;

// The coarse clock is read without a system call and is exact enough for a person's eye.
std::int64_t Now_ms() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

} // namespace

Console::Console(int descriptor) : descriptor_(descriptor), buffer_(buffer_size), last_flush_(0) {
    Set_buffer(buffer_.data(), buffer_.data() + buffer_.size());
}

Console::~Console() {
    Flush();
}

void Console::Message_done() {
    if (Now_ms() - last_flush_ >= flush_interval_ms) {
        Flush();
    }
}

void Console::Flush() {
    std::string_view const text(buffer_.data(), static_cast<std::size_t>(Next() - buffer_.data()));
    // Nobody is left to be told about a standard output that fails.
    static_cast<void>(Write_all(descriptor_, text));
    Set_buffer(buffer_.data(), buffer_.data() + buffer_.size());
    last_flush_ = Now_ms();
}

void Console::Put_line(std::string_view text) {
    Put(text);
    Put('\n');
    Message_done();
}

void Console::Make_room(std::size_t) {
    Flush();
}

} // namespace cpm
