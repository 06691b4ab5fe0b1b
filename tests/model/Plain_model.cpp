// SPDX-License-Identifier: MIT
#include "Plain_model.h"

#include "Plain_communities.h"
#include "Plain_text.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <sstream>
#include <stdexcept>

namespace cpm::model {

namespace {

// --- The command line. ---

using Values = std::vector<std::string>;
using Parameters = std::map<std::string, Values>;

Parameters Collect(std::vector<std::string> const& args) {
    Parameters parameters;
    std::string current = "---noname";
    for (std::size_t i = 1; i < args.size(); ++i) {
        if (args[i].size() > 1 && args[i].front() == '-') {
            current = args[i];
            parameters[current].clear();
        } else {
            parameters[current].push_back(args[i]);
        }
    }
    return parameters;
}

struct Settings {
    std::string input;
    std::optional<std::string> output;
    std::optional<double> lower;
    std::optional<double> upper;
    std::optional<unsigned> digits;
    std::optional<double> limit;
    std::optional<double> intensity;
    std::optional<unsigned> k;
    bool directed = false;
    bool undirected = false;
    bool help = false;
    std::string errors; // empty: accepted

    bool Weighted() const { return lower || upper || intensity; }

    /// The word that tells the kinds of run apart in file names and headers.
    std::string Flag() const { return intensity ? "intensity" : directed ? "directed" : ""; }
};

bool Convert(std::string const& text, double& value) {
    return Read_number(text, value);
}

bool Convert(std::string const& text, unsigned& value) {
    return Read_unsigned(text, value);
}

bool Convert(std::string const& text, std::string& value) {
    value = text;
    return true;
}

/// Reads the first value of a switch that is present; 0 stays behind when it cannot be read.
template <typename T>
std::optional<T> Read_value(Parameters const& parameters, std::string const& name,
                            std::string& errors) {
    auto const found = parameters.find(name);
    if (found == parameters.end()) {
        return std::nullopt;
    }
    T value{};
    if (found->second.empty()) {
        errors += " No value is given for switch " + name + ".\n";
        return value;
    }
    std::string const& text = found->second.front();
    bool const empty_output = name == "-o" && text.empty();
    if (empty_output || !Convert(text, value)) {
        errors += " Unable to interpret the value '" + text + "' for switch " + name + ".\n";
    }
    return value;
}

Settings Examine(Parameters const& parameters) {
    Settings s;
    std::set<std::string> const known{"-i", "-o", "-w", "-W", "-h", "-d",
                                      "-t", "-D", "-I", "-k", "-U"};
    for (auto const& [name, values] : parameters) {
        if (!known.contains(name)) {
            s.errors = "unknown parameter in parameter list! (Check_keys()).\n";
            return s;
        }
    }
    s.help = parameters.contains("-h");
    if (auto const input = Read_value<std::string>(parameters, "-i", s.errors)) {
        s.input = *input;
    } else {
        s.errors += "You must specify an input file.\n";
    }
    s.lower = Read_value<double>(parameters, "-w", s.errors);
    s.upper = Read_value<double>(parameters, "-W", s.errors);
    s.output = Read_value<std::string>(parameters, "-o", s.errors);
    s.digits = Read_value<unsigned>(parameters, "-d", s.errors);
    s.limit = Read_value<double>(parameters, "-t", s.errors);
    s.directed = parameters.contains("-D");
    s.intensity = Read_value<double>(parameters, "-I", s.errors);
    s.k = Read_value<unsigned>(parameters, "-k", s.errors);
    s.undirected = parameters.contains("-U");
    if (s.limit && !(*s.limit > 0.0)) {
        s.errors += " The maximal allowed time per node must be positive.\n";
    }
    if (s.lower && s.upper && *s.lower >= *s.upper) {
        s.errors += " The sepcified lower threshold is higher (or equal to) the upper threshold.\n";
    }
    if (s.directed && s.intensity) {
        s.errors += " The search algorithm cannot apply the link weight \n"
                    " intensity condition when looking for directed communities.\n";
    }
    if (s.intensity && s.limit) {
        s.errors += " The search algorithm cannot apply the maximal time \n"
                    " per node condition when a link weight intensity condition is set as well.\n";
    }
    if (s.undirected && s.directed) {
        s.errors += " The program cannot apply the dirrected and undirected\n"
                    " search algorithm at the same time.\n";
    }
    return s;
}

std::string Output_directory(Settings const& s) {
    unsigned const digits = s.digits.value_or(6);
    std::string name = s.input + "_files";
    if (s.lower) {
        name += "_" + Fixed(*s.lower, digits);
    }
    if (s.lower || s.upper) {
        name += "_w";
    }
    if (s.upper) {
        name += "_" + Fixed(*s.upper, digits);
    }
    if (s.directed) {
        name += "-d";
    }
    if (s.output) {
        name = *s.output;
    }
    if (s.intensity) { // also behind a name that was given
        name += "-w-th" + Fixed(*s.intensity, digits);
    }
    return name;
}

/// The lines that open every result file, behind "# The ...".
std::string Header(Settings const& s, std::string const& cwd) {
    std::string text = " from " + Total_path(s.input, cwd) + "\n";
    text += s.lower ? "# at a lower link weight threshold of " + Fixed(*s.lower, 6) + ",\n"
                    : "# at no lower link weight threshold,\n";
    // Deliberate: the lower threshold is shown where the upper one is announced.
    text += s.upper ? "# and at an upper link weight threshold of " +
                          Fixed(s.lower.value_or(0), 6) + ".\n"
                    : "# and at no upper link weight threshold.\n";
    if (s.intensity) {
        text += "# A lower link weight intensity threshold of " + Fixed(*s.intensity, 6) +
                " was set.\n";
    }
    text += s.directed ? "# Links were treated as directed.\n"
                       : "# Links were treated as undirected.\n";
    text += s.limit ? "# The maximal allowed time per node during clique search was " +
                          Fixed(*s.limit, 6) + " secs.\n"
                    : "# No time limit was set for the clique search.\n";
    if (s.k) {
        text += "# The communities were extracted solely at k=" + std::to_string(*s.k) + ".\n";
    }
    return text;
}

// --- The links. ---

using Links = std::map<std::pair<std::string, std::string>, double>;

std::string Trim(std::string const& line) {
    auto const first = line.find_first_not_of(" \t");
    if (first == std::string::npos) {
        // Deliberate: a line with nothing to keep ends the run with the text of the library's own
        // error, since the start position is kept in 32 bits.
        throw std::out_of_range("basic_string::substr: __pos (which is 4294967295) > this->size() "
                                "(which is " +
                                std::to_string(line.size()) + ")");
    }
    return line.substr(first, line.find_last_not_of(" \t") + 1 - first);
}

Links Read_links(std::string const& text, Settings const& s) {
    Links links;
    std::istringstream lines(text);
    for (std::string whole; std::getline(lines, whole);) {
        std::string const line = Trim(whole);
        if (line.front() == '#' || line.size() == 1) {
            continue;
        }
        std::istringstream fields(line);
        std::string source;
        std::string target;
        double weight = 0;
        fields >> source >> target;
        if (s.Weighted()) {
            fields >> weight;
        }
        if (!fields) {
            throw std::logic_error("ERROR: Wrong line found in ' the file I was reading' :\n" +
                                   line);
        }
        if (source == target) {
            continue;
        }
        if (!s.Weighted()) {
            links[{source, target}] = 0;
        } else if ((!s.lower || weight > *s.lower) && (!s.upper || weight < *s.upper)) {
            links[{source, target}] += weight;
        }
    }
    return links;
}

// --- The run. ---

class Plain_run {
public:
    Plain_run(std::vector<std::string> const& args, World const& world)
        : args_(args), cwd_(world.cwd), banner_(world.banner), clock_(world.clock_step),
          disk_(world.tree, world.cwd) {}

