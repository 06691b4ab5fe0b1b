// SPDX-License-Identifier: MIT
#include "Plexor_io/Line_reader.h"

#include "Plexor_io/Link_file_errors.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace cpm {

namespace {

constexpr std::size_t first_block_size = std::size_t{1} << 18;

} // namespace

Line_reader::Line_reader(std::string const& file)
    : file_(file), descriptor_(::open(file.c_str(), O_RDONLY | O_CLOEXEC)),
      block_(first_block_size) {
    if (descriptor_ < 0) {
        throw Xep_file_not_found(file);
    }
}

Line_reader::~Line_reader() {
    ::close(descriptor_);
}

bool Line_reader::Next_block() {
    if (at_end_) {
        return false;
    }
    // What is left of the old block is the beginning of a line: it goes first.
    filled_ -= next_;
    std::memmove(block_.data(), block_.data() + next_, filled_);
    next_ = 0;
    if (filled_ == block_.size()) {
        block_.resize(2 * block_.size());
    }
    ssize_t got = 0;
    do {
        got = ::read(descriptor_, block_.data() + filled_, block_.size() - filled_);
    } while (got < 0 && errno == EINTR);
    if (got < 0) {
        throw Xep_read_file(file_);
    }
    at_end_ = got == 0;
    filled_ += static_cast<std::size_t>(got);
    return !at_end_ || filled_ > 0;
}

bool Line_reader::Next_line(std::string_view& line) {
    char const* const begin = block_.data() + next_;
    std::size_t const left = filled_ - next_;
    void const* const end = left == 0 ? nullptr : std::memchr(begin, '\n', left);
    if (end != nullptr) {
        line = {begin, static_cast<std::size_t>(static_cast<char const*>(end) - begin)};
        next_ += line.size() + 1;
        return true;
    }
    if (at_end_ && left > 0) {
        line = {begin, left};
        next_ = filled_;
        return true;
    }
    return false;
}

} // namespace cpm
