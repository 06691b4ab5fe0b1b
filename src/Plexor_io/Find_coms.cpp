// SPDX-License-Identifier: MIT
#include "Plexor_io/Find_coms.h"

#include "Coms_funcs/Intensity_coms.h"
#include "Coms_funcs/K_cliques.h"
#include "Plexor_io/Kiir_cliques.h"
#include "Plexor_io/Kiir_com_graph.h"
#include "Plexor_io/Kiir_coms.h"
#include "Plexor_io/Kiir_stats.h"

#include <utility>

namespace cpm {

Coms_finder::Coms_finder(Coms_input input, Run_files& files, Progress& progress)
    : input_(std::move(input)), files_(files), progress_(progress),
      edges_(input_.links, input_.n_nodes, input_.found.cliques, input_.found.n_exact),
      link_writer_(edges_, input_.links, input_.labels) {
    if (!input_.run.intensity) {
        // From here on only numbers of pairs are dealt with.
        input_.links = Index_links();
        percolation_ = std::make_unique<Percolation>(input_.found, input_.n_nodes, edges_);
    }
}

void Coms_finder::Find_coms(std::uint32_t k) {
    if (input_.run.intensity) {
        From_k_cliques(k);
    } else {
        From_overlaps(k);
    }
}

void Coms_finder::From_overlaps(std::uint32_t k) {
    progress_.Level_began(k, input_.largest_clique);
    percolation_->Coms_from_appr_ovlp_matr(coms_, k, &progress_);
    progress_.Level_found();
    Write(k);
}

void Coms_finder::From_k_cliques(std::uint32_t k) {
    Run_settings const& run = input_.run;
    K_clique_list k_cliques;
    Generate_k_cls_from_cls(input_.found.cliques, input_.links, k_cliques, k,
                            run.intensity_threshold, progress_);
    files_.console.Put_line("__________________________");
    files_.console.Put_line(" Writing k-clques to disk.");
    Kiir_k_cliques_PX(k_cliques, input_.labels, {files_, k});
    Intensity_coms_from_k_cliques(std::move(k_cliques), coms_, input_.links,
                                  run.intensity_threshold, progress_);
    Write(k);
    coms_ = Communities(); // which holds the k-cliques
}

void Coms_finder::Write(std::uint32_t k) {
    Level_files const files{files_, k};
    files_.console.Put_line(" Writing commmunities to disk...");
    Kiir_coms_PX(coms_, input_.labels, files);
    if (!input_.run.intensity) {
        Kiir_coms_cliques_PX(coms_, input_.found.n_exact, files);
    }
    Kiir_com_links_PX(coms_, link_writer_, files);
    files_.console.Put_line(" done.");

    Prepare_community_graph(coms_, graph_);
    Kiir_com_graph_PX(graph_, coms_.n_exact, files);
    files_.console.Put_line(" Calculating statistics...");
    Write_statistics(files);
}

void Coms_finder::Write_statistics(Level_files const& files) {
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
    files_.console.Put_line(" done.");
    for (Part const& one : parts) {
        Kiir_stats_PX(one.distributions, one.suffix, files);
    }
}

} // namespace cpm
