// SPDX-License-Identifier: MIT
// Runs a command on a terminal of its own that goes away under it: the first bytes of its output
// are read, then the terminal is closed. The command ignores the signal that comes with that, as
// under nohup. Exit status: the command's; 125 when there was no such status.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

[[noreturn]] void Become(char** command, char const* terminal) {
    std::signal(SIGHUP, SIG_IGN);
    ::setsid(); // so that the terminal becomes its controlling one
    int const slave = ::open(terminal, O_RDWR);
    if (slave >= 0 && ::dup2(slave, 0) == 0 && ::dup2(slave, 1) == 1) {
        ::execvp(command[0], command);
    }
    std::perror("the command");
    ::_exit(126);
}

} // namespace

int main(int argc, char** argv) {
    int const master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (argc < 2 || master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0) {
        std::perror("a terminal");
        return 125;
    }
    char const* const terminal = ::ptsname(master);
    pid_t const child = ::fork();
    if (child == 0) {
        Become(argv + 1, terminal);
    }
    char first_bytes[100];
    if (child < 0 || ::read(master, first_bytes, sizeof(first_bytes)) <= 0) {
        std::perror("the command's output");
        return 125;
    }
    ::close(master);
    int status = 0;
    if (::waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        std::fprintf(stderr, "the command did not end by itself\n");
        return 125;
    }
    return WEXITSTATUS(status);
}
