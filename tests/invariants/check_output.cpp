// SPDX-License-Identifier: MIT
// Judges a finished run by its link file, its files and its standard output: whether everything
// that is reported is right, from the definitions, and as far as it can be told, whether anything
// is missing. It needs no second run: so it can judge runs whose cliques nobody can list.
#include "Check_cliques.h"
#include "Check_communities.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <string>

namespace {

constexpr char const* usage =
    "usage: check_output LINK_FILE DIRECTORY STDOUT\n"
    "  of a run with -i, -o, -D, -U, -t or -k (from 2 on). The exit status is 0 when all is\n"
    "  right, 1 when something is wrong, 2 when the run cannot be read.\n";

int Check(std::string const& links, std::string const& directory, std::string const& report_file) {
    using namespace cpm::invariants;
    Network const network(links, Is_directed_run(directory));
    Search_report const report = Read_report(report_file);
    Results const results = Read_results(directory, network);
    Findings findings;
    if (Check_clique_list(results, network, report, findings)) {
        Check_levels(results, network, report, findings);
    }
    findings.Print(std::cout);
    auto const n_inside_core = std::ranges::count_if(
        results.cliques.begin(),
        results.cliques.begin() +
            static_cast<std::ptrdiff_t>(std::min(report.n_exact, results.cliques.size())),
        [&](Node_record const& clique) {
            return std::ranges::includes(report.core, clique.nodes);
        });
    std::cout << report.n_exact << " exact cliques, " << n_inside_core << " of them in a core of "
              << report.core.size() << " nodes, " << report.n_found - report.n_exact << " dropped; "
              << report.n_approximated << " approximated cliques; " << results.levels.size()
              << " levels; " << findings.Count() << " findings\n";
    return findings.Count() == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << usage;
        return 2;
    }
    try {
        return Check(argv[1], argv[2], argv[3]);
    } catch (std::exception const& e) {
        std::cerr << e.what() << '\n';
        return 2;
    }
}