    Outcome Go() {
        try {
            Steps();
        } catch (std::exception const& error) {
            out_ << error.what() << "\n"; // what() ends a text at its first NUL
        }
        return {out_.str(), disk_.Everything(), reached_};
    }

private:
    void Steps();
    void Process_input();
    void Say(std::string const& line) { out_ << Underline(line.size()) << line << "\n"; }
    void Write(std::string const& path, std::string const& text);
    void Write_graph();
    void Convert_links();
    void Write_cliques();
    void Find_communities(unsigned k);
    void Write_communities(unsigned k, Communities const& communities);
    void Write_statistics(unsigned k, std::string const& suffix, Statistics const& statistics);
    std::string Members(Nodes const& nodes) const;
    std::string Path_at(unsigned k) const { return directory_ + "/k=" + std::to_string(k); }

    std::vector<std::string> const& args_;
    std::string cwd_;
    std::string banner_;
    Clock clock_;
    Disk disk_;
    std::ostringstream out_;
    Reached reached_;

    Settings settings_;
    std::string directory_;
    std::string header_;
    std::string flag_;        // "", "directed" or "intensity"
    std::string file_prefix_; // the flag and "_", or nothing
    std::string word_;        // the flag and " ", or nothing
    Links links_;
    Index_links index_links_;
    std::map<unsigned, std::string> names_;
    unsigned node_count_ = 0;
    Found_cliques found_;
};

void Plain_run::Steps() {
    out_ << banner_ << " Reading input ...\n";
    Process_input();
    disk_.Refuse_non_empty(directory_);
    disk_.Prepare_dir(directory_);
    Write(directory_ + "/input_params.txt", "# Plexor was run on links taken" + header_);
    Write_graph();
    Say(" Links read OK.");
    Say(" Converting links...");
    Convert_links();
    out_ << " Links converted OK, total number of " << index_links_.size() << " will be\n"
         << " taken into account in the community finding.\n";
    Say(" Preparing graph from the links...");
    Graph const graph = Make_graph(index_links_, settings_.directed);
    node_count_ = static_cast<unsigned>(graph.all.size());
    out_ << " Graph created from the links OK.\n";
    found_ = Find_cliques(graph, settings_.limit, clock_, out_, reached_);
    Say(" Writing cliques to disk...");
    Write_cliques();
    out_ << " done.\n";
    if (settings_.k) {
        Find_communities(*settings_.k);
    } else {
        for (unsigned k = Largest(found_.cliques); k > 2; --k) {
            Find_communities(k);
        }
    }
    out_ << banner_;
}

void Plain_run::Process_input() {
    if (args_.empty()) {
        throw std::logic_error(" program name missing in Switches...\n");
    }
    settings_ = Examine(Collect(args_));
    if (settings_.help) {
        out_ << Help(args_[0]) << banner_;
        throw std::logic_error("");
    }
    if (!settings_.errors.empty()) {
        out_ << banner_ << "\n Error:\n" << settings_.errors << "\n" << Usage(args_[0]);
        throw std::logic_error("");
    }
    directory_ = Output_directory(settings_);
    auto const file = disk_.Look_up(settings_.input);
    if (file.error != 0) {
        throw std::logic_error("ERROR : File not found: '" + settings_.input + "' ");
    }
    if (disk_.At(file).kind == Entry::Kind::directory) {
        throw std::logic_error("ERROR: Something went wrong when trying to read from " +
                               settings_.input);
    }
    links_ = Read_links(disk_.At(file).content, settings_);
    flag_ = settings_.Flag();
    file_prefix_ = flag_.empty() ? "" : flag_ + "_";
    word_ = flag_.empty() ? "" : flag_ + " ";
    header_ = Header(settings_, cwd_);
}

void Plain_run::Write(std::string const& path, std::string const& text) {
    if (!disk_.Write(path, text)) {
        out_ << " WARNING: could not write '" << path << "'.\n";
    }
}

void Plain_run::Write_graph() {
    std::ostringstream text;
    text << "# The links" << header_
         << (settings_.directed ? "# (self-links were removed)\n\n"
                                : "# (mutual links and self-links were removed)\n\n");
    for (auto const& [names, weight] : links_) {
        text << names.first << " " << names.second;
        if (settings_.Weighted()) {
            text << " " << weight;
        }
        text << "\n";
    }
    Write(directory_ + (settings_.directed ? "/directed_graph" : "/graph"), text.str());
}

void Plain_run::Convert_links() {
    std::map<std::string, unsigned> indices;
    auto const index_of = [&](std::string const& name) {
        auto const [entry, is_new] =
            indices.insert({name, static_cast<unsigned>(indices.size() + 1)});
        if (is_new) {
            names_[entry->second] = name;
        }
        return entry->second;
    };
    for (auto const& [names, weight] : links_) {
        unsigned const source = index_of(names.first);
        unsigned const target = index_of(names.second);
        bool const swap = !settings_.directed && target < source;
        index_links_[swap ? Pair{target, source} : Pair{source, target}] += weight;
    }
}

/// Every name, the last one included, is followed by a blank.
std::string Plain_run::Members(Nodes const& nodes) const {
    std::string text;
    for (unsigned node : nodes) {
        text += names_.at(node) + " ";
    }
    return text;
}

/// A position with the sign that marks what is approximated.
std::string Signed(unsigned position, unsigned n_exact) {
    return (position < n_exact ? "" : "-") + std::to_string(position);
}

void Plain_run::Write_cliques() {
    bool const directed = settings_.directed;
    std::string text = std::string("# The ") + (directed ? "directed " : "") + "cliques" + header_;
    if (found_.n_exact < found_.cliques.size()) {
        text += "# Negative indices indicate approximate cliques.\n";
    }
    text += "\n";
    for (unsigned i = 0; i < found_.cliques.size(); ++i) {
        text += Signed(i, found_.n_exact) + ": " + Members(found_.cliques[i]) + "\n";
    }
    disk_.Prepare_dir(directory_);
    Write(directory_ + (directed ? "/directed_cliques" : "/cliques"), text);
}

void Plain_run::Find_communities(unsigned k) {
    Communities communities;
    if (settings_.intensity) {
        double const threshold = *settings_.intensity;
        K_cliques const k_cliques =
            Find_k_cliques(found_.cliques, index_links_, k, threshold, out_);
        Say(" Writing k-clques to disk.");
        std::string text = "# The k-cliques at k=" + std::to_string(k) + header_ + "\n";
        unsigned number = 0;
        for (auto const& k_clique : k_cliques) {
            text += std::to_string(number++) + ": " + Members(k_clique) + "\n";
        }
        disk_.Prepare_dir(Path_at(k));
        Write(Path_at(k) + "/k-cliques", text);
        communities = Percolate_k_cliques(k_cliques, index_links_, k, threshold, out_);
    } else {
        unsigned const k_max = Largest(found_.cliques);
        std::string const number = std::to_string(k);
        // Deliberate: both differences wrap as unsigned numbers.
        double const percent = 100.0 * ((k_max - k) + 0.5) / (k_max - 2);
        out_ << Underline(number.size() + 48) << " Extracting communities at k=" << number
             << " (completed " << Fixed(percent, 2) << "%)\n";
        communities = Percolate(found_, k, reached_);
        out_ << " done.\n";
    }
    out_ << " Writing commmunities to disk...\n";
    disk_.Prepare_dir(Path_at(k));
    Write_communities(k, communities);
    auto const middle = communities.nodes.begin() + communities.n_exact;
    Statistics const all = Count(communities.nodes, node_count_);
    if (middle == communities.nodes.end()) {
        out_ << " done.\n";
        Write_statistics(k, "", all);
        return;
    }
    reached_.insert("approximated communities");
    Statistics const exact = Count({communities.nodes.begin(), middle}, node_count_);
    Statistics const approximated = Count({middle, communities.nodes.end()}, node_count_);
    out_ << " done.\n";
    Write_statistics(k, "_merged", all);
    Write_statistics(k, "_exact", exact);
    Write_statistics(k, "_appr", approximated);
}

void Plain_run::Write_communities(unsigned k, Communities const& communities) {
    auto const& [nodes, links, cliques, n_exact] = communities;
    std::string const at_k = "at k=" + std::to_string(k) + "\n#" + header_;
    std::string const path = Path_at(k) + "/";

    std::string text = "# The " + word_ + "communities " + at_k;
    if (n_exact < nodes.size()) {
        text += "# Negative indices indicate approximate communities.\n";
    }
    text += "\n";
    for (unsigned i = 0; i < nodes.size(); ++i) {
        text += Signed(i, n_exact) + ": " + Members(nodes[i]) + "\n";
    }
    Write(path + file_prefix_ + "communities", text);

    if (!settings_.intensity) {
        text =
            "# The contained " + word_ + "cliques in the " + word_ + "communities " + at_k + "\n";
        for (unsigned i = 0; i < cliques.size(); ++i) {
            text += Signed(i, n_exact) + ": ";
            for (unsigned clique : cliques[i]) {
                unsigned const unmarked_below =
                    i < n_exact ? std::numeric_limits<unsigned>::max() : found_.n_exact;
                text += Signed(clique, unmarked_below) + " ";
            }
            text += "\n";
        }
        Write(path + file_prefix_ + "communities_cliques", text);
    }

    text = "# The links inside the " + word_ + "communities " + at_k + "\n";
    for (unsigned i = 0; i < links.size(); ++i) {
        text += Signed(i, n_exact) + ":\n";
        for (auto [a, b] : links[i]) {
            if (!index_links_.contains({a, b})) {
                std::swap(a, b);
            }
            text += names_.at(a) + " " + names_.at(b) + "\n";
        }
    }
    Write(path + file_prefix_ + "communities_links", text);
    out_ << " done.\n";

    text = "# The graph of " + word_ + at_k + "\n"; // Deliberate: no word "communities"
    for (auto const& [pair, shared] : Community_graph(nodes)) {
        text += Signed(pair.first, n_exact) + " " + Signed(pair.second, n_exact) + " " +
                std::to_string(shared) + "\n";
    }
    Write(path + "graph_of_" + file_prefix_ + "communities", text);
    out_ << " Calculating statistics...\n";
}

void Plain_run::Write_statistics(unsigned k, std::string const& suffix,
                                 Statistics const& statistics) {
    auto const write = [&](std::string const& name, std::string const& title,
                           Distribution const& distribution) {
        std::string text = title + suffix + word_ + " communities at k=" + std::to_string(k) +
                           "\n#" + header_ + "\n";
        for (auto const& [value, count] : distribution) {
            text += std::to_string(value) + " " + std::to_string(count) + "\n";
        }
        text += "\n";
        Write(Path_at(k) + "/" + file_prefix_ + name + "_distribution" + suffix, text);
    };
    write("membership", "# The node membership distr. in the ", statistics.membership);
    write("size", "# The size distr. of the ", statistics.size);
    write("overlap", "# The overlap size distr. of the ", statistics.overlap);
    write("degree", "# The com. degree distr. of the ", statistics.degree);
}

} // namespace

Outcome Run_model(std::vector<std::string> const& args, World const& world) {
    return Plain_run(args, world).Go();
}

} // namespace cpm::model
