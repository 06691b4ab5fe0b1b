// SPDX-License-Identifier: MIT
// Find_coms: the communities at one k, from the cliques to the files.
#ifndef PLEXOR_FIND_COMS_H
#define PLEXOR_FIND_COMS_H

#include "Clique_find/Find_cliques.h"
#include "Coms_funcs/Edge_numbering.h"
#include "Coms_funcs/Percolation.h"
#include "Plexor_io/Level_writer.h"
#include "Plexor_io/Link_writer.h"
#include "Plexor_io/Name_labels.h"
#include "Plexor_io/Result_files.h"
#include "Plexor_io/Result_place.h"
#include "Plexor_io/Run_settings.h"
#include "graph/Types.h"
#include "support/Progress.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace cpm {

/// What the communities of every k are made from. What is referred to stays as it is and must
/// outlive its use.
struct Coms_input {
    Found_cliques found;       ///< handed over: its cliques are given back once ranked
    Index_links links;         ///< handed over: they are given up when they are needed no more
    Name_labels const& labels; ///< the names of the nodes
    Node n_nodes;
    std::uint32_t largest_clique;
    Run_settings const& run;
};

/// Works on one k after the other. Going down from the largest, each k begins with what the one
/// before has left in memory; the results do not depend on that.
class Coms_finder {
public:
    /// The files and the progress must outlive this object.
    Coms_finder(Coms_input input, Run_files& files, Progress& progress);

    /// Finds the communities at k and writes their files into the directory "k=<k>" of the output
    /// directory. Throws what the intensity of a k-clique and preparing the directory can throw.
    void Find_coms(std::uint32_t k);
    /// The same for every k from the largest clique's size down to 3, on so many threads.
    void Find_all(unsigned n_threads);

private:
    void From_overlaps(std::uint32_t k);
    void From_k_cliques(std::uint32_t k);

    Coms_input input_;
    Run_files& files_;
    Progress& progress_;
    Edge_numbering edges_;
    Link_writer link_writer_;
    Level_context context_;
    Level_writer writer_;
    std::unique_ptr<Percolation> percolation_; ///< made when the first k asks for it
    Communities coms_;                         ///< of the k under way
};

/// The communities at k by intensity. Says what it does on the console and writes the k-cliques.
Communities Coms_from_k_cliques(Set_list const& cliques, Index_links const& links,
                                Level_context const& context, Level_files const& files,
                                Progress& progress);

} // namespace cpm

#endif
