// SPDX-License-Identifier: MIT
#include "Plexor_io/Level_writer.h"

#include "Plexor_io/Kiir_com_graph.h"
#include "Plexor_io/Kiir_coms.h"
#include "Plexor_io/Kiir_stats.h"

#include <string>
#include <vector>

namespace cpm {

void Level_writer::Write(Communities const& coms, Level_files const& files) {
    files.run.console.Put_line(" Writing commmunities to disk...");
    Kiir_coms_PX(coms, context_.labels, files);
    if (!context_.run.intensity) {
        Kiir_coms_cliques_PX(coms, context_.n_exact_cliques, files);
    }
    Kiir_com_links_PX(coms, context_.link_writer, files);
    files.run.console.Put_line(" done.");

    Prepare_community_graph(coms, graph_);
    Kiir_com_graph_PX(graph_, coms.n_exact, files);
    files.run.console.Put_line(" Calculating statistics...");
    Write_statistics(coms, files);
}

void Level_writer::Write_statistics(Communities const& coms, Level_files const& files) {
    struct Part {
        Community_part part;
        std::string suffix;
        Community_distributions distributions{};
    };
    std::vector<Part> parts;
    if (coms.size() <= coms.n_exact) {
        parts = {{Community_part::all, ""}};
    } else {
        parts = {{Community_part::all, "_merged"},
                 {Community_part::exact, "_exact"},
                 {Community_part::approximated, "_appr"}};
    }
    for (Part& one : parts) {
        Community_statistics(one.distributions, graph_, one.part, context_.n_nodes);
    }
    files.run.console.Put_line(" done.");
    for (Part const& one : parts) {
        Kiir_stats_PX(one.distributions, one.suffix, files);
    }
}

} // namespace cpm
