// SPDX-License-Identifier: MIT
#include "Plexor_io/Text_file.h"

#include "Plexor_io/Write_all.h"

#include <unistd.h>

namespace cpm {

namespace {

// Large enough that a system call is rare, small enough to stay in the second-level cache.
constexpr std::size_t buffer_size = std::size_t{1} << 18;

} // namespace

Text_file::Text_file(New_file const& file, Run_files& files)
    : path_(file.Path()), files_(files), buffer_(new char[buffer_size]), descriptor_(file.Make()),
      failed_(descriptor_ < 0) {
    Set_buffer(buffer_.get(), buffer_.get() + buffer_size);
}

Text_file::~Text_file() {
    Flush();
    // Some file systems report a full disk only now.
    if (descriptor_ >= 0 && ::close(descriptor_) != 0) {
        failed_ = true;
    }
    if (failed_) {
        files_.console.Put(" WARNING: could not write '");
        files_.console.Put(path_);
        files_.console.Put_line("'.");
        files_.not_written.push_back(std::move(path_));
    }
}

void Text_file::Flush() {
    std::string_view const text(buffer_.get(), static_cast<std::size_t>(Next() - buffer_.get()));
    // After the first failure nothing more is written: a file with a gap would look whole.
    failed_ = failed_ || !Write_all(descriptor_, text);
    Set_buffer(buffer_.get(), buffer_.get() + buffer_size);
}

void Text_file::Make_room(std::size_t) {
    Flush();
}

} // namespace cpm
