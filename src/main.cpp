// SPDX-License-Identifier: MIT
// The program: one run. What it says stands on standard output; its exit status is always 0.
#include "Plexor_io/Console.h"
#include "Plexor_io/Console_progress.h"
#include "Plexor_io/Run.h"
#include "Process_setup.h"

#include <new>
#include <unistd.h>

int main(int argc, char** argv) {
    cpm::Set_up_process();
    try {
        cpm::Console console(STDOUT_FILENO);
        cpm::Console_progress progress(console);
        cpm::Processor_clock clock;
        cpm::Run_command_line(argc, argv, clock, progress, console);
    } catch (std::bad_alloc const&) {
        cpm::Write_out_of_memory();
    }
    return 0;
}
