// SPDX-License-Identifier: MIT
#include "Plexor_io/Kiir_coms.h"

#include "Plexor_io/My_int2string.h"
#include "Plexor_io/Text_file.h"

namespace cpm {

namespace {

// "# The <what>communities at k=<k>" and the description of the run.
void Put_header(std::string const& what, Level_files const& files, Text_sink& sink) {
    sink.Put("# The " + what + files.run.Flag_before(' ') +
             "communities at k=" + int2string(files.k) + "\n#" + files.run.alap_szoveg);
}

} // namespace

void Kiir_coms_PX(Communities const& coms, Name_labels const& labels, Level_files const& files) {
    Text_file file(files.File(files.run.Flag_before('_') + "communities"), files.run);
    Put_header("", files, file);
    if (coms.n_exact < coms.size()) {
        file.Put("# Negative indices indicate approximate communities.\n");
    }
    file.Put('\n');
    for (std::size_t i = 0; i < coms.size(); ++i) {
        labels.Put_record(i, i >= coms.n_exact, coms.nodes[i], file);
    }
}

void Kiir_coms_cliques_PX(Communities const& coms, std::size_t n_exact_cliques,
                          Level_files const& files) {
    Text_file file(files.File(files.run.Flag_before('_') + "communities_cliques"), files.run);
    Put_header("contained " + files.run.Flag_before(' ') + "cliques in the ", files, file);
    file.Put('\n');
    for (std::size_t i = 0; i < coms.cliques.size(); ++i) {
        bool const approximated = i >= coms.n_exact;
        file.Put_number(i, approximated);
        file.Put(": ");
        for (Clique_number const clique : coms.cliques[i]) {
            file.Put_number(clique, approximated && clique >= n_exact_cliques);
            file.Put(' ');
        }
        file.Put('\n');
    }
}

void Kiir_com_links_PX(Communities const& coms, Link_writer const& lines,
                       Level_files const& files) {
    Text_file file(files.File(files.run.Flag_before('_') + "communities_links"), files.run);
    Put_header("links inside the ", files, file);
    file.Put('\n');
    Links_to_text links(lines, file);
    for (std::size_t i = 0; i < coms.size(); ++i) {
        file.Put_number(i, i >= coms.n_exact);
        file.Put(":\n");
        coms.Visit_links(i, links);
    }
}

} // namespace cpm
