// SPDX-License-Identifier: MIT
// The run, top to bottom. Every error ends up in the one handler here; the exit status is always 0.
#include "Clique_find/Appr_core_cliques.h"
#include "Find_cliques.h"
#include "Find_coms.h"
#include "Plexor_io/Console_progress.h"
#include "Plexor_io/Convert_links.h"
#include "Plexor_io/Header_text.h"
#include "Plexor_io/Kiir_cliques.h"
#include "Plexor_io/Kiir_graph.h"
#include "Plexor_io/Name_labels.h"
#include "Plexor_io/Out_dir.h"
#include "Plexor_io/Process_input.h"
#include "Plexor_io/Usage.h"
#include "support/Console.h"
#include "support/Errors.h"
#include "support/Large_pages.h"

#include <csignal>
#include <exception>
#include <fcntl.h>
#include <malloc.h>
#include <optional>
#include <unistd.h>
#include <utility>

namespace {

using namespace cpm;

// From the command line to the links by node index; the first files are written on the way.
void Read(int argc, char** argv, Run_settings& run, Index_links& links, Names_map& names,
          Console& console) {
    console.Put_line(" Reading input ...");
    console.Flush();
    Link_map named_links;
    Process_input(argc, argv, run, named_links, console);
    Extend_alap_szoveg(run.header_text, run);
    Check_out_dir(run.out_dir);
    Kiir_params(run.out_dir, run.header_text, console);
    Kiir_graph(named_links, run.out_dir, run.directed, run.header_text, run.weighted, console);
    console.Put_line("_______________");
    console.Put_line(" Links read OK.");
    console.Put_line("____________________");
    console.Put_line(" Converting links...");
    Convert_s_links(links, names, named_links, run.directed);
    console.Put(" Links converted OK, total number of ");
    console.Put_number(links.size());
    console.Put_line(" will be\n taken into account in the community finding.");
}

void Build_graph(Graph& graph, Index_links const& links, Run_settings const& run,
                 Console& console) {
    console.Put_line("__________________________________");
    console.Put_line(" Preparing graph from the links...");
    graph.directed = run.directed;
    if (run.directed) {
        Dir_vtx_map_from_link_map(graph.dir_vertices, links);
    } else if (run.time_limit_set) {
        Vtx_map_from_link_map(graph.vertices, links);
    } else {
        graph.links = &links;
    }
    console.Put_line(" Graph created from the links OK.");
}

void Find_all_coms(Run_settings const& run, Found_cliques const& found, Index_links links,
                   Name_labels const& labels, Node n_nodes, Console& console) {
    std::uint32_t const largest = Max_clique_size_in_cl_vec(found.cliques);
    Coms_finder finder({found, std::move(links), labels, n_nodes, largest, run}, console);
    if (run.k_given) {
        finder.Find_coms(run.k);
        return;
    }
    for (std::uint32_t k = largest; k > 2; --k) {
        finder.Find_coms(k);
    }
}

void Run(int argc, char** argv, Console& console) {
    Print_banner(console);
    Run_settings run;
    Index_links links;
    Names_map names;
    Read(argc, argv, run, links, names, console);
    auto const n_nodes = static_cast<Node>(names.size() - 1); // index 0 is no node
    Name_labels const labels(std::move(names));
    ::malloc_trim(0); // what reading needed goes back before the lists of the search grow beside it
    Found_cliques found;
    {
        Graph graph;
        Build_graph(graph, links, run, console);
        Processor_clock clock;
        Console_progress progress(console);
        Find_cliques(found, graph,
                     run.time_limit_set ? std::optional<double>(run.time_limit) : std::nullopt,
                     clock, progress);
    }
    console.Put_line("___________________________");
    console.Put_line(" Writing cliques to disk...");
    Kiir_cliques_PX(run.out_dir, found.cliques, labels, found.n_exact, run.com_flag,
                    run.header_text, console);
    console.Put_line(" done.");
    Find_all_coms(run, found, std::move(links), labels, n_nodes, console);
    Print_banner(console);
}

// A run may be started with standard streams closed. The next file opened would take their place
// and get what is meant for them.
void Fill_standard_streams() {
    int descriptor = 0;
    do {
        descriptor = ::open("/dev/null", O_RDWR);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

// They come and go with the stages, and grow where they are. In the heap, where the C library puts
// more and more of them as it sees them go, each would leave a hole and be copied to grow.
void Give_large_arrays_pages_of_their_own() {
    constexpr auto large = static_cast<int>(large_page);
    ::mallopt(M_MMAP_THRESHOLD, large);
    ::mallopt(M_TRIM_THRESHOLD, large); // setting one ends the automatic rise of the other
}

} // namespace

int main(int argc, char** argv) {
    // A reader of the reports that goes away must not end the run, and a file that may not grow is
    // reported like a full disk.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    Fill_standard_streams();
    cpm::Out_of_memory::Install();
    Give_large_arrays_pages_of_their_own();
    cpm::Console console(STDOUT_FILENO);
    try {
        Run(argc, argv, console);
    } catch (std::exception const& error) {
        console.Put_line(error.what());
    }
    return 0;
}
