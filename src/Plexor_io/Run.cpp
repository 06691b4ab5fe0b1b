// SPDX-License-Identifier: MIT
#include "Plexor_io/Run.h"

#include "Clique_find/Appr_core_cliques.h"
#include "Plexor_io/Find_coms.h"
#include "Plexor_io/Header_text.h"
#include "Plexor_io/Kiir_cliques.h"
#include "Plexor_io/Kiir_graph.h"
#include "Plexor_io/Name_labels.h"
#include "Plexor_io/Out_dir.h"
#include "Plexor_io/Result_files.h"
#include "Plexor_io/Usage.h"
#include "graph/Convert_links.h"
#include "parallel/Parallel_finder.h"
#include "parallel/Thread_count.h"

#include <malloc.h>
#include <new>
#include <optional>
#include <utility>

namespace cpm {

namespace {

// The network of a run by node indices.
struct Indexed_network {
    Index_links links;
    Names_map names;
    Node N_nodes() const { return static_cast<Node>(names.size() - 1); } // index 0 is no node
};

// The graph file is written on the way.
Indexed_network Convert(Link_map links, Run_settings const& run, Run_files& files) {
    Console& console = files.console;
    Kiir_graph(links, run.directed, run.weighted, files);
    console.Put_line("_______________");
    console.Put_line(" Links read OK.");
    console.Put_line("____________________");
    console.Put_line(" Converting links...");
    Indexed_network network;
    Convert_s_links(network.links, network.names, links, run.directed);
    console.Put(" Links converted OK, total number of ");
    console.Put_number(network.links.size());
    console.Put_line(" will be\n taken into account in the community finding.");
    return network;
}

Found_cliques Search(Index_links const& links, Run_settings const& run, Clock& clock,
                     Progress& progress, Console& console) {
    console.Put_line("__________________________________");
    console.Put_line(" Preparing graph from the links...");
    std::optional<double> const limit =
        run.time_limit_set ? std::optional<double>(run.time_limit) : std::nullopt;
    Graph const graph(links, run.directed);
    console.Put_line(" Graph created from the links OK.");
    Found_cliques found;
    Find_cliques(found, graph, limit, clock, Thread_count(run.n_threads), progress);
    return found;
}

// Hands on which files could not be written, however the run ends.
class Failures_kept {
public:
    Failures_kept(Run_files& files, Run_outcome& outcome) : files_(files), outcome_(outcome) {}
    Failures_kept(Failures_kept const&) = delete;
    Failures_kept& operator=(Failures_kept const&) = delete;
    ~Failures_kept() { outcome_.not_written = std::move(files_.not_written); }

private:
    Run_files& files_;
    Run_outcome& outcome_;
};

// All that comes after the command line.
void Run_from_links(Run_settings& run, Input_request const& request, Link_source const& source,
                    Clock& clock, Progress& progress, Console& console,
                    Community_stage const& communities, Run_outcome& outcome) {
    Link_map named_links;
    Get_links(run, request, source, named_links);
    Extend_alap_szoveg(run.header_text, run);
    Result_place place = Check_out_dir(run.out_dir);
    Run_files files{place, run.com_flag, run.header_text, console};
    Failures_kept const kept(files, outcome);
    Kiir_params(files);
    Indexed_network network = Convert(std::move(named_links), run, files);
    Node const n_nodes = network.N_nodes();
    Name_labels const labels(std::move(network.names));
    ::malloc_trim(0); // what reading needed goes back before the lists of the search grow beside it
    Found_cliques found = Search(network.links, run, clock, progress, console);
    console.Put_line("___________________________");
    console.Put_line(" Writing cliques to disk...");
    Kiir_cliques_PX(found.cliques, found.n_exact, labels, files);
    console.Put_line(" done.");
    std::uint32_t const largest = Max_clique_size_in_cl_vec(found.cliques);
    communities({std::move(found), std::move(network.links), labels, n_nodes, largest, run}, files,
                progress);
    Print_banner(console);
}

// What to try depends on what has been tried. Nothing here needs memory.
void Put_out_of_memory(Run_settings const& run, Console& console) {
    console.Put("ERROR: not enough memory for this network. Try ");
    console.Put(run.weighted ? "stricter weight thresholds" : "a weight threshold");
    console.Put(" (-w, -W)");
    console.Put(run.time_limit_set ? "" : ", a time limit for the clique search (-t),");
    console.Put_line(" or a machine with more memory.");
}

// Does the stages and turns what ends them into the outcome, in one place.
template <class Stages>
Run_outcome Outcome_of(Run_settings const& settings, Console& console, Stages const& stages) {
    using Kind = Run_outcome::Kind;
    Run_outcome outcome;
    auto const end = [&](Kind kind, std::exception const& error) {
        outcome.kind = kind;
        console.Put_line(error.what());
        outcome.text = error.what();
    };
    try {
        stages(outcome);
    } catch (Usage_shown const& shown) {
        end(shown.Asked_for() ? Kind::help : Kind::refused, shown);
    } catch (std::bad_alloc const&) {
        outcome.kind = Kind::out_of_memory;
        Put_out_of_memory(settings, console);
    } catch (std::exception const& error) {
        end(Kind::failed, error);
    } catch (Cancelled const&) {
        outcome.kind = Kind::cancelled;
    }
    return outcome;
}

void Begin(Console& console) {
    Print_banner(console);
    console.Put_line(" Reading input ...");
    console.Flush();
}

} // namespace

void Find_communities(Coms_input input, Run_files& files, Progress& progress) {
    Run_settings const& run = input.run;
    Coms_finder finder(std::move(input), files, progress);
    if (run.k_given) {
        finder.Find_coms(run.k);
    } else {
        finder.Find_all(Thread_count(run.n_threads));
    }
}

Run_outcome Run(Run_settings const& settings, Input_request const& request,
                Link_source const& source, Progress& progress, Console& console,
                Community_stage const& communities) {
    Run_settings run = settings;
    return Outcome_of(run, console, [&](Run_outcome& outcome) {
        Begin(console);
        Processor_clock clock;
        Run_from_links(run, request, source, clock, progress, console, communities, outcome);
    });
}

Run_outcome Run_command_line(int argc, char const* const* argv, Clock& clock, Progress& progress,
                             Console& console, unsigned n_threads) {
    Run_settings run;
    run.n_threads = n_threads;
    return Outcome_of(run, console, [&](Run_outcome& outcome) {
        Begin(console);
        Input_request request;
        Take_command_line(argc, argv, run, request, console);
        Run_from_links(run, request, Links_of_file(request), clock, progress, console,
                       Find_communities, outcome);
    });
}

} // namespace cpm
