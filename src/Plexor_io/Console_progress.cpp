// SPDX-License-Identifier: MIT
#include "Plexor_io/Console_progress.h"

#include "Plexor_io/Reports.h"

namespace cpm {

namespace reports = Clique_find_report_sub_routines;

void Console_progress::Search_began(Clique_search const& search) {
    search_ = search;
    title_.Clear();
    title_.Put(search.directed ? " Locating dir. cliques" : " Locating cliques");
    if (search.max_time) {
        title_.Put(", max. allowed time/node=");
        title_.Put_fixed(*search.max_time, 3);
    } else if (!search.directed) {
        console_.Put_line(" Sorting the nodes...");
    }
    title_.Put(':');
}

void Console_progress::Nodes_sorted() {
    console_.Put_line(" done.");
}

void Console_progress::Node_started(std::uint32_t to_do, std::uint32_t total) {
    reports::Report_progress(title_.View(), "nodes", to_do, total, console_);
    console_.Message_done();
}

void Console_progress::Node_overran(std::uint32_t node, std::uint32_t skipped_in_row,
                                    std::uint32_t waiting) {
    reports::Report_hard_node(node, skipped_in_row, waiting, console_);
    console_.Message_done();
}

void Console_progress::Remaining_nodes_too_hard() {
    reports::Report_all_rem_nodes_to_hard(Cliques(), console_);
    console_.Message_done();
}

void Console_progress::Search_done(std::uint32_t n_cliques, bool complete) {
    if (!complete) {
        reports::Report_clique_search_end(
            search_.directed ? "exact directed cliques" : "exact cliques", n_cliques, console_);
    } else if (search_.max_time) {
        // Deliberate: the two texts differ in more than the kind of clique.
        reports::Report_clique_search_end(Cliques(), n_cliques,
                                          search_.directed ? "no approximation was needed."
                                                           : " no approximation was needed",
                                          console_);
    } else {
        reports::Report_clique_search_end(Cliques(), n_cliques, console_);
    }
    console_.Message_done();
}

void Console_progress::Approximation_began() {
    console_.Put_line("_____________________________________________");
    console_.Put_line(" Approximating cliques in the remaing core...");
}

void Console_progress::Approximation_done(std::uint64_t n_exact, std::uint64_t n_approximated) {
    console_.Put_line(" Clique approximation finished,");
    console_.Put(" number of   exact cliques=");
    console_.Put_number(n_exact);
    console_.Put(",\n number of approx. cliques=");
    console_.Put_number(n_approximated);
    console_.Put_line("");
}

} // namespace cpm
