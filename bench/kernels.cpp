// SPDX-License-Identifier: MIT
// What each stage of a run costs by itself, on networks made here. Every benchmark counts the work
// it has done beside the time: a change of a counter is a change of the result.
#include "Clique_find/Clique_find.h"
#include "Coms_funcs/Adjacent_cliques.h"
#include "Coms_funcs/Community_graph.h"
#include "Coms_funcs/Edge_numbering.h"
#include "Coms_funcs/Percolation.h"
#include "Networks.h"
#include "Plexor_io/Console.h"
#include "Plexor_io/Console_progress.h"
#include "Plexor_io/Kiir_cliques.h"
#include "Plexor_io/Kiir_com_graph.h"
#include "Plexor_io/Kiir_coms.h"
#include "Plexor_io/Link_writer.h"
#include "Plexor_io/Read_links.h"
#include "Plexor_io/Result_place.h"
#include "graph/Convert_links.h"
#include "graph/Types.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace cpm;

// Progress reports go where nobody waits for them.
class Silent_console {
public:
    Silent_console() : descriptor_(::open("/dev/null", O_WRONLY)), console_(descriptor_) {}
    ~Silent_console() {
        console_.Flush();
        ::close(descriptor_);
    }
    Silent_console(Silent_console const&) = delete;
    Silent_console& operator=(Silent_console const&) = delete;
    Console& Get() { return console_; }
    Progress& Told() { return progress_; }

private:
    int descriptor_;
    Console console_;
    Console_progress progress_{console_};
};

// A directory of its own, gone with the object.
class Scratch {
public:
    Scratch() {
        std::string path = (std::filesystem::temp_directory_path() / "kernels-XXXXXX").string();
        if (::mkdtemp(path.data()) == nullptr) {
            throw std::runtime_error("cannot make a directory for the benchmarks");
        }
        path_ = path;
    }
    ~Scratch() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Scratch(Scratch const&) = delete;
    Scratch& operator=(Scratch const&) = delete;
    std::string File(std::string const& name) const { return (path_ / name).string(); }
    std::string Path() const { return path_.string(); }

private:
    std::filesystem::path path_;
};

enum class Kind : std::int64_t { papers, hub, chain, dense };

char const* Name(Kind kind) {
    switch (kind) {
    case Kind::papers:
        return "papers, 200,000 links";
    case Kind::hub:
        return "hub, 20,000 links";
    case Kind::chain:
        return "chain, 100,000 cliques";
    case Kind::dense:
        return "dense groups, 20,000 links";
    }
    return "";
}

bench::Network Make(Kind kind) {
    constexpr std::uint64_t seed = 7;
    switch (kind) {
    case Kind::papers:
        return bench::Papers(200000, seed);
    case Kind::hub:
        return bench::Hub(20000);
    case Kind::chain:
        return bench::Chain(100000);
    case Kind::dense:
        return bench::Dense_groups(2000, 20000, seed);
    }
    return {};
}

// A network after each stage up to the cliques.
struct Prepared {
    explicit Prepared(Kind kind) {
        bench::Write_network(Make(kind), scratch.File("links"));
        Read_unw_links(scratch.File("links"), named);
        Convert_s_links(links, names, named, false);
        Clique_find(found.cliques, Graph(links), silent.Told());
        Set_list const& cliques = found.cliques;
        found.n_exact = cliques.size();
        for (std::size_t c = 0; c < cliques.size(); ++c) {
            largest = std::max(largest, static_cast<std::uint32_t>(cliques[c].size()));
        }
        n_nodes = static_cast<Node>(names.size() - 1);
        edges = Edge_numbering(links, n_nodes, cliques, cliques.size());
        labels.emplace(names);
    }

    Scratch scratch;
    Silent_console silent;
    Link_map named;
    Index_links links;
    Names_map names;
    std::optional<Name_labels> labels;
    Found_cliques found;
    Edge_numbering edges;
    std::uint32_t largest = 0;
    Node n_nodes = 0;
};

