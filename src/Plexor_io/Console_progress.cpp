// SPDX-License-Identifier: MIT
#include "Plexor_io/Console_progress.h"

#include "Plexor_io/My_int2string.h"
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

void Console_progress::Level_began(std::uint32_t k, std::uint32_t largest) {
    Coms_report_sub::Report_com_export(k, largest, console_);
    console_.Message_done();
}

void Console_progress::Level_found() {
    console_.Put_line(" done.");
}

void Console_progress::Set_titles(std::string_view title, std::uint32_t k, std::string_view title2,
                                  double intensity) {
    title_.Clear();
    title_.Put(title);
    title_.Put_number(k);
    title_.Put(',');
    title2_.Clear();
    title2_.Put(title2);
    title2_.Put_fixed(intensity, 6);
    title2_.Put(':');
}

void Console_progress::K_clique_search_began(std::uint32_t k, double intensity) {
    Set_titles(" Generating k-cliques at k=", k,
               " and a link weight intensity threshold I=", intensity);
}

void Console_progress::K_clique_search_at(std::uint32_t to_do, std::uint32_t total) {
    reports::Report_progress(title_.View(), title2_.View(), "cliques", to_do, total, console_);
    console_.Message_done();
}

void Console_progress::K_clique_search_done(std::uint32_t n_k_cliques) {
    reports::Report_clique_search_end(" k-cliques", n_k_cliques, console_);
    console_.Message_done();
}

void Console_progress::K_cliques_joining_began(std::uint32_t k, double intensity) {
    // Deliberate: the last word but one is written so.
    Set_titles(" Extracting communities from the k-cliques at k=", k,
               " and a link weight intensity threshlod I=", intensity);
}

void Console_progress::K_cliques_joining_at(std::uint32_t to_do, std::uint32_t total) {
    reports::Report_progress(title_.View(), title2_.View(), "k-cliques", to_do, total, console_);
    console_.Message_done();
}

namespace Coms_report_sub {

std::size_t Num_width(std::uint32_t n) {
    return int2string(n).size();
}

void Report_com_export(std::uint32_t k, std::uint32_t kmax, Text_sink& sink) {
    constexpr std::size_t width_without_k = 48;
    constexpr unsigned decimals = 2;
    // Deliberate: unsigned differences. A k above the largest clique, or a largest clique of less
    // than two nodes, gives percentages out of all proportion.
    double const done = 100 * (static_cast<double>(kmax - k) + 0.5) / static_cast<double>(kmax - 2);
    sink.Put_repeated('_', Num_width(k) + width_without_k);
    sink.Put("\n Extracting communities at k=");
    sink.Put_number(k);
    sink.Put(" (completed ");
    sink.Put_fixed(done, decimals);
    sink.Put("%)\n");
}

} // namespace Coms_report_sub

} // namespace cpm
