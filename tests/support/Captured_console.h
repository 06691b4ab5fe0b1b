// SPDX-License-Identifier: MIT
// Captured_console: a console whose text stays in memory, for tests that look at it.
#ifndef PLEXOR_CAPTURED_CONSOLE_H
#define PLEXOR_CAPTURED_CONSOLE_H

#include "Plexor_io/Console.h"
#include "Plexor_io/Console_progress.h"

#include <array>
#include <cerrno>
#include <string>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

namespace cpm {

class Captured_console {
public:
    /// The console to hand to the code under test.
    Console& Get() { return console_; }
    operator Console&() { return console_; }
    /// What prints on it.
    operator Progress&() { return progress_; }

    /// All text put so far, flushed or not.
    std::string Output() {
        console_.Flush();
        std::string text;
        std::array<char, 4096> part{};
        ssize_t got = 0;
        while ((got = ::pread(file_.descriptor, part.data(), part.size(),
                              static_cast<off_t>(text.size()))) > 0) {
            text.append(part.data(), static_cast<std::size_t>(got));
        }
        return text;
    }

private:
    // A file without a name. A member, so that it outlives the console, which flushes at its end.
    struct Memory_file {
        Memory_file() : descriptor(::memfd_create("console", MFD_CLOEXEC)) {
            if (descriptor < 0) {
                throw std::system_error(errno, std::generic_category(), "memfd_create");
            }
        }
        Memory_file(Memory_file const&) = delete;
        Memory_file& operator=(Memory_file const&) = delete;
        ~Memory_file() { ::close(descriptor); }
        int descriptor;
    };

    Memory_file file_;
    Console console_{file_.descriptor};
    Console_progress progress_{console_};
};

} // namespace cpm

#endif
