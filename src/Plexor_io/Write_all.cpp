// SPDX-License-Identifier: MIT
#include "Plexor_io/Write_all.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace cpm {

namespace {

// After a write that failed: waits if another try makes sense. EAGAIN comes from a terminal or pipe
// that another program, which shares it, has told not to wait for a slow reader.
bool May_try_again(int descriptor) {
    if (errno == EAGAIN) {
        pollfd waiting{descriptor, POLLOUT, 0};
        return ::poll(&waiting, 1, -1) > 0 || errno == EINTR;
    }
    return errno == EINTR;
}

} // namespace

bool Write_all(int descriptor, std::string_view text) {
    while (!text.empty()) {
        ssize_t const written = ::write(descriptor, text.data(), text.size());
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (written == 0 || !May_try_again(descriptor)) {
            return false;
        }
    }
    return true;
}

} // namespace cpm
