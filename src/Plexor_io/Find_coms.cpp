// SPDX-License-Identifier: MIT
#include "Plexor_io/Find_coms.h"

#include "Coms_funcs/Intensity_coms.h"
#include "Coms_funcs/K_cliques.h"
#include "Plexor_io/Kiir_cliques.h"
#include "Plexor_io/Kiir_com_graph.h"
#include "Plexor_io/Kiir_coms.h"
#include "Plexor_io/Kiir_stats.h"
#include "Plexor_io/My_int2string.h"

#include <utility>

namespace cpm {

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

Coms_finder::Coms_finder(Coms_input input, Console& console)
    : input_(std::move(input)), console_(console),
      pairs_(input_.links, input_.n_nodes, input_.found.cliques, input_.found.n_exact),
      link_lines_(pairs_, input_.links, input_.labels) {
    Found_cliques const& found = input_.found;
    if (input_.run.intensity) {
        return;
    }
    // From here on only numbers of pairs are dealt with.
    input_.links = Index_links();
    if (found.before_merge) {
        stale_ = std::make_unique<Stale_overlaps>(*found.before_merge, found.cliques, found.n_exact,
                                                  input_.n_nodes);
    }
    percolation_ = std::make_unique<Percolation>(found.cliques, found.n_exact, input_.n_nodes,
                                                 pairs_, found.nested, stale_.get());
}

void Coms_finder::Find_coms(std::uint32_t k) {
    if (input_.run.intensity) {
        From_k_cliques(k);
    } else {
        From_overlaps(k);
    }
}

void Coms_finder::From_overlaps(std::uint32_t k) {
    Coms_report_sub::Report_com_export(k, input_.largest_clique, console_);
    console_.Message_done();
    percolation_->Coms_from_appr_ovlp_matr(coms_, k);
    console_.Put_line(" done.");
    Write(k);
}

void Coms_finder::From_k_cliques(std::uint32_t k) {
    Run_settings const& run = input_.run;
    K_clique_list k_cliques;
    Generate_k_cls_from_cls(input_.found.cliques, input_.links, k_cliques, k,
                            run.intensity_threshold, console_);
    console_.Put_line("__________________________");
    console_.Put_line(" Writing k-clques to disk.");
    Kiir_k_cliques_PX(input_.place, k_cliques, k, input_.labels, run.header_text, console_);
    Intensity_coms_from_k_cliques(k_cliques, coms_, input_.links, run.intensity_threshold,
                                  console_);
    Write(k);
    coms_ = Communities(); // their links are looked up in the k-cliques
}

void Coms_finder::Write(std::uint32_t k) {
    Run_settings const& run = input_.run;
    console_.Put_line(" Writing commmunities to disk...");
    Kiir_coms_PX(coms_, input_.place, k, input_.labels, run.com_flag, run.header_text, console_);
    if (!run.intensity) {
        Kiir_coms_cliques_PX(coms_, input_.place, k, input_.found.n_exact, run.com_flag,
                             run.header_text, console_);
    }
    Kiir_com_links_PX(coms_, input_.place, k, link_lines_, run.com_flag, run.header_text, console_);
    console_.Put_line(" done.");

    Prepare_community_graph(coms_, graph_);
    Kiir_com_graph_PX(graph_, coms_.n_exact, input_.place, k, run.com_flag, run.header_text,
                      console_);
    console_.Put_line(" Calculating statistics...");
    Write_statistics(k);
}

void Coms_finder::Write_statistics(std::uint32_t k) {
    struct Part {
        Community_part part;
        std::string suffix;
        Community_distributions distributions{};
    };
    std::vector<Part> parts;
    if (coms_.size() <= coms_.n_exact) {
        parts = {{Community_part::all, ""}};
    } else {
        parts = {{Community_part::all, "_merged"},
                 {Community_part::exact, "_exact"},
                 {Community_part::approximated, "_appr"}};
    }
    for (Part& one : parts) {
        Community_statistics(one.distributions, graph_, one.part, input_.n_nodes);
    }
    console_.Put_line(" done.");
    Run_settings const& run = input_.run;
    for (Part const& one : parts) {
        Kiir_stats_PX(one.distributions, input_.place, k, run.com_flag, one.suffix, run.header_text,
                      console_);
    }
}

} // namespace cpm
