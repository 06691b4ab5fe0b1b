// SPDX-License-Identifier: MIT
// Runs a command and writes what it needed into a file: wall and processor seconds, peak memory in
// bytes, exit status (negative: the signal that ended it). A process inherits the peak of the one
// that starts it, so the script that asks for this, tens of megabytes large, cannot measure it.
//
//   measure REPORT COMMAND ARGUMENT...
#include <chrono>
#include <fstream>
#include <iostream>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

double Seconds(timeval const& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: measure REPORT COMMAND ARGUMENT...\n";
        return 2;
    }
    auto const begin = std::chrono::steady_clock::now();
    pid_t child = 0;
    if (posix_spawnp(&child, argv[2], nullptr, nullptr, argv + 2, environ) != 0) {
        std::cerr << "measure: cannot run " << argv[2] << "\n";
        return 1;
    }
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child) {
        std::cerr << "measure: lost " << argv[2] << "\n";
        return 1;
    }
    std::chrono::duration<double> const wall = std::chrono::steady_clock::now() - begin;
    constexpr long bytes_a_unit = 1024;
    std::ofstream report(argv[1]);
    report << wall.count() << ' ' << Seconds(usage.ru_utime) + Seconds(usage.ru_stime) << ' '
           << usage.ru_maxrss * bytes_a_unit << ' '
           << (WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status)) << '\n';
    return report.flush() ? 0 : 1;
}
