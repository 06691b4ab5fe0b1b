// SPDX-License-Identifier: MIT
// What the program settles for its whole process. Nothing else does: the engine runs in processes
// of others, too.
#ifndef PLEXOR_PROCESS_SETUP_H
#define PLEXOR_PROCESS_SETUP_H

namespace cpm {

/// Signals, standard streams, what is thrown when memory runs out, where large arrays live.
void Set_up_process();

} // namespace cpm

#endif
