// SPDX-License-Identifier: MIT
#include "Process_setup.h"

#include "Plexor_io/Write_all.h"
#include "support/Huge_pages.h"

#include <csignal>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <malloc.h>
#include <string_view>
#include <unistd.h>

namespace cpm {

namespace {

// A run may be started with standard streams closed. The next file opened would take their place
// and get what is meant for them.
void Fill_standard_streams() {
    int descriptor = 0;
    do {
        descriptor = ::open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

// Arrays of 2 MB or more get mappings of their own: freeing one returns its memory at once, and
// growing one moves pages instead of copying. In the heap, where the C library would put more and
// more of them as it sees them freed, each would leave a hole and be copied to grow.
void Give_large_arrays_pages_of_their_own() {
    constexpr auto large = static_cast<int>(huge_page);
    ::mallopt(M_MMAP_THRESHOLD, large);
    ::mallopt(M_TRIM_THRESHOLD, large); // setting one ends the automatic rise of the other
}

// An error that cannot be thrown for want of memory gets here, too; then there is none under way.
void End_without_memory() {
    if (std::current_exception() != nullptr) {
        std::abort();
    }
    Write_out_of_memory();
    ::_exit(0);
}

} // namespace

void Write_out_of_memory() {
    constexpr std::string_view text = "ERROR: not enough memory to begin.\n";
    static_cast<void>(Write_all(STDOUT_FILENO, text));
}

void Set_up_process() {
    // A reader of the reports that goes away must not end the run, and a file that may not grow is
    // reported like a full disk.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    Fill_standard_streams();
    std::set_terminate(End_without_memory);
    Give_large_arrays_pages_of_their_own();
}

} // namespace cpm
