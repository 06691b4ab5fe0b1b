// SPDX-License-Identifier: MIT
#include "Plexor_io/Kiir_cliques.h"

#include "Plexor_io/My_int2string.h"
#include "Plexor_io/Result_place.h"
#include "Plexor_io/Text_file.h"

namespace cpm {

void Kiir_cliques_PX(Result_place& place, Set_list const& cliques, Name_labels const& labels,
                     std::size_t n_exact, std::string const& com_flag,
                     std::string const& alap_szoveg, Console& console) {
    // The cliques do not depend on the intensity threshold.
    std::string const kind = com_flag == "intensity" ? "" : com_flag;
    Text_file file(place.Prepare().File(Word_before(kind, '_') + "cliques"), console);
    file.Put("# The " + Word_before(kind, ' ') + "cliques" + alap_szoveg);
    if (n_exact < cliques.size()) {
        file.Put("# Negative indices indicate approximate cliques.\n");
    }
    file.Put('\n');
    for (std::size_t i = 0; i < cliques.size(); ++i) {
        labels.Put_record(i, i >= n_exact, cliques[i], file);
    }
}

void Kiir_k_cliques_PX(Result_place& place, K_clique_list const& k_cliques, std::uint32_t k,
                       Name_labels const& labels, std::string const& alap_szoveg,
                       Console& console) {
    Text_file file(place.Prepare(k).File("k-cliques"), console);
    file.Put("# The k-cliques at k=" + int2string(k) + alap_szoveg + '\n');
    for (std::size_t i = 0; i < k_cliques.size(); ++i) {
        labels.Put_record(i, false, k_cliques[i], file);
    }
}

} // namespace cpm
