// SPDX-License-Identifier: MIT
#include "Plexor_io/Kiir_cliques.h"

#include "Plexor_io/My_int2string.h"
#include "Plexor_io/Text_file.h"

namespace cpm {

void Kiir_cliques_PX(Set_list const& cliques, std::size_t n_exact, Name_labels const& labels,
                     Run_files& files) {
    // The cliques do not depend on the intensity threshold.
    bool const directed = files.com_flag == "directed";
    Text_file file(files.place.Prepare().File(directed ? "directed_cliques" : "cliques"), files);
    file.Put(directed ? "# The directed cliques" : "# The cliques");
    file.Put(files.alap_szoveg);
    if (n_exact < cliques.size()) {
        file.Put("# Negative indices indicate approximate cliques.\n");
    }
    file.Put('\n');
    for (std::size_t i = 0; i < cliques.size(); ++i) {
        labels.Put_record(i, i >= n_exact, cliques[i], file);
    }
}

void Kiir_k_cliques_PX(K_clique_list const& k_cliques, Name_labels const& labels,
                       Level_files const& files) {
    Text_file file(files.File("k-cliques"), files.run);
    file.Put("# The k-cliques at k=" + int2string(files.k) + files.run.alap_szoveg + '\n');
    for (std::size_t i = 0; i < k_cliques.size(); ++i) {
        labels.Put_record(i, false, k_cliques[i], file);
    }
}

} // namespace cpm
