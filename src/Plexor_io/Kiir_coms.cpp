// SPDX-License-Identifier: MIT
#include "Plexor_io/Kiir_coms.h"

#include "Plexor_io/My_int2string.h"
#include "Plexor_io/Result_place.h"
#include "Plexor_io/Text_file.h"

namespace cpm {

namespace {

New_file Prepared_file(Result_place& place, std::uint32_t k, std::string const& com_flag,
                       std::string const& name) {
    return place.Prepare(k).File(Word_before(com_flag, '_') + name);
}

// "# The <what>communities at k=<k>" and the description of the run.
void Put_header(std::string const& what, std::uint32_t k, std::string const& com_flag,
                std::string const& alap_szoveg, Text_sink& sink) {
    sink.Put("# The " + what + Word_before(com_flag, ' ') + "communities at k=" + int2string(k) +
             "\n#" + alap_szoveg);
}

} // namespace

void Kiir_coms_PX(Communities const& coms, Result_place& place, std::uint32_t k,
                  Name_labels const& labels, std::string const& com_flag,
                  std::string const& alap_szoveg, Console& console) {
    Text_file file(Prepared_file(place, k, com_flag, "communities"), console);
    Put_header("", k, com_flag, alap_szoveg, file);
    if (coms.n_exact < coms.size()) {
        file.Put("# Negative indices indicate approximate communities.\n");
    }
    file.Put('\n');
    for (std::size_t i = 0; i < coms.size(); ++i) {
        labels.Put_record(i, i >= coms.n_exact, coms.nodes[i], file);
    }
}

void Kiir_coms_cliques_PX(Communities const& coms, Result_place& place, std::uint32_t k,
                          std::size_t n_exact_cliques, std::string const& com_flag,
                          std::string const& alap_szoveg, Console& console) {
    Text_file file(Prepared_file(place, k, com_flag, "communities_cliques"), console);
    Put_header("contained " + Word_before(com_flag, ' ') + "cliques in the ", k, com_flag,
               alap_szoveg, file);
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

void Kiir_com_links_PX(Communities const& coms, Result_place& place, std::uint32_t k,
                       Link_lines& lines, std::string const& com_flag,
                       std::string const& alap_szoveg, Console& console) {
    Text_file file(Prepared_file(place, k, com_flag, "communities_links"), console);
    Put_header("links inside the ", k, com_flag, alap_szoveg, file);
    file.Put('\n');
    Take_links const put_lines{
        .numbers = [&](std::span<Link_number const> numbers) { lines.Put(numbers, file); },
        .all_pairs = [&](Node_set nodes) { lines.Put_all_pairs(nodes, file); }};
    for (std::size_t i = 0; i < coms.size(); ++i) {
        file.Put_number(i, i >= coms.n_exact);
        file.Put(":\n");
        coms.links(i, put_lines);
    }
}

} // namespace cpm
