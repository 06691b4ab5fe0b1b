// SPDX-License-Identifier: MIT
// Level_writer: all files of one k that follow from its communities.
#ifndef PLEXOR_LEVEL_WRITER_H
#define PLEXOR_LEVEL_WRITER_H

#include "Coms_funcs/Community_graph.h"
#include "Plexor_io/Link_writer.h"
#include "Plexor_io/Name_labels.h"
#include "Plexor_io/Result_files.h"
#include "Plexor_io/Run_settings.h"
#include "graph/Types.h"

#include <cstddef>

namespace cpm {

/// What the files of every k need besides its communities. What is referred to must outlive it.
struct Level_context {
    Run_settings const& run;
    Name_labels const& labels;
    Link_writer const& link_writer;
    std::size_t n_exact_cliques;
    Node n_nodes;
};

/// One object writes one k after the other, with the memory that it has by then.
class Level_writer {
public:
    explicit Level_writer(Level_context const& context) : context_(context) {}

    /// Writes the files and says so on their console. Throws what preparing the directory throws.
    void Write(Communities const& coms, Level_files const& files);

private:
    void Write_statistics(Communities const& coms, Level_files const& files);

    Level_context context_;
    Community_graph graph_; ///< of the k under way
};

} // namespace cpm

#endif
