// SPDX-License-Identifier: MIT
#include "Plain_model.h"

#include "Plain_communities.h"
#include "Plain_disk.h"
#include "Plain_input.h"
#include "Plain_text.h"

#include <exception>
#include <sstream>

namespace cpm::model {

namespace {

/// A position with the sign that marks what is approximated.
std::string Signed(unsigned position, bool exact) {
    return (exact ? "" : "-") + std::to_string(position);
}

struct Run {
    std::string const& banner;
    Clock clock;
    Reached& reached;
    std::ostringstream out = {};

    Job job = {};
    std::string flag = {}; // the word that tells the kinds of run apart and a blank, or nothing
    std::string file_flag = {}; // the same with "_" for the blank
    std::map<unsigned, std::string> names = {};
    Index_links links = {};
    Found_cliques found = {};

    // --- The course of a run. ---

    void Go(std::vector<std::string> const& args) {
        out << banner << " Reading input ...\n";
        Links named_links;
        job = Process_input(args, banner, named_links, out);
        flag = job.intensity ? "intensity " : job.directed ? "directed " : "";
        file_flag = job.intensity ? "intensity_" : job.directed ? "directed_" : "";
        Refuse_non_empty(job.directory);
        Write(job.directory, "input_params.txt", "# Plexor was run on links taken" + job.header);
        Write_graph(named_links);
        out << Underlined(" Links read OK.") << Underlined(" Converting links...");
        Convert(named_links);
        out << " Links converted OK, total number of " << links.size() << " will be\n"
            << " taken into account in the community finding.\n"
            << Underlined(" Preparing graph from the links...");
        Graph const graph = Make_graph(links, job.directed);
        out << " Graph created from the links OK.\n";
        found = Find_cliques(graph, job.limit, clock, out, reached);
        out << Underlined(" Writing cliques to disk...");
        Write_result(job.directory, job.directed ? "directed_cliques" : "cliques",
                     job.directed ? "The directed cliques" : "The cliques",
                     Note(found.cliques.size(), found.n_exact, "cliques"),
                     Numbered(found.cliques, found.n_exact));
        out << " done.\n";
        unsigned largest = 0;
        for (auto const& clique : found.cliques) {
            largest = std::max(largest, Size(clique));
        }
        if (job.k) {
            Find_communities(*job.k, largest);
        }
        for (unsigned k = largest; k > 2 && !job.k; --k) {
            Find_communities(k, largest);
        }
        out << banner;
    }

    /// Gives the nodes indices from 1 in the order in which their names turn up.
    void Convert(Links const& named_links) {
        std::map<std::string, unsigned> indices;
        auto const index_of = [&](std::string const& name) {
            unsigned const index = indices.insert({name, Size(indices) + 1}).first->second;
            names[index] = name;
            return index;
        };
        for (auto const& [ends, weight] : named_links) {
            unsigned const source = index_of(ends.first);
            unsigned const target = index_of(ends.second);
            bool const swap = !job.directed && target < source;
            links[swap ? Pair{target, source} : Pair{source, target}] += weight;
        }
    }

    void Find_communities(unsigned k, unsigned largest) {
        std::string const at_k = "at k=" + std::to_string(k);
        std::vector<Community> communities;
        if (job.intensity) {
            auto const k_cliques = Find_k_cliques(found.cliques, links, k, *job.intensity, out);
            out << Underlined(" Writing k-clques to disk.");
            Write_result(Directory(k), "k-cliques", "The k-cliques " + at_k, "",
                         Numbered({k_cliques.begin(), k_cliques.end()}, Size(k_cliques)));
            communities = Percolate_k_cliques(k_cliques, links, k, *job.intensity, out);
        } else {
            // Deliberate: both differences wrap as unsigned numbers.
            double const percent = 100.0 * ((largest - k) + 0.5) / (largest - 2);
            std::string const line = " Extracting communities " + at_k + " (completed ";
            // Deliberate: the underscores have room for a percentage of two digits.
            out << std::string(line.size() + 7, '_') << "\n" << line << Fixed(percent, 2) << "%)\n";
            communities = Percolate(found, k, reached);
            out << " done.\n";
        }
        out << " Writing commmunities to disk...\n";
        std::vector<Nodes> all;
        for (auto const& community : communities) {
            all.push_back(community.nodes);
        }
        auto const exact = std::count_if(communities.begin(), communities.end(),
                                         [](Community const& c) { return c.exact; });
        Write_communities(k, communities, all, static_cast<unsigned>(exact));
        out << " done.\n";
        if (all.begin() + exact == all.end()) {
            Write_statistics(k, "", all);
        } else {
            reached.insert("approximated communities");
            Write_statistics(k, "_merged", all);
            Write_statistics(k, "_exact", {all.begin(), all.begin() + exact});
            Write_statistics(k, "_appr", {all.begin() + exact, all.end()});
        }
    }

    // --- The result files. ---

