// SPDX-License-Identifier: MIT
// What the program settles for its whole process. Nothing else does: the engine runs in processes
// of others, too.
#ifndef PLEXOR_PROCESS_SETUP_H
#define PLEXOR_PROCESS_SETUP_H

namespace cpm {

/// Signals, standard streams, where large arrays live. Where an error cannot even be thrown for
/// want of memory, a line says so and the exit status is 0.
void Set_up_process();

/// Says on standard output that there is not even the memory for a console. Needs none.
void Write_out_of_memory();

} // namespace cpm

#endif
