// SPDX-License-Identifier: MIT
#include "Plexor_io/Kiir_graph.h"

#include "Plexor_io/Text_file.h"

namespace cpm {

void Kiir_graph(Link_map const& links, bool directed, bool weighted, Run_files& files) {
    Text_file file(files.place.Prepare().File(directed ? "directed_graph" : "graph"), files);
    file.Put("# The links");
    file.Put(files.alap_szoveg);
    // Deliberate: undirected runs say so although mutual links are listed. They become one link
    // only when the nodes get their indices.
    file.Put(directed ? "# (self-links were removed)\n\n"
                      : "# (mutual links and self-links were removed)\n\n");
    for (std::size_t i = 0; i < links.links.size(); ++i) {
        Node_pair const& link = links.links[i];
        file.Put(links.names.Spaced(link.first));
        if (weighted) {
            file.Put(links.names.Spaced(link.second));
            file.Put_general(links.Weight(i));
        } else {
            file.Put(links.names[link.second]);
        }
        file.Put('\n');
    }
}

} // namespace cpm