    std::string Directory(unsigned k) const { return job.directory + "/k=" + std::to_string(k); }

    void Write(std::string const& directory, std::string const& name, std::string const& text) {
        Prepare_dir(directory);
        std::string const path = directory + "/" + name;
        if (!Write_new(path, text)) {
            out << " WARNING: could not write '" << path << "'.\n";
        }
    }

    /// The title and the note stand before and after what all headers say.
    void Write_result(std::string const& directory, std::string const& name,
                      std::string const& title, std::string const& note, std::string const& body) {
        Write(directory, name, "# " + title + job.header + note + "\n" + body);
    }

    void Write_graph(Links const& named_links) {
        std::ostringstream body;
        for (auto const& [ends, weight] : named_links) {
            body << ends.first << " " << ends.second;
            if (job.Weighted()) {
                body << " " << weight;
            }
            body << "\n";
        }
        Write_result(job.directory, job.directed ? "directed_graph" : "graph", "The links",
                     job.directed ? "# (self-links were removed)\n"
                                  : "# (mutual links and self-links were removed)\n",
                     body.str());
    }

    /// A line for each set. Every name, the last one included, is followed by a blank.
    std::string Numbered(std::vector<Nodes> const& sets, unsigned n_exact) const {
        std::string text;
        for (unsigned i = 0; i < sets.size(); ++i) {
            text += Signed(i, i < n_exact) + ": ";
            for (unsigned node : sets[i]) {
                text += names.at(node) + " ";
            }
            text += "\n";
        }
        return text;
    }

    std::string Note(std::size_t n, unsigned n_exact, std::string const& what) const {
        return n == n_exact ? "" : "# Negative indices indicate approximate " + what + ".\n";
    }

    void Write_communities(unsigned k, std::vector<Community> const& communities,
                           std::vector<Nodes> const& all, unsigned n_exact) {
        std::string cliques;
        std::string inner_links;
        std::string graph;
        Rows overlaps;
        Extend_rows(overlaps, all, 0);
        for (unsigned i = 0; i < all.size(); ++i) {
            cliques += Signed(i, i < n_exact) + ": ";
            for (unsigned clique : communities[i].cliques) {
                cliques += Signed(clique, clique < found.n_exact) + " ";
            }
            cliques += "\n";
            inner_links += Signed(i, i < n_exact) + ":\n";
            for (auto [a, b] : communities[i].links) {
                if (!links.contains({a, b})) { // a directed link may go the other way
                    std::swap(a, b);
                }
                inner_links += names.at(a) + " " + names.at(b) + "\n";
            }
            for (auto const& [j, shared] : overlaps[i]) {
                if (j > i) {
                    graph += Signed(i, i < n_exact) + " " + Signed(j, j < n_exact) + " " +
                             std::to_string(shared) + "\n";
                }
            }
        }
        std::string const communities_at_k = flag + "communities at k=" + std::to_string(k) + "\n#";
        std::string const directory = Directory(k);
        Write_result(directory, file_flag + "communities", "The " + communities_at_k,
                     Note(all.size(), n_exact, "communities"), Numbered(all, n_exact));
        if (!job.intensity) {
            Write_result(directory, file_flag + "communities_cliques",
                         "The contained " + flag + "cliques in the " + communities_at_k, "",
                         cliques);
        }
        Write_result(directory, file_flag + "communities_links",
                     "The links inside the " + communities_at_k, "", inner_links);
        out << " done.\n";
        // Deliberate: the title lacks the word "communities".
        Write_result(directory, "graph_of_" + file_flag + "communities",
                     "The graph of " + flag + "at k=" + std::to_string(k) + "\n#", "", graph);
        out << " Calculating statistics...\n";
    }

    void Write_statistics(unsigned k, std::string const& suffix,
                          std::vector<Nodes> const& communities) {
        Statistics statistics = Count(communities, Size(names));
        std::vector<std::pair<std::string, std::string>> const files{
            {"membership", "The node membership distr. in the "},
            {"size", "The size distr. of the "},
            {"overlap", "The overlap size distr. of the "},
            {"degree", "The com. degree distr. of the "}};
        for (auto const& [name, title] : files) {
            std::string body;
            for (auto const& [value, count] : statistics[name]) {
                body += std::to_string(value) + " " + std::to_string(count) + "\n";
            }
            // Deliberate: nothing stands between the suffix and the flag, two blanks after it.
            Write_result(Directory(k), file_flag + name + "_distribution" + suffix,
                         title + suffix + flag + " communities at k=" + std::to_string(k) + "\n#",
                         "", body + "\n");
        }
    }
};

} // namespace

std::string Run_model(std::vector<std::string> const& args, std::string const& banner,
                      Clock const& clock, Reached& reached) {
    Run run{banner, clock, reached};
    try {
        run.Go(args);
    } catch (std::exception const& error) {
        run.out << error.what() << "\n"; // what() ends a text at its first NUL
    }
    return run.out.str();
}

} // namespace cpm::model
