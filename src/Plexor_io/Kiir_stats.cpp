// SPDX-License-Identifier: MIT
#include "Plexor_io/Kiir_stats.h"

#include "Plexor_io/My_int2string.h"
#include "Plexor_io/Text_file.h"

namespace cpm {

void Kiir_stats_PX(Community_distributions const& distributions, std::string const& suffix,
                   Level_files const& files) {
    // Deliberate: the suffixes of a run begin with "_", so none of them gets the ".", and the blank
    // before "communities" follows even an empty one.
    std::string const whose = suffix + (suffix == "appr" ? "." : "") + files.run.Flag_before(' ') +
                              " communities at k=" + int2string(files.k) + "\n#" +
                              files.run.alap_szoveg;
    auto const write = [&](std::string const& name, Distribution const& distribution,
                           std::string const& what) {
        Kiir_PX_dist(files.File(files.run.Flag_before('_') + name + suffix), distribution,
                     what + whose, files.run);
    };
    write("membership_distribution", distributions.membership,
          "# The node membership distr. in the ");
    write("size_distribution", distributions.size, "# The size distr. of the ");
    write("overlap_distribution", distributions.overlap, "# The overlap size distr. of the ");
    write("degree_distribution", distributions.degree, "# The com. degree distr. of the ");
}

void Kiir_PX_dist(New_file const& new_file, Distribution const& distribution,
                  std::string const& header, Run_files& files) {
    Text_file file(new_file, files);
    file.Put(header);
    file.Put('\n');
    for (Value_count const& entry : distribution) {
        file.Put_number(entry.value);
        file.Put(' ');
        file.Put_number(entry.count);
        file.Put('\n');
    }
    file.Put('\n');
}

} // namespace cpm
