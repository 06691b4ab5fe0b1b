// SPDX-License-Identifier: MIT
// What long searches tell the person who waits for them. Each report goes to the sink whole; the
// caller passes it on. One is made per node, so they are cheap.
#ifndef PLEXOR_REPORTS_H
#define PLEXOR_REPORTS_H

#include "Plexor_io/Text_sink.h"

#include <cstdint>
#include <string_view>

namespace cpm::Clique_find_report_sub_routines {

/// How far a search is, under a title that is underlined from above. `to_do` counts what is not
/// done yet, the item that comes next included; `total` is what there was at the start.
void Report_progress(std::string_view title, std::string_view what, std::uint32_t to_do,
                     std::uint32_t total, Text_sink& sink);
/// The same under a title of two lines.
void Report_progress(std::string_view title1, std::string_view title2, std::string_view what,
                     std::uint32_t to_do, std::uint32_t total, Text_sink& sink);

/// A node has been given up. `waiting` counts the nodes not yet done, this one included.
void Report_hard_node(std::uint32_t node, std::uint32_t skipped_in_row, std::uint32_t waiting,
                      Text_sink& sink);

/// All nodes that were left have been given up.
void Report_all_rem_nodes_to_hard(std::string_view what, Text_sink& sink);

/// What a search has found, and, when given, a line that says more about it.
void Report_clique_search_end(std::string_view what, std::uint32_t count, Text_sink& sink);
void Report_clique_search_end(std::string_view what, std::uint32_t count, std::string_view extra,
                              Text_sink& sink);

} // namespace cpm::Clique_find_report_sub_routines

#endif
