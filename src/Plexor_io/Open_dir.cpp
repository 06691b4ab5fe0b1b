// SPDX-License-Identifier: MIT
#include "Plexor_io/Open_dir.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace cpm {

namespace {

// A directory that may be written but not read can be opened this way, too.
constexpr int dir_flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
constexpr int list_flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
// O_EXCL follows no link either.
constexpr int new_file_flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
constexpr mode_t file_mode = 0666;
constexpr mode_t dir_mode = 0755;

bool Is_dots(std::string_view name) {
    return name == "." || name == "..";
}

} // namespace

Open_dir::Open_dir(std::string const& path) : descriptor_(::open(path.c_str(), dir_flags)) {
    Identify();
}

Open_dir::Open_dir(Open_dir const& parent, std::string const& name)
    : descriptor_(::openat(parent.descriptor_, name.c_str(), dir_flags | O_NOFOLLOW)) {
    Identify();
}

Open_dir& Open_dir::operator=(Open_dir&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    std::swap(device_, other.device_);
    std::swap(inode_, other.inode_);
    return *this;
}

// Nobody else gets these two numbers while the directory is open, even when it is removed.
void Open_dir::Identify() {
    struct stat own {};
    if (Is_open() && ::fstat(descriptor_, &own) == 0) {
        device_ = own.st_dev;
        inode_ = own.st_ino;
    }
}

Open_dir::~Open_dir() {
    if (Is_open()) {
        ::close(descriptor_);
    }
}

bool Open_dir::Is_at(std::string const& path) const {
    struct stat there {};
    return Is_open() && ::stat(path.c_str(), &there) == 0 && there.st_dev == device_ &&
           there.st_ino == inode_;
}

bool Open_dir::Holds_nothing() const {
    int const descriptor = ::openat(descriptor_, ".", list_flags);
    DIR* const listing = descriptor < 0 ? nullptr : ::fdopendir(descriptor);
    if (listing == nullptr) {
        if (descriptor >= 0) {
            ::close(descriptor);
        }
        return false;
    }
    errno = 0;
    dirent const* entry = ::readdir(listing);
    while (entry != nullptr && Is_dots(static_cast<char const*>(entry->d_name))) {
        entry = ::readdir(listing);
    }
    bool const came_to_the_end = entry == nullptr && errno == 0;
    ::closedir(listing);
    return came_to_the_end;
}

bool Open_dir::Make_dir(std::string const& name) const {
    return ::mkdirat(descriptor_, name.c_str(), dir_mode) == 0;
}

int Open_dir::Make_file(std::string const& name) const {
    return ::openat(descriptor_, name.c_str(), new_file_flags, file_mode);
}

} // namespace cpm
