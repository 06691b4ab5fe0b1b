// SPDX-License-Identifier: MIT
#include "Plain_input.h"

#include "Plain_disk.h"
#include "Plain_text.h"

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <stdexcept>

namespace cpm::model {

namespace {

/// The values after each switch.
using Switches = std::map<std::string, std::vector<std::string>>;

Switches Collect(std::vector<std::string> const& args) {
    Switches switches;
    std::string current = "---noname";
    for (std::size_t i = 1; i < args.size(); ++i) {
        if (args[i].size() > 1 && args[i].front() == '-') {
            current = args[i];
            switches[current].clear(); // the last occurrence counts
        } else {
            switches[current].push_back(args[i]);
        }
    }
    return switches;
}

/// Reads the first value of a switch that is present; 0 is what remains when it cannot be read.
template <typename T>
void Read_value(Switches const& switches, std::string const& name, std::optional<T>& value,
                std::string& errors) {
    auto const found = switches.find(name);
    if (found == switches.end()) {
        return;
    }
    value = T{};
    if (found->second.empty()) {
        errors += " No value is given for switch " + name + ".\n";
        return;
    }
    std::string const& text = found->second.front();
    // An empty name stays empty unless -I adds its ending to it.
    bool const no_name = name == "-o" && text.empty() && !switches.contains("-I");
    if (no_name || !Read(text, *value)) {
        errors += " Unable to interpret the value '" + text + "' for switch " + name + ".\n";
    }
}

Job Examine(Switches const& switches) {
    Job job;
    std::set<std::string> const known{"-i", "-o", "-w", "-W", "-h", "-d",
                                      "-t", "-D", "-I", "-k", "-U"};
    for (auto const& [name, values] : switches) {
        if (!known.contains(name)) {
            job.errors = "unknown parameter in parameter list! (Check_keys()).\n";
            return job;
        }
    }
    auto const refuse = [&](bool wrong, char const* why) { job.errors += wrong ? why : ""; };
    Read_value(switches, "-i", job.input, job.errors);
    refuse(!job.input, "You must specify an input file.\n");
    Read_value(switches, "-w", job.lower, job.errors);
    Read_value(switches, "-W", job.upper, job.errors);
    Read_value(switches, "-o", job.output, job.errors);
    Read_value(switches, "-d", job.digits, job.errors);
    Read_value(switches, "-t", job.limit, job.errors);
    Read_value(switches, "-I", job.intensity, job.errors);
    Read_value(switches, "-k", job.k, job.errors);
    job.directed = switches.contains("-D");
    job.help = switches.contains("-h");
    refuse(job.limit && !(*job.limit > 0.0),
           " The maximal allowed time per node must be positive.\n");
    refuse(job.lower && job.upper && *job.lower >= *job.upper,
           " The sepcified lower threshold is higher (or equal to) the upper threshold.\n");
    refuse(job.directed && job.intensity,
           " The search algorithm cannot apply the link weight \n"
           " intensity condition when looking for directed communities.\n");
    refuse(job.intensity && job.limit,
           " The search algorithm cannot apply the maximal time \n"
           " per node condition when a link weight intensity condition is set as well.\n");
    refuse(job.directed && switches.contains("-U"),
           " The program cannot apply the dirrected and undirected\n"
           " search algorithm at the same time.\n");
    return job;
}

std::string Output_directory(Job const& job) {
    unsigned const digits = job.digits.value_or(6);
    std::string name = *job.input + "_files";
    name += job.lower ? "_" + Fixed(*job.lower, digits) : "";
    name += job.lower || job.upper ? "_w" : "";
    name += job.upper ? "_" + Fixed(*job.upper, digits) : "";
    name += job.directed ? "-d" : "";
    // Deliberate: the last part also goes after a name that was given.
    return job.output.value_or(name) +
           (job.intensity ? "-w-th" + Fixed(*job.intensity, digits) : "");
}

std::string Header(Job const& job) {
    std::string text = " from " + Total_path(*job.input, std::filesystem::current_path()) + "\n";
    text += job.lower ? "# at a lower link weight threshold of " + Fixed(*job.lower, 6) + ",\n"
                      : "# at no lower link weight threshold,\n";
    // Deliberate: the lower threshold is shown where the upper one is announced.
    text += job.upper ? "# and at an upper link weight threshold of " +
                            Fixed(job.lower.value_or(0), 6) + ".\n"
                      : "# and at no upper link weight threshold.\n";
    text += job.intensity ? "# A lower link weight intensity threshold of " +
                                Fixed(*job.intensity, 6) + " was set.\n"
                          : "";
    text += job.directed ? "# Links were treated as directed.\n"
                         : "# Links were treated as undirected.\n";
    text += job.limit ? "# The maximal allowed time per node during clique search was " +
                            Fixed(*job.limit, 6) + " secs.\n"
                      : "# No time limit was set for the clique search.\n";
    text += job.k ? "# The communities were extracted solely at k=" + std::to_string(*job.k) + ".\n"
                  : "";
    return text;
}

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

} // namespace

Links Read_links(std::istream& lines, Job const& job) {
    Links links;
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
        if (job.Weighted()) {
            fields >> weight;
        }
        if (!fields) {
            throw std::logic_error("ERROR: Wrong line found in ' the file I was reading' :\n" +
                                   line);
        }
        bool const above = !job.lower || weight > *job.lower;
        bool const below = !job.upper || weight < *job.upper;
        if (source != target && above && below) {
            links[{source, target}] += weight;
        }
    }
    return links;
}

Job Process_input(std::vector<std::string> const& args, std::string const& banner, Links& links,
                  std::ostream& out) {
    if (args.empty()) {
        throw std::logic_error(" program name missing in Switches...\n");
    }
    Job job = Examine(Collect(args));
    if (job.help) {
        out << Help(args[0]) << banner;
        throw std::logic_error("");
    }
    if (!job.errors.empty()) {
        out << banner << "\n Error:\n" << job.errors << "\n" << Usage(args[0]);
        throw std::logic_error("");
    }
    job.directory = Output_directory(job);
    job.header = Header(job);
    std::error_code ignored;
    if (std::filesystem::is_directory(*job.input, ignored)) {
        throw std::logic_error("ERROR: Something went wrong when trying to read from " +
                               *job.input);
    }
    std::ifstream file(*job.input);
    if (!file) {
        throw std::logic_error("ERROR : File not found: '" + *job.input + "' ");
    }
    links = Read_links(file, job);
    return job;
}

} // namespace cpm::model
