// SPDX-License-Identifier: MIT
#include "Plexor_io/Console.h"

#include "Plexor_io/Write_all.h"

#include <ctime>

namespace cpm {

namespace {

constexpr std::size_t buffer_size = std::size_t{1} << 16;
constexpr std::int64_t moment_ms = 100;
constexpr int most_in_a_moment = 8;

// The coarse clock is read without a system call and is exact enough for a person's eye.
std::int64_t Now_ms() {
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

} // namespace

Console::Console(int descriptor) : descriptor_(descriptor), buffer_(buffer_size) {
    Set_buffer(buffer_.data(), buffer_.data() + buffer_.size());
}

Console::Console(Text_sink& text) : text_(&text), buffer_(buffer_size) {
    Set_buffer(buffer_.data(), buffer_.data() + buffer_.size());
}

Console::~Console() {
    Flush();
}

void Console::Message_done() {
    std::int64_t const now = Now_ms();
    if (now - moment_began_ >= moment_ms) {
        moment_began_ = now;
        n_in_moment_ = 0;
    }
    if (n_in_moment_ < most_in_a_moment) {
        ++n_in_moment_;
        Flush();
    }
}

void Console::Tick() {
    if (Next() != buffer_.data() && Now_ms() - moment_began_ >= moment_ms) {
        Flush();
    }
}

void Console::Flush() {
    std::string_view const text(buffer_.data(), static_cast<std::size_t>(Next() - buffer_.data()));
    if (text_ != nullptr) {
        text_->Put(text);
    } else {
        // Nobody is left to be told about a standard output that fails.
        static_cast<void>(Write_all(descriptor_, text));
    }
    Set_buffer(buffer_.data(), buffer_.data() + buffer_.size());
}

void Console::Put_line(std::string_view text) {
    Put(text);
    Put('\n');
    Flush();
}

void Console::Make_room(std::size_t) {
    Flush();
}

} // namespace cpm
