// SPDX-License-Identifier: MIT
// What holds of the communities of every run, given its cliques.
#ifndef PLEXOR_INVARIANTS_CHECK_COMMUNITIES_H
#define PLEXOR_INVARIANTS_CHECK_COMMUNITIES_H

#include "Findings.h"
#include "Network.h"
#include "Result_files.h"

namespace cpm::invariants {

/// The clique list has been found in order.
void Check_levels(Results const& results, Network const& network, Search_report const& report,
                  Findings& findings);

/// The counts over all communities, or a part of them.
void Check_distributions(Level const& level, Network const& network, Findings& findings);

} // namespace cpm::invariants

#endif
