// SPDX-License-Identifier: MIT
// What a search has found, and what a level has to itself.
#ifndef PLEXOR_PYTHON_SEARCH_DATA_H
#define PLEXOR_PYTHON_SEARCH_DATA_H

#include "Search.h"

#include "Clique_find/Find_cliques.h"
#include "Coms_funcs/Edge_numbering.h"
#include "Coms_funcs/Percolation.h"
#include "Coms_funcs/Ranked_cliques.h"
#include "graph/Types.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

namespace plexor_access {

struct Search_data {
    Question question;
    std::vector<Number> nodes; ///< node of the search -> node on the way in
    cpm::Link_map selected;    ///< by nodes of the search
    cpm::Index_links links;
    cpm::Found_cliques found;

    // Made with the first level, under the mutex; what a level changes is used under it only.
    std::mutex mutex;
    cpm::Edge_numbering edges;
    std::vector<Number> smaller_ends; ///< by number of edge
    std::vector<bool> reversed;       ///< likewise: only the link from the larger node is there
    std::shared_ptr<cpm::Ranked_cliques const> ranked; ///< none with an intensity
    std::unique_ptr<cpm::Percolation> percolation;     ///< likewise; made with the first level
    bool ready = false;

    cpm::Node N_nodes() const { return static_cast<cpm::Node>(nodes.size()); }
    void Number_links(std::size_t n_nodes);
    void Find(unsigned n_threads, Watcher& watcher);
    void Prepare_levels();
    void Number_edges();
};

struct Level_data {
    std::shared_ptr<Search_data const> search; ///< what links are made of refers to it
    Lists nodes;
    Lists cliques;
    Lists k_cliques;
    std::size_t n_exact = 0;
    std::shared_ptr<cpm::Community_links const> links;

    cpm::Communities Communities() const;
};

} // namespace plexor_access

#endif
