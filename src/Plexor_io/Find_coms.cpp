// SPDX-License-Identifier: MIT
#include "Plexor_io/Find_coms.h"

#include "Coms_funcs/Intensity_coms.h"
#include "Coms_funcs/K_cliques.h"
#include "Plexor_io/Kiir_cliques.h"
#include "Plexor_io/Parallel_coms.h"

#include <utility>

namespace cpm {

Coms_finder::Coms_finder(Coms_input input, Run_files& files, Progress& progress)
    : input_(std::move(input)), files_(files), progress_(progress),
      edges_(input_.links, input_.n_nodes, input_.found.cliques, input_.found.n_exact),
      link_writer_(edges_, input_.links, input_.labels), context_{input_.run, input_.labels,
                                                                  link_writer_,
                                                                  input_.found.n_exact,
                                                                  input_.n_nodes},
      writer_(context_) {
    if (!input_.run.intensity) {
        // From here on only numbers of pairs are dealt with.
        input_.links = Index_links();
    }
}

void Coms_finder::Find_coms(std::uint32_t k) {
    if (input_.run.intensity) {
        From_k_cliques(k);
    } else {
        From_overlaps(k);
    }
}

void Coms_finder::Find_all(unsigned n_threads) {
    if (n_threads > 1) {
        Find_all_coms({input_.found, input_.links, edges_, input_.largest_clique, context_},
                      n_threads, files_, progress_);
        return;
    }
    for (std::uint32_t k = input_.largest_clique; k > 2; --k) {
        Find_coms(k);
    }
}

void Coms_finder::From_overlaps(std::uint32_t k) {
    if (!percolation_) {
        auto cliques = std::make_shared<Ranked_cliques>(Rank_cliques(input_.found, input_.n_nodes));
        percolation_ = std::make_unique<Percolation>(input_.found, std::move(cliques), edges_);
    }
    progress_.Level_began(k, input_.largest_clique);
    percolation_->Coms_from_appr_ovlp_matr(coms_, k, &progress_);
    progress_.Level_found();
    writer_.Write(coms_, {files_, k});
}

void Coms_finder::From_k_cliques(std::uint32_t k) {
    Level_files const files{files_, k};
    Communities const coms =
        Coms_from_k_cliques(input_.found.cliques, input_.links, context_, files, progress_);
    writer_.Write(coms, files);
}

Communities Coms_from_k_cliques(Set_list const& cliques, Index_links const& links,
                                Level_context const& context, Level_files const& files,
                                Progress& progress) {
    double const intensity = context.run.intensity_threshold;
    K_clique_list k_cliques;
    Generate_k_cls_from_cls(cliques, links, k_cliques, files.k, intensity, progress);
    files.run.console.Put_line("__________________________");
    files.run.console.Put_line(" Writing k-clques to disk.");
    Kiir_k_cliques_PX(k_cliques, context.labels, files);
    Communities coms;
    Intensity_coms_from_k_cliques(std::move(k_cliques), coms, links, intensity, progress);
    return coms;
}

} // namespace cpm