// Made when first asked for, and kept for the benchmarks that follow.
Prepared& Network_of(benchmark::State& state) {
    static std::map<Kind, std::unique_ptr<Prepared>> prepared;
    Kind const kind{state.range(0)};
    std::unique_ptr<Prepared>& one = prepared[kind];
    if (!one) {
        one = std::make_unique<Prepared>(kind);
    }
    state.SetLabel(Name(kind));
    return *one;
}

benchmark::Counter Count(std::size_t n) {
    return {static_cast<double>(n)};
}

void Reading(benchmark::State& state) {
    Prepared& network = Network_of(state);
    std::string const path = network.scratch.File("links");
    std::size_t n_links = 0;
    for (auto _ : state) {
        Link_map links;
        Read_unw_links(path, links);
        n_links = links.links.size();
    }
    state.counters["links"] = Count(n_links);
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(std::filesystem::file_size(path)));
}

void Converting_links(benchmark::State& state) {
    Prepared& network = Network_of(state);
    for (auto _ : state) {
        Index_links links;
        Names_map names;
        Convert_s_links(links, names, network.named, false);
        benchmark::DoNotOptimize(links.pairs.data());
    }
    state.counters["links"] = Count(network.links.size());
}

void Clique_search(benchmark::State& state) {
    Prepared& network = Network_of(state);
    Set_list cliques;
    for (auto _ : state) {
        cliques.clear();
        Clique_find(cliques, Graph(network.links), network.silent.Told());
    }
    state.counters["cliques"] = Count(cliques.size());
    state.counters["members"] = Count(cliques.Total());
}

// The index alone: set up, and every clique listed as at the lowest level.
void Setting_up_adjacent_cliques(benchmark::State& state) {
    Prepared& network = Network_of(state);
    for (auto _ : state) {
        Ranked_cliques const ranked(network.found.cliques, network.n_nodes);
        Adjacent_cliques index(ranked);
        index.Start_level(2, 3);
        benchmark::DoNotOptimize(index.Is_visited(0));
    }
    state.counters["members"] = Count(network.found.cliques.Total());
}

// Every clique asked once for its unvisited adjacent at k = 4, in the order of their numbers.
void Visiting_adjacent_cliques(benchmark::State& state) {
    Prepared& network = Network_of(state);
    Ranked_cliques const ranked(network.found.cliques, network.n_nodes);
    Adjacent_cliques index(ranked);
    Flat_array<Adjacent_clique> adjacent;
    for (auto _ : state) {
        index.Start_level(3, 4);
        adjacent.clear();
        for (std::size_t c = 0; c < network.found.cliques.size(); ++c) {
            if (network.found.cliques[c].size() >= 4) {
                index.Visit_adjacent({static_cast<Clique_number>(c), all_new}, adjacent);
            }
        }
    }
    state.counters["visited"] = Count(adjacent.size());
}

void Percolating_all_k(benchmark::State& state) {
    Prepared& network = Network_of(state);
    std::size_t n_communities = 0;
    Communities coms;
    for (auto _ : state) {
        Percolation percolation(
            network.found, std::make_shared<Ranked_cliques>(network.found.cliques, network.n_nodes),
            network.edges);
        n_communities = 0;
        for (std::uint32_t k = network.largest; k > 2; --k) {
            percolation.Coms_from_appr_ovlp_matr(coms, k);
            n_communities += coms.size();
        }
    }
    state.counters["communities"] = Count(n_communities);
}

// The communities at k = 3 with everything that writing them needs.
struct Lowest_level {
    explicit Lowest_level(Prepared& network)
        : percolation(network.found,
                      std::make_shared<Ranked_cliques>(network.found.cliques, network.n_nodes),
                      network.edges),
          lines(network.edges, network.links, *network.labels) {
        percolation.Coms_from_appr_ovlp_matr(coms, 3);
    }
    Percolation percolation;
    Link_writer lines;
    Communities coms;
};

