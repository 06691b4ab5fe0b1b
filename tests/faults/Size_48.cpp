// SPDX-License-Identifier: MIT
// Preloaded, makes every directory look as if it had 48 bytes, as some file systems report an empty
// one.
#include <fcntl.h>
#include <sys/stat.h>

namespace {

int With_size_48(int result, struct stat* status) {
    if (result == 0 && S_ISDIR(status->st_mode)) {
        status->st_size = 48;
    }
    return result;
}

} // namespace

extern "C" int stat(char const* path, struct stat* status) noexcept {
    return With_size_48(::fstatat(AT_FDCWD, path, status, 0), status);
}

extern "C" int fstat(int descriptor, struct stat* status) noexcept {
    return With_size_48(::fstatat(descriptor, "", status, AT_EMPTY_PATH), status);
}
