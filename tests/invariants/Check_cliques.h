// SPDX-License-Identifier: MIT
// What holds of the clique list of every run, whatever was given up in it.
#ifndef PLEXOR_INVARIANTS_CHECK_CLIQUES_H
#define PLEXOR_INVARIANTS_CHECK_CLIQUES_H

#include "Findings.h"
#include "Network.h"
#include "Result_files.h"

namespace cpm::invariants {

/// False when the list is so far from any list that nothing else can be said of it.
bool Check_clique_list(Results const& results, Network const& network, Search_report const& report,
                       Findings& findings);

} // namespace cpm::invariants

#endif