// With the text of their lines, which is thrown away.
void Links_of_communities(benchmark::State& state) {
    Prepared& network = Network_of(state);
    Lowest_level level(network);
    Text text;
    Links_to_text lines(level.lines, text);
    std::int64_t bytes = 0;
    for (auto _ : state) {
        for (std::size_t i = 0; i < level.coms.size(); ++i) {
            text.Clear();
            level.coms.Visit_links(i, lines);
            benchmark::DoNotOptimize(text.View().data());
            bytes += static_cast<std::int64_t>(text.View().size());
        }
    }
    state.SetBytesProcessed(bytes);
}

void Walking_the_community_graph(benchmark::State& state) {
    Prepared& network = Network_of(state);
    Lowest_level const level(network);
    Community_distributions distributions;
    Community_graph graph;
    for (auto _ : state) {
        Prepare_community_graph(level.coms, graph);
        distributions = {};
        Community_statistics(distributions, graph, Community_part::all, network.n_nodes);
    }
    state.counters["degrees"] = Count(distributions.degree.size());
}

// The bytes of all files below the directory.
std::int64_t Bytes_below(std::string const& directory) {
    std::uintmax_t bytes = 0;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(directory)) {
        bytes += entry.is_regular_file() ? entry.file_size() : 0;
    }
    return static_cast<std::int64_t>(bytes);
}

// An empty place for results, of which nothing is timed.
Result_place Emptied(std::string const& directory, benchmark::State& state) {
    state.PauseTiming();
    std::filesystem::remove_all(directory);
    Result_place place(directory);
    state.ResumeTiming();
    return place;
}

void Writing_cliques(benchmark::State& state) {
    Prepared& network = Network_of(state);
    Scratch const out;
    for (auto _ : state) {
        Result_place place = Emptied(out.Path(), state);
        Run_files files{place, "", "", network.silent.Get()};
        Kiir_cliques_PX(network.found.cliques, network.found.cliques.size(), *network.labels,
                        files);
    }
    state.SetBytesProcessed(state.iterations() * Bytes_below(out.Path()));
}

void Writing_communities(benchmark::State& state) {
    Prepared& network = Network_of(state);
    Lowest_level level(network);
    Scratch const out;
    Console& console = network.silent.Get();
    for (auto _ : state) {
        Result_place place = Emptied(out.Path(), state);
        Run_files files{place, "", "", console};
        Kiir_coms_PX(level.coms, *network.labels, {files, 3});
        Kiir_coms_cliques_PX(level.coms, network.found.cliques.size(), {files, 3});
        Kiir_com_links_PX(level.coms, level.lines, {files, 3});
    }
    state.SetBytesProcessed(state.iterations() * Bytes_below(out.Path()));
}

void Writing_the_community_graph(benchmark::State& state) {
    Prepared& network = Network_of(state);
    Lowest_level const level(network);
    Scratch const out;
    Community_graph graph;
    for (auto _ : state) {
        Result_place place = Emptied(out.Path(), state);
        Prepare_community_graph(level.coms, graph);
        Run_files files{place, "", "", network.silent.Get()};
        Kiir_com_graph_PX(graph, level.coms.n_exact, {files, 3});
    }
    state.SetBytesProcessed(state.iterations() * Bytes_below(out.Path()));
}

void Every_network(benchmark::internal::Benchmark* one) {
    one->ArgName("network")->Unit(benchmark::kMillisecond);
    for (Kind const kind : {Kind::papers, Kind::hub, Kind::chain, Kind::dense}) {
        one->Arg(static_cast<std::int64_t>(kind));
    }
}

BENCHMARK(Reading)->Apply(Every_network);
BENCHMARK(Converting_links)->Apply(Every_network);
BENCHMARK(Clique_search)->Apply(Every_network);
BENCHMARK(Setting_up_adjacent_cliques)->Apply(Every_network);
BENCHMARK(Visiting_adjacent_cliques)->Apply(Every_network);
BENCHMARK(Percolating_all_k)->Apply(Every_network);
BENCHMARK(Links_of_communities)->Apply(Every_network);
BENCHMARK(Walking_the_community_graph)->Apply(Every_network);
BENCHMARK(Writing_cliques)->Apply(Every_network);
BENCHMARK(Writing_communities)->Apply(Every_network);
BENCHMARK(Writing_the_community_graph)->Apply(Every_network);

} // namespace
