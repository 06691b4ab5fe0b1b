// SPDX-License-Identifier: MIT
// Preloaded, plays another program between two steps of a run: at the first look at the directory
// "out" after that was made, it is gone, and when it is opened, a link to the directory "full" is
// there.
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace {

bool made = false;
bool replaced = false;

} // namespace

extern "C" int mkdir(char const* path, mode_t mode) noexcept {
    int const result = ::mkdirat(AT_FDCWD, path, mode);
    made = made || (result == 0 && std::string_view(path).ends_with("out"));
    return result;
}

extern "C" int stat(char const* path, struct stat* status) noexcept {
    if (!made || replaced || !std::string_view(path).ends_with("out")) {
        return ::fstatat(AT_FDCWD, path, status, 0);
    }
    replaced = true;
    ::rmdir(path);
    int const result = ::fstatat(AT_FDCWD, path, status, 0);
    int const error = errno;
    if (::symlink("full", path) != 0) {
        return -1;
    }
    errno = error;
    return result;
}
